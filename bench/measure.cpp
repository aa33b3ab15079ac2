// SPDX-License-Identifier: Apache-2.0
#include "measure.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include <malloc.h>
#include <unistd.h>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#define BENCH_CAN_COUNT 1
#endif

namespace {

std::uint64_t allocations = 0;

}  // namespace

// Count what the libraries allocate, too: they take the operators of the program.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace NBench {
namespace {

using TClock = std::chrono::steady_clock;

constexpr double kBatchNanoseconds = 5e6;
// Where a round takes long, fewer of them do.
constexpr double kMostNanoseconds = 1e9;
constexpr unsigned int kFewestRounds = 3;
constexpr double kNone = std::numeric_limits<double>::max();

void SetEnvironment(EZone zone) {
  if (zone == kManyVariables) {
    for (int i = 0; i < 500; ++i) {
      ::setenv(("BENCH_VARIABLE_" + std::to_string(i)).c_str(), "with some contents", 1);
    }
  }
  if (zone == kZoneSet) {
    ::setenv("TZ", "Europe/Berlin", 1);
  } else {
    ::unsetenv("TZ");
  }
}

/// Leaves the pages that are needed in the heap, since the time of the system to provide them
/// varies tenfold between machines.
void PrepareHeap(std::size_t bytes) {
  ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  ::mallopt(M_MMAP_MAX, 0);
  std::vector<char> pages(bytes);
  Keep(pages);
}

double HeapInUse() {
  const struct mallinfo2 now = ::mallinfo2();
  return static_cast<double>(now.uordblks);
}

/// One of the two sides, the operation or its limit.
class TSide {
 public:
  TSide(const TOperation& operation, const TPrepare& prepare)
      : fOperation(operation), fPrepare(prepare) {
    if (!fPrepare) return;
    fLoop = fPrepare();
    const std::uint64_t before = allocations;
    fLoop(1);
    fAllocations = static_cast<double>(allocations - before) / Instances();
    if (!fOperation.fIsPreparedEachTime) FindBatch();
  }

  /// Returns how long it took, in nanoseconds.
  double RunOnce() {
    if (!fPrepare) return 0;
    if (fOperation.fIsPreparedEachTime) {
      fLoop = nullptr;
      fLoop = fPrepare();
    }
    const double heap = HeapInUse();
    const double taken = Time(fBatch);
    const double measure =
        fOperation.fIsMemory ? HeapInUse() - heap : taken / static_cast<double>(fBatch);
    fLeast = std::min(fLeast, measure / Instances());
    return taken;
  }

  double Least() const { return fLeast; }
  double Allocations() const { return fAllocations; }

 private:
  double Instances() const { return static_cast<double>(fOperation.fInstances); }

  double Time(std::size_t count) const {
    const auto start = TClock::now();
    fLoop(count);
    return std::chrono::duration<double, std::nano>(TClock::now() - start).count();
  }

  void FindBatch() {
    while (fBatch < std::size_t{1} << 30 && Time(fBatch) < kBatchNanoseconds) fBatch *= 2;
  }

  const TOperation& fOperation;
  const TPrepare& fPrepare;
  TLoop fLoop;
  std::size_t fBatch = 1;
  double fAllocations = 0;
  double fLeast = kNone;
};

void PrintNumber(const char* name, double number) {
  if (number == kNone) {
    std::printf("\"%s\": null, ", name);
  } else {
    std::printf("\"%s\": %.2f, ", name, number);
  }
}

}  // namespace

void PrintMeasures(const TOperation& operation, unsigned int rounds) {
  SetEnvironment(operation.fZone);
  if (operation.fIsPreparedEachTime) PrepareHeap(operation.fInstances * 2000);
  TSide ours(operation, operation.fOurs);
  TSide limit(operation, operation.fLimit);
  double taken = 0;
  for (unsigned int i = 0; i < rounds && (i < kFewestRounds || taken < kMostNanoseconds); ++i) {
    taken += ours.RunOnce();
    taken += limit.RunOnce();
  }
  std::printf("{\"name\": \"%s\", \"unit\": \"%s\", ", operation.fName.c_str(),
              operation.fIsMemory ? "bytes" : "ns");
  PrintNumber("ours", ours.Least());
  PrintNumber("limit", limit.Least());
  PrintNumber("allocations", ours.Allocations());
  PrintNumber("aim", operation.fAim);
  std::printf("\"limit_is\": \"%s\"}\n", operation.fLimitName.c_str());
}

void CountInstructions([[maybe_unused]] const TOperation& operation) {
#ifdef BENCH_CAN_COUNT
  if (RUNNING_ON_VALGRIND == 0) {
    std::fputs("qdxcore_bench: --count needs callgrind\n", stderr);
    ::_exit(1);
  }
  SetEnvironment(operation.fZone);
  TLoop loop = operation.fOurs();
  const std::size_t runs = operation.fIsPreparedEachTime ? 1 : operation.fCountedRuns;
  if (!operation.fIsPreparedEachTime) loop(2);  // what only the first run does is not counted
  CALLGRIND_START_INSTRUMENTATION;
  loop(runs);
  CALLGRIND_STOP_INSTRUMENTATION;
  const std::string name = std::to_string(runs * operation.fInstances) + " of " + operation.fName;
  CALLGRIND_DUMP_STATS_AT(name.c_str());
#else
  std::fputs("qdxcore_bench: built without the header of callgrind\n", stderr);
  ::_exit(1);
#endif
}

}  // namespace NBench
