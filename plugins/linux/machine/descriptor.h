// SPDX-License-Identifier: Apache-2.0
/// An owned file descriptor.
#ifndef PLUGINS_LINUX_MACHINE_DESCRIPTOR_H_
#define PLUGINS_LINUX_MACHINE_DESCRIPTOR_H_

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace NVORNQDX20 {

/// Closes its descriptor. Made straight from the result of an opening call, so that it also keeps
/// the error of one that failed.
class TDescriptor {
 public:
  explicit TDescriptor(int descriptor)
      : fDescriptor(descriptor), fError(descriptor < 0 ? errno : 0) {}
  TDescriptor(TDescriptor&& other) noexcept
      : fDescriptor(std::exchange(other.fDescriptor, -1)), fError(other.fError) {}
  TDescriptor& operator=(TDescriptor&& other) noexcept {
    std::swap(fDescriptor, other.fDescriptor);
    std::swap(fError, other.fError);
    return *this;
  }
  ~TDescriptor() {
    if (fDescriptor >= 0) ::close(fDescriptor);
  }

  explicit operator bool() const { return fDescriptor >= 0; }
  int Get() const { return fDescriptor; }
  /// The errno of the failed call, or 0.
  int GetError() const { return fError; }
  /// Hands the descriptor to the caller.
  int Release() { return std::exchange(fDescriptor, -1); }

 private:
  int fDescriptor;
  int fError;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_DESCRIPTOR_H_
