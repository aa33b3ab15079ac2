// SPDX-License-Identifier: Apache-2.0
/// Owners of file descriptors.
#ifndef QDXSYSTEM_DESCRIPTOR_H_
#define QDXSYSTEM_DESCRIPTOR_H_

namespace NVORNQDX20 {

/// Owns a file descriptor, or none. Constructed on the line that opens it:
///
///   const TDescriptor file(::open(path, O_RDONLY | O_CLOEXEC));
///   if (!file.IsOpen()) Fail(ErrorText(file.GetError()));
class TDescriptor {
 public:
  TDescriptor() = default;
  /// Takes the result of open() or a similar call. A negative number is a failure; keeps its errno.
  explicit TDescriptor(int number);
  TDescriptor(TDescriptor&& other) noexcept;
  /// Closes the descriptor that it owned before.
  TDescriptor& operator=(TDescriptor&& other) noexcept;
  /// Closes the descriptor. Does not change errno, so that callers can still report a failure.
  ~TDescriptor();

  bool IsOpen() const { return fNumber >= 0; }
  /// Returns a negative number if it owns none.
  int Get() const { return fNumber; }
  /// Returns the errno of the failed open, or 0.
  int GetError() const { return fError; }
  /// Transfers the descriptor to the caller, who must close it.
  [[nodiscard]] int Release();
  /// Returns false, with errno set, if the system reports an error; the descriptor is closed
  /// anyway.
  bool Close();

 private:
  int fNumber = -1;
  int fError = 0;
};

/// Both ends of a pipe, or neither.
struct TPipe {
  TDescriptor fReadEnd;
  TDescriptor fWriteEnd;
};

/// On failure neither end is open, and errno is set. Both ends are close-on-exec, and neither has
/// the number of a standard stream: with a closed standard stream, a plain pipe() would take its
/// number, and redirecting a child's streams would overwrite it.
TPipe OpenPipe();

/// Opens /dev/null, or an empty pipe, on each standard descriptor that is closed. Otherwise the
/// next file that is opened, such as a log, would get its number and its output. Opened read-only,
/// so that writing to a closed standard output still fails.
void OccupyStandardDescriptors();

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_DESCRIPTOR_H_
