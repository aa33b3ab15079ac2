// SPDX-License-Identifier: Apache-2.0
// A library for LD_PRELOAD that makes the n-th allocation or the n-th call of the system fail:
//
//   QDX_FAULT=PROCESS:CALL:NUMBER:ERROR
//     PROCESS  0 for the program; the first child of process N is N * 16 + 1, the second + 2
//     CALL     a name in kCalls (counting.cpp); each is counted for itself
//     NUMBER   the first one that fails
//     ERROR    for a call a name such as EIO, or SHORT for a part of the bytes;
//              for an allocation ONCE, or ALWAYS for all from that one on
//   QDX_FAULT_RECORD=FILE
//     an existing file of sizeof(TRecord) zeros, in which the counts are kept; see TRecord in
//     counting.cpp
//
// The clock stands still, so that two runs write the same bytes. Nothing here allocates.
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <ctime>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include "counting.h"
#include "faults.h"

#define EXPORT extern "C" __attribute__((visibility("default")))

extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_calloc(std::size_t, std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);
extern "C" void* __libc_memalign(std::size_t, std::size_t);
extern "C" void __libc_free(void*);

namespace {

long gLive = 0;

bool AllocationFails() {
  if (ErrorOf("allocation") == 0) return false;
  errno = ENOMEM;
  return true;
}

/// Returns the function of this name in the library that is next in the search order.
template <typename T>
T* Next(const char* name, T*& cache) {
  if (cache == nullptr) {
    const TPause pause;
    cache = reinterpret_cast<T*>(::dlsym(RTLD_NEXT, name));
  }
  return cache;
}

void* Counted(void* block) {
  if (block != nullptr) ++gLive;
  return block;
}

}  // namespace

/// Calls the function of the same name in the C library, with all that it does beside the system
/// call.
#define NEXT(function)                                 \
  ([]() {                                              \
    static decltype(&function) cache;                  \
    return Next<decltype(function)>(#function, cache); \
  }())

long CountLiveBlocks() { return gLive; }

// --- allocations

EXPORT void* malloc(std::size_t size) {
  return AllocationFails() ? nullptr : Counted(__libc_malloc(size));
}

EXPORT void* calloc(std::size_t count, std::size_t size) {
  return AllocationFails() ? nullptr : Counted(__libc_calloc(count, size));
}

EXPORT void* realloc(void* block, std::size_t size) {
  if (AllocationFails()) return nullptr;
  void* const moved = __libc_realloc(block, size);
  if (block == nullptr && moved != nullptr) ++gLive;
  if (block != nullptr && moved == nullptr && size == 0) --gLive;
  return moved;
}

EXPORT void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return AllocationFails() ? nullptr : Counted(__libc_memalign(alignment, size));
}

EXPORT void* memalign(std::size_t alignment, std::size_t size) {
  return AllocationFails() ? nullptr : Counted(__libc_memalign(alignment, size));
}

EXPORT int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  if (AllocationFails()) return ENOMEM;
  *block = Counted(__libc_memalign(alignment, size));
  return *block == nullptr ? ENOMEM : 0;
}

EXPORT void free(void* block) {
  if (block != nullptr) --gLive;
  __libc_free(block);
}

// --- calls with a path

namespace {

int OpenAt(int folder, const char* path, int flags, unsigned mode) {
  const int error = ErrorOf("open", path);
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_openat, folder, Word(path), flags, mode)));
}

unsigned ModeIn(std::va_list list, int flags) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, unsigned) : 0;
}

int StatAt(int folder, const char* path, struct stat* status, int flags) {
  const int error = ErrorOf("stat", path);
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(
      Returned(RawCall(SYS_newfstatat, folder, Word(path), Word(status), flags)));
}

int StatOf(int file, struct stat* status) {
  const int error = ErrorOf("fstat");
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_fstat, file, Word(status))));
}

}  // namespace

#define DEFINE_OPEN(name)                             \
  EXPORT int name(const char* path, int flags, ...) { \
    std::va_list list;                                \
    va_start(list, flags);                            \
    const unsigned mode = ModeIn(list, flags);        \
    va_end(list);                                     \
    return OpenAt(AT_FDCWD, path, flags, mode);       \
  }
DEFINE_OPEN(open)
DEFINE_OPEN(open64)

#define DEFINE_OPENAT(name)                                       \
  EXPORT int name(int folder, const char* path, int flags, ...) { \
    std::va_list list;                                            \
    va_start(list, flags);                                        \
    const unsigned mode = ModeIn(list, flags);                    \
    va_end(list);                                                 \
    return OpenAt(folder, path, flags, mode);                     \
  }
DEFINE_OPENAT(openat)
DEFINE_OPENAT(openat64)

EXPORT long syscall(long number, ...) {
  long words[6];
  std::va_list list;
  va_start(list, number);
  for (long& word : words) word = va_arg(list, long);
  va_end(list);
  if (number == SYS_openat2) {
    const int error = ErrorOf("openat2", reinterpret_cast<const char*>(words[1]));
    if (error != 0) return FailWith(error, -1L);
  }
  return Returned(RawCall(number, words[0], words[1], words[2], words[3], words[4], words[5]));
}

