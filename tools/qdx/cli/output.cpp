// SPDX-License-Identifier: Apache-2.0
#include "output.h"

#include <qdxsystem/error_text.h>
#include <qdxsystem/write.h>

#include <cerrno>

#include <poll.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "failure.h"
#include "terminal.h"

namespace NVORNQDX20 {
namespace {

[[noreturn]] void FailToWrite(int error) {
  if (error == EPIPE) throw TCommandFailure(kExitBadInput);
  throw TCommandFailure(kExitBadInput, "writing standard output",
                        {kQDXStatusFileSystemError, ErrorText(error)});
}

}  // namespace

void WriteOutput(const std::string& text) {
  if (!WriteAll(STDOUT_FILENO, text)) FailToWrite(errno);
}

void WriteFileName(const std::string& file) {
  WriteOutput((::isatty(STDOUT_FILENO) != 0 ? ForTerminal(file) : file) + "\n");
}

bool OutputHasReader() {
  pollfd output = {STDOUT_FILENO, POLLOUT, 0};
  return ::poll(&output, 1, 0) < 0 || (output.revents & POLLERR) == 0;
}

void WriteJSON(const nlohmann::ordered_json& document) {
  WriteOutput(document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) +
              "\n");
}

}  // namespace NVORNQDX20
