// SPDX-License-Identifier: Apache-2.0
/// What the benchmarks measure: operations of the library, each beside the least that it can cost.
#ifndef BENCH_OPERATION_H_
#define BENCH_OPERATION_H_

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace NBench {

/// Runs an operation `count` times.
using TLoop = std::function<void(std::size_t count)>;
/// Prepares the data of an operation, and returns the loop that is measured.
using TPrepare = std::function<TLoop()>;

/// The time zone of the process, on which the C library's work depends.
enum EZone {
  kZoneSet,        ///< TZ names a zone.
  kZoneUnset,      ///< The C library looks at /etc/localtime.
  kManyVariables,  ///< The same, and the environment has 500 more variables.
};

struct TOperation {
  std::string fName;
  TPrepare fOurs;
  std::string fLimitName;  ///< What the limit is, for people.
  TPrepare fLimit;
  /// What ours may be at most, as a multiple of the limit; 0 for no aim.
  double fAim = 0;
  EZone fZone = kZoneSet;
  /// The number of instances that one run handles; figures are for one of them.
  std::size_t fInstances = 1;
  /// Each run has its own preparation, which is not measured.
  bool fIsPreparedEachTime = false;
  /// The measure is the growth of the heap instead of the time.
  bool fIsMemory = false;
  /// Runs when instructions are counted; 0 if they are not, since they are not always the same.
  std::size_t fCountedRuns = 200;
};
using TOperations = std::vector<TOperation>;

// The table, in parts.
TOperations DateTimeOperations();
TOperations ValueOperations();
TOperations PathOperations();
TOperations LogOperations();
/// `isCounted`: with sizes that do not take too long when instructions are counted.
TOperations InstanceOperations(bool isCounted);
TOperations DocumentOperations(bool isCounted);
TOperations TableOperations(bool isCounted);
TOperations SystemOperations();

/// Keeps the compiler from leaving out what made the value, and from knowing it.
template <typename T>
void Keep(T& value) {
  asm volatile("" : : "r"(&value) : "memory");
}

/// Returns the loop that calls `body`, and keeps its result.
template <typename TBody>
TLoop Repeat(TBody body) {
  return [body](std::size_t count) mutable {
    for (; count > 0; --count) {
      if constexpr (std::is_void_v<decltype(body())>) {
        body();
      } else {
        auto result = body();
        Keep(result);
      }
    }
  };
}

}  // namespace NBench

#endif  // BENCH_OPERATION_H_