EXPORT int fstat(int file, struct stat* status) noexcept { return StatOf(file, status); }
EXPORT int fstat64(int file, struct stat64* status) noexcept {
  return StatOf(file, reinterpret_cast<struct stat*>(status));
}
EXPORT int stat(const char* path, struct stat* status) noexcept {
  return StatAt(AT_FDCWD, path, status, 0);
}
EXPORT int stat64(const char* path, struct stat64* status) noexcept {
  return StatAt(AT_FDCWD, path, reinterpret_cast<struct stat*>(status), 0);
}
EXPORT int lstat(const char* path, struct stat* status) noexcept {
  return StatAt(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}
EXPORT int lstat64(const char* path, struct stat64* status) noexcept {
  return StatAt(AT_FDCWD, path, reinterpret_cast<struct stat*>(status), AT_SYMLINK_NOFOLLOW);
}
EXPORT int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
  return StatAt(folder, path, status, flags);
}
EXPORT int statx(int folder, const char* path, int flags, unsigned mask,
                 struct statx* status) noexcept {
  const int error = ErrorOf("statx", path);
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(
      Returned(RawCall(SYS_statx, folder, Word(path), flags, mask, Word(status))));
}

EXPORT FILE* fopen(const char* path, const char* mode) {
  const int error = ErrorOf("fopen", path);
  return error != 0 ? FailWith<FILE*>(error, nullptr) : NEXT(fopen)(path, mode);
}
EXPORT FILE* fopen64(const char* path, const char* mode) { return fopen(path, mode); }

EXPORT DIR* opendir(const char* path) {
  const int error = ErrorOf("opendir", path);
  return error != 0 ? FailWith<DIR*>(error, nullptr) : NEXT(opendir)(path);
}

EXPORT char* realpath(const char* path, char* resolved) noexcept {
  const int error = ErrorOf("realpath", path);
  return error != 0 ? FailWith<char*>(error, nullptr) : NEXT(realpath)(path, resolved);
}

EXPORT char* getcwd(char* buffer, std::size_t size) noexcept {
  const int error = ErrorOf("getcwd");
  return error != 0 ? FailWith<char*>(error, nullptr) : NEXT(getcwd)(buffer, size);
}

EXPORT ssize_t readlink(const char* path, char* buffer, std::size_t size) noexcept {
  const int error = ErrorOf("readlink", path);
  if (error != 0) return FailWith(error, -1);
  return Returned(RawCall(SYS_readlink, Word(path), Word(buffer), static_cast<long>(size)));
}

EXPORT int mkostemps(char* pattern, int suffix, int flags) {
  const int error = ErrorOf("mkostemps", pattern);
  return error != 0 ? FailWith(error, -1) : NEXT(mkostemps)(pattern, suffix, flags);
}

EXPORT int rename(const char* from, const char* to) noexcept {
  const int error = ErrorOf("rename", to);
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_rename, Word(from), Word(to))));
}

EXPORT int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                     unsigned flags) noexcept {
  const int error = ErrorOf("renameat2", to);
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(
      Returned(RawCall(SYS_renameat2, fromFolder, Word(from), toFolder, Word(to), flags)));
}

EXPORT int truncate(const char* path, off_t size) noexcept {
  const int error = ErrorOf("truncate", path);
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_truncate, Word(path), size)));
}
EXPORT int truncate64(const char* path, off64_t size) noexcept { return truncate(path, size); }

EXPORT int unlink(const char* path) noexcept {
  const int error = ErrorOf("unlink", path);
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_unlink, Word(path))));
}

// --- calls with a descriptor

EXPORT ssize_t read(int file, void* buffer, std::size_t size) {
  struct stat status;
  const bool isFile = RawCall(SYS_fstat, file, Word(&status)) == 0 && S_ISREG(status.st_mode);
  // How often a pipe is read depends on the speed of the writer.
  const int error = ErrorOf(isFile ? "read" : "read-pipe");
  if (error > 0) return FailWith(error, -1);
  if (error == kShortCall && !isFile && size > 1) size = 1;
  long count = RawCall(SYS_read, file, Word(buffer), static_cast<long>(size));
  // Some files of the kernel have nothing for a buffer of one byte.
  if (error == kShortCall && isFile && count > 1) {
    RawCall(SYS_lseek, file, 1 - count, SEEK_CUR);
    count = 1;
  }
  return Returned(count);
}

EXPORT ssize_t write(int file, const void* bytes, std::size_t size) {
  const int error = ErrorOf("write");
  if (error > 0) return FailWith(error, -1);
  if (error == kShortCall && size > 1) size /= 2;
  return Returned(RawCall(SYS_write, file, Word(bytes), static_cast<long>(size)));
}

EXPORT ssize_t writev(int file, const struct iovec* parts, int count) {
  const int error = ErrorOf("writev");
  if (error != 0) return FailWith(error, -1);
  return Returned(RawCall(SYS_writev, file, Word(parts), count));
}

