// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/heap.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace NVORNQDX20;

constexpr std::size_t kMegabyte = std::size_t{1} << 20U;

long Faults() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt;
}

/// Returns whether the kernel has large pages and gives them to this process.
bool HasLargePages() {
  constexpr std::size_t kLargePage = 2 * kMegabyte;
  void* const memory =
      ::mmap(nullptr, 3 * kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return false;
  char* const first = static_cast<char*>(memory);
  char* const pages = first + (kLargePage - reinterpret_cast<std::uintptr_t>(first) % kLargePage);
  ::madvise(pages, 2 * kLargePage, MADV_HUGEPAGE);
  const long before = Faults();
  std::memset(pages, 1, 2 * kLargePage);
  return Faults() - before < 16;
}

/// Takes and fills blocks of this size, as many as make `bytes`. Returns whether there is memory.
bool Fill(std::size_t bytes, std::size_t size) {
  for (std::size_t taken = 0; taken < bytes; taken += size) {
    void* volatile block = std::malloc(size);
    if (block == nullptr) return false;
    std::memset(block, 1, size);
  }
  return true;
}

/// The end of the heap does not move any more, and few pages are taken one by one.
bool GrowsOnce(std::size_t size) {
  const void* const before = ::sbrk(0);
  PrepareHeap(16 * kMegabyte);
  const void* const end = ::sbrk(0);
  PrepareHeap(16 * kMegabyte);  // has room
  const long faults = Faults();
  if (!Fill(8 * kMegabyte, size) || ::sbrk(0) != end) return false;
  const long taken = Faults() - faults;
  const long pages = 8 * static_cast<long>(kMegabyte) / ::sysconf(_SC_PAGESIZE);
  // A sanitizer has a heap of its own.
  return end == before || taken < pages / 4 || !HasLargePages();
}

/// With too little address space the heap grows as if nothing had been prepared.
bool GrowsWithinLimit() {
  std::ifstream file("/proc/self/statm");
  rlim_t pages = 0;
  file >> pages;
  const rlim_t limit = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + 6 * kMegabyte;
  const rlimit limits = {limit, limit};
  ::setrlimit(RLIMIT_AS, &limits);
  PrepareHeap(16 * kMegabyte);
  return Fill(4 * kMegabyte, 1000);
}

// In processes of their own, since a heap cannot be made small again.
void Exit(bool isGood) { ::_exit(isGood ? 0 : 1); }

TEST(Heap, GrowsOnceInLargePages) {
  for (const std::size_t size : {std::size_t{24}, std::size_t{1000}, std::size_t{200'000}}) {
    EXPECT_EXIT(Exit(GrowsOnce(size)), ::testing::ExitedWithCode(0), "") << size;
  }
}

TEST(Heap, GrowsWithinALimit) {
  EXPECT_EXIT(Exit(GrowsWithinLimit()), ::testing::ExitedWithCode(0), "");
}

}  // namespace
