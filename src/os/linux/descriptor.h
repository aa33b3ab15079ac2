// SPDX-License-Identifier: Apache-2.0
/// An owned file descriptor.
#ifndef SRC_OS_LINUX_DESCRIPTOR_H_
#define SRC_OS_LINUX_DESCRIPTOR_H_

#include <utility>

#include <unistd.h>

namespace NVORNQDX20 {

/// Owns a file descriptor, or none if its number is negative.
class TDescriptor {
 public:
  explicit TDescriptor(int number) : fNumber(number) {}
  ~TDescriptor() { Close(); }
  TDescriptor(TDescriptor&& other) noexcept : fNumber(std::exchange(other.fNumber, -1)) {}
  TDescriptor& operator=(TDescriptor&& other) noexcept {
    std::swap(fNumber, other.fNumber);
    return *this;
  }

  bool IsOpen() const { return fNumber >= 0; }
  int Get() const { return fNumber; }
  /// Whether the system closed it without an error; it is gone either way.
  bool Close() { return !IsOpen() || ::close(std::exchange(fNumber, -1)) == 0; }

 private:
  int fNumber;
};

}  // namespace NVORNQDX20

#endif  // SRC_OS_LINUX_DESCRIPTOR_H_