EXPORT int close(int file) {
  // The descriptor is closed even if the call fails.
  const int error = ErrorOf("close");
  const long result = Returned(RawCall(SYS_close, file));
  return error != 0 ? FailWith(error, -1) : static_cast<int>(result);
}

EXPORT int fsync(int file) {
  const int error = ErrorOf("fsync");
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_fsync, file)));
}

EXPORT off_t lseek(int file, off_t offset, int whence) noexcept {
  const int error = ErrorOf("lseek");
  if (error != 0) return FailWith<off_t>(error, -1);
  return Returned(RawCall(SYS_lseek, file, offset, whence));
}
EXPORT off64_t lseek64(int file, off64_t offset, int whence) noexcept {
  return lseek(file, offset, whence);
}

/// Only the commands that duplicate a descriptor can fail.
EXPORT int fcntl(int file, int command, ...) {
  std::va_list list;
  va_start(list, command);
  const long argument = va_arg(list, long);
  va_end(list);
  const bool duplicates = command == F_DUPFD || command == F_DUPFD_CLOEXEC;
  const int error = duplicates ? ErrorOf("fcntl") : 0;
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_fcntl, file, command, argument)));
}
EXPORT int fcntl64(int file, int command, ...) {
  std::va_list list;
  va_start(list, command);
  const long argument = va_arg(list, long);
  va_end(list);
  return fcntl(file, command, argument);
}

EXPORT int fstatvfs(int file, struct statvfs* status) noexcept {
  const int error = ErrorOf("fstatvfs");
  return error != 0 ? FailWith(error, -1) : NEXT(fstatvfs)(file, status);
}
EXPORT int fstatvfs64(int file, struct statvfs64* status) noexcept {
  return fstatvfs(file, reinterpret_cast<struct statvfs*>(status));
}

EXPORT DIR* fdopendir(int folder) {
  const int error = ErrorOf("fdopendir");
  return error != 0 ? FailWith<DIR*>(error, nullptr) : NEXT(fdopendir)(folder);
}

EXPORT struct dirent* readdir(DIR* folder) {
  const int error = ErrorOf("readdir");
  return error != 0 ? FailWith<dirent*>(error, nullptr) : NEXT(readdir)(folder);
}
EXPORT struct dirent64* readdir64(DIR* folder) {
  return reinterpret_cast<struct dirent64*>(readdir(folder));
}

EXPORT void* mmap(void* place, std::size_t size, int protection, int flags, int file,
                  off_t offset) noexcept {
  const int error = ErrorOf("mmap");
  if (error != 0) return FailWith(error, MAP_FAILED);
  return reinterpret_cast<void*>(Returned(
      RawCall(SYS_mmap, Word(place), static_cast<long>(size), protection, flags, file, offset)));
}

// --- processes and time

EXPORT pid_t fork() noexcept {
  const int error = ErrorOf("fork");
  if (error != 0) return FailWith(error, -1);
  ExpectChild();
  const pid_t process = NEXT(fork)();
  if (process == 0) BecomeChild();
  return process;
}

EXPORT int pipe2(int ends[2], int flags) noexcept {
  const int error = ErrorOf("pipe2");
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(Returned(RawCall(SYS_pipe2, Word(ends), flags)));
}

EXPORT int poll(struct pollfd* files, nfds_t count, int timeout) {
  const int error = ErrorOf("poll");
  if (error != 0) return FailWith(error, -1);
  return static_cast<int>(
      Returned(RawCall(SYS_poll, Word(files), static_cast<long>(count), timeout)));
}

EXPORT pid_t waitpid(pid_t process, int* status, int options) {
  const int error = ErrorOf("waitpid");
  if (error != 0) return FailWith(error, -1);
  return static_cast<pid_t>(Returned(RawCall(SYS_wait4, process, Word(status), options)));
}

EXPORT int nanosleep(const struct timespec* time, struct timespec* remaining) {
  const int error = ErrorOf("nanosleep");
  if (error != 0) {
    if (remaining != nullptr) *remaining = {0, 0};
    return FailWith(error, -1);
  }
  return static_cast<int>(Returned(RawCall(SYS_nanosleep, Word(time), Word(remaining))));
}

EXPORT int gethostname(char* name, std::size_t size) noexcept {
  const int error = ErrorOf("gethostname");
  return error != 0 ? FailWith(error, -1) : NEXT(gethostname)(name, size);
}

namespace {
constexpr std::time_t kFrozen = 1700000000;
}  // namespace

EXPORT std::time_t time(std::time_t* now) noexcept {
  if (now != nullptr) *now = kFrozen;
  return kFrozen;
}

EXPORT int clock_gettime(clockid_t clock, struct timespec* now) noexcept {
  if (clock == CLOCK_REALTIME) {
    *now = {kFrozen, 0};
    return 0;
  }
  return static_cast<int>(Returned(RawCall(SYS_clock_gettime, clock, Word(now))));
}
