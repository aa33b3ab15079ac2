// SPDX-License-Identifier: Apache-2.0
#include "log_file.h"

#include <qdxsystem/error_text.h>
#include <qdxsystem/write.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "failure.h"

namespace NVORNQDX20 {
namespace {

constexpr std::string_view kOpenedLine = "-- QDX Log Opened ----------------------------\n";
constexpr std::string_view kClosedLine = "-- QDX Log Closed ----------------------------\n";
constexpr const char* kLabels[] = {"[Error] ", "[Warning] ", "[Status] ", "[Debug] ", "[Verbose] "};
static_assert(std::size(kLabels) == ILogger::kLogVerbose + 1);

[[noreturn]] void FailToOpen(const std::string& file, const std::string& why) {
  throw TCommandFailure(kExitBadInput, "opening log " + file, {kQDXStatusFileSystemError, why});
}

bool IsStandardError(const std::string& file) {
  return file == "/dev/stderr" || file == "/dev/fd/2" || file == "/proc/self/fd/2";
}

/// Opening other devices can have an effect, for example start a watchdog.
bool IsSuitableDevice(const struct stat& status) {
  const unsigned int major = ::major(status.st_rdev), minor = ::minor(status.st_rdev);
  const bool isNullOrFull = major == 1 && (minor == 3 || minor == 7);
  const bool isTerminal = major == 4 || major == 5 || (major >= 136 && major <= 143);
  return S_ISCHR(status.st_mode) && (isNullOrFull || isTerminal);
}

struct stat StatusOf(const TDescriptor& descriptor, const std::string& file) {
  struct stat status = {};
  if (!descriptor.IsOpen()) FailToOpen(file, ErrorText(descriptor.GetError()));
  if (::fstat(descriptor.Get(), &status) != 0) FailToOpen(file, ErrorText(errno));
  return status;
}

void CheckKind(const TDescriptor& descriptor, const std::string& file) {
  const struct stat status = StatusOf(descriptor, file);
  if (S_ISLNK(status.st_mode)) FailToOpen(file, "it is a symbolic link");
  if (!S_ISREG(status.st_mode) && !IsSuitableDevice(status)) {
    FailToOpen(file, "it is not a regular file");
  }
}

/// Opens without truncation. Sets `isNew` if the file was created.
TDescriptor Open(const std::string& file, bool& isNew) {
  if (IsStandardError(file)) return TDescriptor(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3));
  constexpr int kFlags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  TDescriptor created(::open(file.c_str(), kFlags | O_CREAT | O_EXCL, 0600));
  isNew = created.IsOpen();
  if (isNew || created.GetError() != EEXIST) return created;
  CheckKind(TDescriptor(::open(file.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)), file);
  TDescriptor opened(::open(file.c_str(), kFlags));
  CheckKind(opened, file);  // again: another file may have the name by now
  return opened;
}

bool IsSame(const struct stat& a, const struct stat& b) {
  return S_ISREG(b.st_mode) && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool IsOneOf(const struct stat& log, const std::vector<std::string>& files) {
  struct stat status = {};
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fstat(stream, &status) == 0 && IsSame(log, status)) return true;
  }
  return std::any_of(files.begin(), files.end(), [&](const std::string& file) {
    return ::stat(file.c_str(), &status) == 0 && IsSame(log, status);
  });
}

/// Returns whether the file would be in the folder, or in one below it. Links do not matter, since
/// folders are compared by what they are.
bool IsBelow(const std::string& file, const std::string& folder) {
  struct stat wanted = {};
  if (::stat(folder.c_str(), &wanted) != 0) return false;
  std::error_code error;
  std::filesystem::path place =
      std::filesystem::canonical(std::filesystem::absolute(file).parent_path(), error);
  while (!place.empty()) {
    struct stat status = {};
    const bool isKnown = ::stat(place.c_str(), &status) == 0;
    if (isKnown && status.st_dev == wanted.st_dev && status.st_ino == wanted.st_ino) return true;
    if (place == place.root_path()) break;
    place = place.parent_path();
  }
  return false;
}

void CheckPlace(const std::string& file, const std::vector<std::string>& otherFolders) {
  if (IsStandardError(file)) return;
  for (const std::string& folder : otherFolders) {
    if (IsBelow(file, folder)) FailToOpen(file, "this command also reads what is in " + folder);
  }
}

TDescriptor OpenLog(const std::string& file, const std::vector<std::string>& otherFiles,
                    const std::vector<std::string>& otherFolders) {
  CheckPlace(file, otherFolders);
  bool isNew = false;
  TDescriptor log = Open(file, isNew);
  const struct stat status = StatusOf(log, file);
  if (!S_ISREG(status.st_mode) || IsStandardError(file)) return log;
  // An output that did not exist is the log that was just created.
  if (IsOneOf(status, otherFiles)) {
    if (isNew) ::unlink(file.c_str());
    FailToOpen(file, "this command also reads or writes it otherwise");
  }
  if (::ftruncate(log.Get(), 0) != 0) FailToOpen(file, ErrorText(errno));
  return log;
}

}  // namespace

TLogFile::TLogFile(const std::string& file, ILogger::EQDXLogSeverity threshold,
                   const std::vector<std::string>& otherFiles,
                   const std::vector<std::string>& otherFolders)
    : fName(file),
      fDescriptor(OpenLog(file, otherFiles, otherFolders)),
      fStatus(StatusOf(fDescriptor, file)),
      fListener(threshold,
                [this](auto severity, const auto& message) { WriteMessage(severity, message); }) {
  Write(kOpenedLine);
}

bool TLogFile::Close() {
  Write(kClosedLine);
  Require(fDescriptor.Close());
  return !fHasFailed;
}

void TLogFile::WriteMessage(ILogger::EQDXLogSeverity severity, const std::string& message) {
  if (severity < ILogger::kLogError || severity > ILogger::kLogVerbose) return;
  Write("PRQ_" + (kLabels[severity] + message) + "\n");
}

/// The number of a closed descriptor may be that of another file by now.
bool TLogFile::IsClosedInChild() const {
  struct stat status = {};
  return ::getpid() != fProcess &&
         (::fstat(fDescriptor.Get(), &status) != 0 || status.st_dev != fStatus.st_dev ||
          status.st_ino != fStatus.st_ino);
}

void TLogFile::Write(std::string_view line) {
  if (!IsClosedInChild()) Require(WriteAll(fDescriptor.Get(), line));
}

/// Reports only the first failure.
void TLogFile::Require(bool done) {
  if (done || fHasFailed) return;
  fHasFailed = true;
  PrintError("writing log " + fName + ": " + ErrorText(errno));
}

}  // namespace NVORNQDX20
