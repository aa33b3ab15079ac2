// SPDX-License-Identifier: Apache-2.0
// Stands in for libcurl, so that transfers need no network: what is sent becomes the file "sent" in
// the current folder once all of it is there, and what is fetched is made up.
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#define EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr std::size_t kMostBytes = 1U << 20U;
constexpr int kSendError = 55;
constexpr int kWriteError = 23;

using TWrite = std::size_t (*)(const void* data, std::size_t size, std::size_t count,
                               void* context);

struct TTransfer {
  TWrite fWrite;
  void* fContext;
  std::FILE* fSource;
};
TTransfer gTransfer;
char gBytes[kMostBytes];  // nothing here allocates

/// The service is another machine: its calls do not fail. Like libcurl, takes an error of reading
/// for the end of the file.
int Send() {
  const std::size_t size = std::fread(gBytes, 1, sizeof gBytes, gTransfer.fSource);
  if (std::ferror(gTransfer.fSource) != 0) return 0;
  const long file = ::syscall(SYS_open, "sent", O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const long written = ::syscall(SYS_write, file, gBytes, size);
  ::syscall(SYS_close, file);
  return written == static_cast<long>(size) ? 0 : kSendError;
}

int Fetch() {
  std::memset(gBytes, 'x', sizeof gBytes);
  constexpr std::size_t kBlock = sizeof gBytes / 4;
  for (std::size_t at = 0; at < sizeof gBytes; at += kBlock) {
    if (gTransfer.fWrite(gBytes + at, 1, kBlock, gTransfer.fContext) != kBlock) return kWriteError;
  }
  return 0;
}

}  // namespace

EXPORT int curl_global_init(long) { return 0; }

EXPORT void* curl_easy_init() {
  gTransfer = {};
  return &gTransfer;
}

EXPORT int curl_easy_setopt(void*, int option, ...) {
  std::va_list list;
  va_start(list, option);
  void* const value = va_arg(list, void*);
  va_end(list);
  if (option == 10001) gTransfer.fContext = value;
  if (option == 10009) gTransfer.fSource = static_cast<std::FILE*>(value);
  if (option == 20011) gTransfer.fWrite = reinterpret_cast<TWrite>(value);
  return 0;
}

EXPORT int curl_easy_perform(void*) { return gTransfer.fSource != nullptr ? Send() : Fetch(); }

EXPORT void curl_easy_cleanup(void*) {}
EXPORT void curl_global_cleanup() {}
