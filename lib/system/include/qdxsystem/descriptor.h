// SPDX-License-Identifier: Apache-2.0
/// File descriptors with an owner.
#ifndef QDXSYSTEM_DESCRIPTOR_H_
#define QDXSYSTEM_DESCRIPTOR_H_

namespace NVORNQDX20 {

/// Owns a file descriptor, or none. Made on the line that opens it:
///
///   const TDescriptor file(::open(path, O_RDONLY | O_CLOEXEC));
///   if (!file.IsOpen()) Fail(ErrorText(file.GetError()));
class TDescriptor {
 public:
  TDescriptor() = default;
  /// Takes the result of an opening call: a negative number is a failed one, whose errno is kept.
  explicit TDescriptor(int number);
  TDescriptor(TDescriptor&& other) noexcept;
  /// Closes what it owned before.
  TDescriptor& operator=(TDescriptor&& other) noexcept;
  /// Leaves errno alone, so that the failure that ended a function can still be reported.
  ~TDescriptor();

  bool IsOpen() const { return fNumber >= 0; }
  /// Negative if it owns none.
  int Get() const { return fNumber; }
  /// The errno of the call that failed to open it, or 0.
  int GetError() const { return fError; }
  /// Hands the descriptor to the caller, who must close it.
  [[nodiscard]] int Release();
  /// False, with errno, if the system reports an error; the descriptor is closed nevertheless.
  bool Close();

 private:
  int fNumber = -1;
  int fError = 0;
};

/// Both ends of a pipe, or none.
struct TPipe {
  TDescriptor fReadEnd;
  TDescriptor fWriteEnd;
};

/// Neither end is open if that fails; errno has the reason. Both close on exec, and neither has
/// the number of a standard stream: where one of these is closed, a plain pipe takes its number,
/// and is then overwritten when a child's streams are redirected.
TPipe OpenPipe();

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_DESCRIPTOR_H_
