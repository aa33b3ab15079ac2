// SPDX-License-Identifier: Apache-2.0
#include "opened_document.h"

#include <qdxcore/status.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/read.h>
#include <qdxsystem/unnamed_file.h>
#include <qdxsystem/write.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "digest.h"

namespace NVORNQDX20::NStore {
namespace {

[[noreturn]] void Fail(EQDXStatusCode status, const std::string& why) {
  throw TExplainedException(status, why);
}

[[noreturn]] void FailToRead() { Fail(kQDXStatusFileSystemError, ErrorText(errno)); }

TDescriptor Open(const std::string& file) {
  if (file == "-") return TDescriptor(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  // A pipe without a writer would block for ever.
  return TDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

/// Reads what is no regular file, and waits only so long for those who write to it.
class TPipeReader {
 public:
  TPipeReader(int file, const TInputLimits& limits)
      : fFile(file),
        fLimits(limits),
        fNeedsWriter(TClock::now() + std::min(limits.fTime, limits.fPipeTime)),
        fEnd(TClock::now() + limits.fPipeTime) {}

  /// Returns the number of bytes, 0 at the end.
  ssize_t Read(char* buffer, std::size_t size) const {
    if (!WaitUntil(fNeedsWriter) && IsNonBlocking()) {
      // Without a writer this is the end, and with one there is nothing yet.
      const ssize_t count = ::read(fFile, buffer, size);
      // Waiting ends at once for a pipe that had a writer.
      if (count == 0 && !WaitUntil(fNeedsWriter)) {
        Fail(kQDXStatusFileSystemError, "no program writes to it");
      }
      if (count >= 0) return count;
    }
    if (!WaitUntil(fEnd)) {
      Fail(kQDXStatusFileSystemError,
           "its writer takes longer than " + std::to_string(fLimits.fPipeTime.count()) + " s");
    }
    return ReadSome(fFile, buffer, size);
  }

 private:
  using TClock = std::chrono::steady_clock;

  /// Returns whether there are bytes or the end before this time.
  bool WaitUntil(TClock::time_point time) const {
    pollfd bytes = {fFile, POLLIN, 0};
    for (;;) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - TClock::now()).count();
      const int found = ::poll(&bytes, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
      if (found < 0 && errno != EINTR) FailToRead();
      if (found > 0) return true;
      if (left <= 0) return false;
    }
  }

  /// Standard input can be shared with others, who decide about it. It had a writer.
  bool IsNonBlocking() const {
    const int flags = ::fcntl(fFile, F_GETFL);
    return flags >= 0 && (static_cast<unsigned>(flags) & unsigned{O_NONBLOCK}) != 0;
  }

  const int fFile;
  const TInputLimits& fLimits;
  const TClock::time_point fNeedsWriter;
  const TClock::time_point fEnd;
};

/// Calls `use` with all bytes that `read` returns piece by piece.
template <typename TRead, typename TUse>
void ReadAll(const TRead& read, std::uint64_t mostBytes, const TUse& use) {
  constexpr std::size_t kAtOnce = 256U << 10U;
  std::vector<char> buffer(kAtOnce);
  std::uint64_t all = 0;
  for (;;) {
    const ssize_t size = read(buffer.data(), buffer.size());
    if (size < 0) FailToRead();
    if (size == 0) return;
    all += static_cast<std::uint64_t>(size);
    if (all > mostBytes) {
      Fail(kQDXStatusInvalidDataCollectionDocument,
           "it has more than " + std::to_string(mostBytes >> 20U) + " MiB");
    }
    use(std::string_view(buffer.data(), static_cast<std::size_t>(size)));
  }
}

}  // namespace

TOpenedDocument OpenDocument(const std::string& file, const TInputLimits& limits) {
  TOpenedDocument document{Open(file), {}};
  if (!document.fFile.IsOpen()) FailToRead();
  struct stat status {};
  if (::fstat(document.fFile.Get(), &status) != 0) FailToRead();
  if (S_ISDIR(status.st_mode)) Fail(kQDXStatusFileSystemError, "it is a folder");
  TDigest digest;
  if (S_ISREG(status.st_mode) && file != "-") {
    const auto read = [&](char* buffer, std::size_t size) {
      return ReadSome(document.fFile.Get(), buffer, size);
    };
    ReadAll(read, limits.fBytes, [&digest](std::string_view bytes) { digest.Add(bytes); });
  } else {
    TDescriptor copy = OpenUnnamedFile();
    if (!copy.IsOpen()) FailToRead();
    const TPipeReader pipe(document.fFile.Get(), limits);
    const auto read = [&](char* buffer, std::size_t size) { return pipe.Read(buffer, size); };
    ReadAll(read, limits.fBytes, [&](std::string_view bytes) {
      digest.Add(bytes);
      if (!WriteAll(copy.Get(), bytes)) FailToRead();
    });
    document.fFile = std::move(copy);
  }
  if (::lseek(document.fFile.Get(), 0, SEEK_SET) != 0) FailToRead();
  document.fDigest = digest.Finish();
  return document;
}

}  // namespace NVORNQDX20::NStore
