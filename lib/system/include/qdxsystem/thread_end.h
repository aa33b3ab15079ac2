// SPDX-License-Identifier: Apache-2.0
/// What is done when a thread ends.
#ifndef QDXSYSTEM_THREAD_END_H_
#define QDXSYSTEM_THREAD_END_H_

#include <pthread.h>

namespace NVORNQDX20 {

/// Calls a function at the end of each thread that asks for it, after the destructors of its
/// variables. Those variables cannot do that themselves where memory may be out: the process ends
/// if there is none for the note of a destructor.
class TThreadEnd {
 public:
  using TFunction = void (*)(void*) noexcept;

  explicit TThreadEnd(TFunction function);
  TThreadEnd(const TThreadEnd&) = delete;
  TThreadEnd& operator=(const TThreadEnd&) = delete;
  /// Does it for the calling thread, since the main one has no such end. Other threads that still
  /// run are forgotten.
  ~TThreadEnd();

  /// Returns whether the function will be called with this argument when the calling thread ends.
  bool Expect(void* argument) const noexcept;

 private:
  TFunction fFunction;
  ::pthread_key_t fKey = 0;
  bool fHasKey;
};

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_THREAD_END_H_
