// SPDX-License-Identifier: Apache-2.0
#include "counting.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "faults.h"

namespace {

/// The calls that can fail, with the errors that callers must expect.
struct TCall {
  const char* fName;
  const char* fErrors;
};
constexpr TCall kCalls[] = {
    {"allocation", "ONCE ALWAYS"},
    {"close", "EIO"},
    {"fcntl", "EMFILE"},
    {"fdopendir", "ENOMEM"},
    {"fopen", "EIO EACCES ENOMEM"},
    {"fork", "ENOMEM"},
    {"fstat", "EIO ENOMEM"},
    {"fstatvfs", "EIO ENOMEM"},
    {"fsync", "EIO ENOSPC"},
    {"getcwd", "ENOMEM EACCES"},
    {"gethostname", "ENOMEM"},
    {"lseek", "EIO"},
    {"mkostemps", "EIO EACCES ENOSPC"},
    {"mmap", "ENOMEM"},
    {"nanosleep", "EINTR"},
    {"open", "EIO EACCES ENOMEM"},
    {"openat2", "EIO EACCES ENOMEM ENOSYS"},
    {"opendir", "EIO EACCES ENOMEM"},
    {"pipe2", "EMFILE"},
    {"poll", "EINTR"},
    {"read", "EIO EINTR SHORT"},
    {"read-pipe", "EIO EINTR SHORT"},
    {"readdir", "EIO"},
    {"readlink", "EIO EACCES"},
    {"realpath", "EIO EACCES ENOMEM"},
    {"rename", "EIO EACCES ENOSPC"},
    {"renameat2", "EIO EACCES ENOSPC ENOSYS"},
    {"stat", "EIO EACCES ENOMEM"},
    {"statx", "EIO ENOMEM"},
    {"truncate", "EIO"},
    {"unlink", "EIO"},
    {"waitpid", "EINTR"},
    {"write", "EIO ENOSPC EINTR SHORT"},
    {"writev", "EIO ENOSPC EINTR"},
};

/// Returns the position in kCalls, or their number for another name.
unsigned CallNumber(const char* name) {
  unsigned number = 0;
  while (number < std::size(kCalls) && std::strcmp(kCalls[number].fName, name) != 0) ++number;
  return number;
}

struct TErrorName {
  const char* fName;
  int fError;
};
constexpr TErrorName kErrors[] = {{"EIO", EIO},       {"EACCES", EACCES},   {"ENOMEM", ENOMEM},
                                  {"ENOSPC", ENOSPC}, {"EMFILE", EMFILE},   {"EINTR", EINTR},
                                  {"ENOSYS", ENOSYS}, {"SHORT", kShortCall}};

constexpr unsigned kProcesses = 256;
constexpr unsigned kMostChildren = 16;

/// What one process did. Read by script/faults.
struct TProcess {
  unsigned fCounts[63];  ///< How often each call occurred.
  unsigned fHits;        ///< How often the fault occurred.
  char fWhere[256];      ///< The call that failed first, and its argument.
};
static_assert(std::size(kCalls) <= std::size(TProcess().fCounts));

struct TRecord {
  char fCalls[4096];  ///< kCalls as text, a line for each.
  TProcess fProcesses[kProcesses];
};

TProcess gUnrecorded;
TProcess* gProcess = &gUnrecorded;
TRecord* gRecord = nullptr;

unsigned gChildren = 0;
unsigned gProcessNumber = 0;
bool gIsReady = false;
bool gIsPaused = false;

struct TFault {
  unsigned fProcess;
  unsigned fCall;
  unsigned fNumber;  // 0 for none
  int fError;
  bool fIsLasting;
};
TFault gFault{};

int ErrorNamed(const char* name) {
  for (const TErrorName& error : kErrors) {
    if (std::strcmp(error.fName, name) == 0) return error.fError;
  }
  return EIO;
}

/// Copies a field up to ':' or the end, and returns the text after it.
const char* TakeField(const char* text, char (&field)[16]) {
  std::size_t size = 0;
  while (*text != '\0' && *text != ':') {
    if (size + 1 < sizeof(field)) field[size++] = *text;
    ++text;
  }
  field[size] = '\0';
  return *text == ':' ? text + 1 : text;
}

void ReadFault(const char* text) {
  char process[16];
  char call[16];
  char number[16];
  char error[16];
  TakeField(TakeField(TakeField(TakeField(text, process), call), number), error);
  gFault.fProcess = static_cast<unsigned>(std::strtoul(process, nullptr, 10));
  gFault.fCall = CallNumber(call);
  gFault.fNumber = static_cast<unsigned>(std::strtoul(number, nullptr, 10));
  gFault.fIsLasting = std::strcmp(error, "ALWAYS") == 0;
  gFault.fError = ErrorNamed(error);
}

void OpenRecord(const char* path) {
  const long file = RawCall(SYS_open, Word(path), O_RDWR | O_CLOEXEC);
  if (file < 0) return;
  const long address =
      RawCall(SYS_mmap, 0, sizeof(TRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file);
  RawCall(SYS_close, file);
  if (address < 0) return;
  gRecord = reinterpret_cast<TRecord*>(address);
  // A program that was started by the one under test is not tested.
  if (gRecord->fCalls[0] != '\0') {
    gRecord = nullptr;
    gFault.fNumber = 0;
    return;
  }
  char* end = gRecord->fCalls;
  for (const TCall& call : kCalls) {
    end = ::stpcpy(::stpcpy(::stpcpy(::stpcpy(end, call.fName), " "), call.fErrors), "\n");
  }
  gProcess = &gRecord->fProcesses[0];
}

void SetUp() {
  if (gIsReady || environ == nullptr) return;
  gIsReady = true;
  const char* const fault = std::getenv("QDX_FAULT");
  const char* const record = std::getenv("QDX_FAULT_RECORD");
  if (fault != nullptr) ReadFault(fault);
  if (record != nullptr) OpenRecord(record);
}

void NoteHit(const char* name, const char* argument) {
  if (gProcess->fHits++ != 0) return;
  char* const end = ::stpcpy(::stpcpy(gProcess->fWhere, name), " ");
  const std::size_t room = sizeof(gProcess->fWhere) - 1;
  ::stpncpy(end, argument, room - static_cast<std::size_t>(end - gProcess->fWhere));
}

}  // namespace

int ErrorOf(const char* name, const char* argument) {
  SetUp();
  if (gIsPaused) return 0;
  const unsigned call = CallNumber(name);
  const unsigned number = ++gProcess->fCounts[call];
  const bool isDue = number == gFault.fNumber || (gFault.fIsLasting && number > gFault.fNumber);
  if (!isDue || gFault.fNumber == 0 || call != gFault.fCall || gProcessNumber != gFault.fProcess) {
    return 0;
  }
  NoteHit(name, argument);
  return gFault.fError;
}

TPause::TPause() : fWasPaused(gIsPaused) { gIsPaused = true; }

TPause::~TPause() { gIsPaused = fWasPaused; }

void ExpectChild() { ++gChildren; }

void BecomeChild() {
  gProcessNumber = gProcessNumber * kMostChildren + gChildren;
  gChildren = 0;
  const bool isRecorded = gRecord != nullptr && gProcessNumber < kProcesses;
  gProcess = isRecorded ? &gRecord->fProcesses[gProcessNumber] : &gUnrecorded;
  if (!isRecorded) std::memset(gUnrecorded.fCounts, 0, sizeof(gUnrecorded.fCounts));
}

long RawCall(long number, long a, long b, long c, long d, long e, long f) {
  long result;
  register long r10 __asm__("r10") = d;
  register long r8 __asm__("r8") = e;
  register long r9 __asm__("r9") = f;
  __asm__ volatile("syscall"
                   : "=a"(result)
                   : "a"(number), "D"(a), "S"(b), "d"(c), "r"(r10), "r"(r8), "r"(r9)
                   : "rcx", "r11", "memory");
  return result;
}

void ArmFault(const char* call, unsigned number, const char* error) {
  SetUp();
  std::memset(gUnrecorded.fCounts, 0, sizeof(gUnrecorded.fCounts));
  gUnrecorded.fHits = 0;
  gFault = {gProcessNumber, CallNumber(call), number, ErrorNamed(error),
            std::strcmp(error, "ALWAYS") == 0};
}

void DisarmFault() { gFault.fNumber = 0; }

bool HasFailed() { return gUnrecorded.fHits != 0; }

bool GetFaultyCall(unsigned index, TFaultyCall& call) {
  if (index >= std::size(kCalls)) return false;
  call = {kCalls[index].fName, kCalls[index].fErrors, gUnrecorded.fCounts[index]};
  return true;
}

const char* PlaceOfFault() { return gUnrecorded.fWhere; }
