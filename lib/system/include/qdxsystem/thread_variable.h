// SPDX-License-Identifier: Apache-2.0
/// Variables of threads in code that is called often.
#ifndef QDXSYSTEM_THREAD_VARIABLE_H_
#define QDXSYSTEM_THREAD_VARIABLE_H_

namespace NVORNQDX20 {

/// Returns the variable, so that the caller finds its address only once. In a shared library that
/// is a call, which takes longer than what is done with the variable; and compilers call again
/// after each branch instead of keeping the address.
///
///   thread_local TCache gCache;
///   TCache& cache = FoundOnce(gCache);
template <typename T>
T& FoundOnce(T& variable) {
  T* address = &variable;
  // What the compiler cannot see through, it cannot make again.
  asm("" : "+r"(address));
  return *address;
}

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_THREAD_VARIABLE_H_
