// SPDX-License-Identifier: Apache-2.0
/// Counts the calls of a process, and decides which of them fails.
#ifndef FAULTS_COUNTING_H_
#define FAULTS_COUNTING_H_

#include <cerrno>

/// What ErrorOf returns for a call that shall transfer a part of the bytes.
constexpr int kShortCall = -1;

/// Counts a call, and returns its error, kShortCall, or 0. The name is one of kCalls.
int ErrorOf(const char* name, const char* argument = "");

/// While one exists, nothing is counted and nothing fails.
class TPause {
 public:
  TPause();
  ~TPause();
  TPause(const TPause&) = delete;
  TPause& operator=(const TPause&) = delete;

 private:
  bool fWasPaused;
};

/// Call both around fork(), the second in the child.
void ExpectChild();
void BecomeChild();

/// Fails like a call, with errno set.
template <typename T>
T FailWith(int error, T result) {
  errno = error;
  return result;
}

/// Makes a system call; a failure returns a negative error.
long RawCall(long number, long a = 0, long b = 0, long c = 0, long d = 0, long e = 0, long f = 0);

template <typename T>
long Word(T* pointer) {
  return reinterpret_cast<long>(pointer);
}

/// Returns what a function of the C library returns for the result of RawCall.
inline long Returned(long result) {
  if (result >= 0) return result;
  errno = static_cast<int>(-result);
  return -1;
}

#endif  // FAULTS_COUNTING_H_
