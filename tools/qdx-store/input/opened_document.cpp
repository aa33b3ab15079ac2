// SPDX-License-Identifier: Apache-2.0
#include "opened_document.h"

#include <qdxcore/status.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/read.h>
#include <qdxsystem/unnamed_file.h>
#include <qdxsystem/write.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nettle/sha2.h>

namespace NVORNQDX20::NStore {
namespace {

[[noreturn]] void Fail(EQDXStatusCode status, const std::string& why) {
  throw TExplainedException(status, why);
}

[[noreturn]] void FailToRead() { Fail(kQDXStatusFileSystemError, ErrorText(errno)); }

class TDigest {
 public:
  TDigest() { sha256_init(&fContext); }

  void Add(std::string_view bytes) {
    sha256_update(&fContext, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  }

  std::string Finish() {
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&fContext, digest.size(), digest.data());
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : digest) {
      text += kDigits[byte >> 4U];
      text += kDigits[byte & 15U];
    }
    return text;
  }

 private:
  sha256_ctx fContext{};
};

TDescriptor Open(const std::string& file) {
  if (file == "-") return TDescriptor(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  return TDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
}

/// Calls `use` with all bytes from the position of the file.
template <typename TUse>
void ReadAll(int file, std::uint64_t mostBytes, const TUse& use) {
  constexpr std::size_t kAtOnce = 256U << 10U;
  std::vector<char> buffer(kAtOnce);
  std::uint64_t all = 0;
  for (;;) {
    const ssize_t size = ReadSome(file, buffer.data(), buffer.size());
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

TOpenedDocument OpenDocument(const std::string& file, std::uint64_t mostBytes) {
  TOpenedDocument document{Open(file), {}};
  if (!document.fFile.IsOpen()) FailToRead();
  struct stat status {};
  if (::fstat(document.fFile.Get(), &status) != 0) FailToRead();
  if (S_ISDIR(status.st_mode)) Fail(kQDXStatusFileSystemError, "it is a folder");
  TDigest digest;
  if (S_ISREG(status.st_mode) && file != "-") {
    ReadAll(document.fFile.Get(), mostBytes,
            [&digest](std::string_view bytes) { digest.Add(bytes); });
  } else {
    TDescriptor copy = OpenUnnamedFile();
    if (!copy.IsOpen()) FailToRead();
    ReadAll(document.fFile.Get(), mostBytes, [&](std::string_view bytes) {
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
