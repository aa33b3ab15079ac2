// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/descriptor.h>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

bool MoveAboveStandardStreams(TDescriptor& end) {
  if (end.Get() <= STDERR_FILENO) {
    end = TDescriptor(::fcntl(end.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  }
  return end.IsOpen();
}

/// Returns a descriptor that cannot be written, and that children inherit. Without /dev/null, as in
/// a bare chroot, an empty pipe.
TDescriptor OpenNothing() {
  TDescriptor null(::open("/dev/null", O_RDONLY));
  if (null.IsOpen()) return null;
  int ends[2] = {-1, -1};
  if (::pipe(ends) == 0) ::close(ends[1]);
  return TDescriptor(ends[0]);
}

}  // namespace

TDescriptor::TDescriptor(int number) : fNumber(number), fError(number < 0 ? errno : 0) {}

TDescriptor::TDescriptor(TDescriptor&& other) noexcept
    : fNumber(other.Release()), fError(other.fError) {}

TDescriptor& TDescriptor::operator=(TDescriptor&& other) noexcept {
  TDescriptor taken(std::move(other));
  std::swap(fNumber, taken.fNumber);
  std::swap(fError, taken.fError);
  return *this;
}

TDescriptor::~TDescriptor() {
  const int error = errno;
  Close();
  errno = error;
}

int TDescriptor::Release() { return std::exchange(fNumber, -1); }

bool TDescriptor::Close() { return !IsOpen() || ::close(Release()) == 0; }

TPipe OpenPipe() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return {};
  TPipe pipe{TDescriptor(ends[0]), TDescriptor(ends[1])};
  if (!MoveAboveStandardStreams(pipe.fReadEnd) || !MoveAboveStandardStreams(pipe.fWriteEnd)) {
    return {};
  }
  return pipe;
}

void OccupyStandardDescriptors() {
  int number = STDIN_FILENO;
  while (number >= 0 && number <= STDERR_FILENO) {
    TDescriptor file = OpenNothing();
    number = file.Get();
    if (number <= STDERR_FILENO) (void)file.Release();
  }
}

}  // namespace NVORNQDX20
