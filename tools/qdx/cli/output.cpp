// SPDX-License-Identifier: Apache-2.0
#include "output.h"

#include <cerrno>
#include <system_error>

#include <poll.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "failure.h"
#include "terminal.h"

namespace NVORNQDX20 {
namespace {

[[noreturn]] void FailToWrite(int error) {
  if (error == EPIPE) throw TCommandFailure(kExitBadInput, "");
  const TFailure failure(kQDXStatusFileSystemError, std::generic_category().message(error));
  throw TCommandFailure(kExitBadInput, FailureLine("writing", "standard output", failure));
}

}  // namespace

void WriteOutput(const std::string& text) {
  for (std::size_t written = 0; written < text.size();) {
    const ssize_t count = ::write(STDOUT_FILENO, text.data() + written, text.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) FailToWrite(errno);
    written += static_cast<std::size_t>(count);
  }
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
