// SPDX-License-Identifier: Apache-2.0
#include "output.h"

#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/harmless_text.h>
#include <qdxsystem/write.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
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

/// Returns the position at which a regular file gets the next bytes; -1 for other files.
off_t PositionOf(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return -1;
  const bool appends = (::fcntl(file, F_GETFL) & O_APPEND) != 0;
  return appends ? status.st_size : ::lseek(file, 0, SEEK_CUR);
}

/// Removes the end of a file that got only a part of the text, up to the last line end.
void RemovePartOfLine(int file, off_t start, const std::string& text) {
  const off_t end = ::lseek(file, 0, SEEK_CUR);
  struct stat status {};
  const bool isOurs = start >= 0 && end > start && ::fstat(file, &status) == 0 &&
                      status.st_size == end && end - start <= static_cast<off_t>(text.size());
  if (!isOurs) return;
  const std::string_view written(text.data(), static_cast<std::size_t>(end - start));
  const std::size_t lines = written.find_last_of('\n') + 1;  // 0 if there is none
  const bool isRemoved = ::ftruncate(file, start + static_cast<off_t>(lines)) == 0;
  (void)isRemoved;  // the failure to write is reported anyway
}

}  // namespace

void WriteOutput(const std::string& text) {
  if (!WriteAll(STDOUT_FILENO, text)) FailToWrite(errno);
}

void TOutputBuffer::Add(const std::string& text) {
  constexpr std::size_t kEnough = 65536;
  fText += text;
  if (fText.size() >= kEnough) Flush();
}

void TOutputBuffer::Flush() {
  const std::string text = std::exchange(fText, {});
  const off_t start = PositionOf(STDOUT_FILENO);
  if (text.empty() || WriteAll(STDOUT_FILENO, text)) return;
  const int error = errno;
  RemovePartOfLine(STDOUT_FILENO, start, text);
  FailToWrite(error);
}

void CopyToOutput(int file) {
  char block[65536];
  off_t position = 0;
  ssize_t size = 0;
  while ((size = ::pread(file, block, sizeof block, position)) > 0) {
    WriteOutput({block, static_cast<std::size_t>(size)});
    position += size;
  }
  if (size == 0) return;
  throw TCommandFailure(kExitBadInput, "reading a temporary file",
                        {kQDXStatusFileSystemError, ErrorText(errno)});
}

void CopyToFile(const std::string& from, const std::string& to) {
  const auto require = [&to](bool isDone) {
    if (isDone) return;
    throw TCommandFailure(kExitBadInput, "writing document " + to,
                          {kQDXStatusFileSystemError, ErrorText(errno)});
  };
  const TDescriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC));
  require(source.IsOpen());
  TDescriptor target(::open(to.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
  require(target.IsOpen());
  char block[65536];
  ssize_t size = 0;
  while ((size = ::read(source.Get(), block, sizeof block)) > 0) {
    require(WriteAll(target.Get(), {block, static_cast<std::size_t>(size)}));
  }
  require(size == 0);
  require(target.Close());
}

void WriteFileName(const std::string& file) {
  WriteOutput((::isatty(STDOUT_FILENO) != 0 ? ForTerminal(file) : file) + "\n");
}

bool OutputHasReader() {
  pollfd output = {STDOUT_FILENO, POLLOUT, 0};
  return ::poll(&output, 1, 0) < 0 || (output.revents & POLLERR) == 0;
}

void WriteJSON(const nlohmann::ordered_json& document) {
  using TErrorHandler = nlohmann::ordered_json::error_handler_t;
  WriteOutput(EscapedJSON(document.dump(2, ' ', false, TErrorHandler::replace)) + "\n");
}

}  // namespace NVORNQDX20
