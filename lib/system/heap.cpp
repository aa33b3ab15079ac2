// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/heap.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20U;
constexpr std::size_t kMost = std::size_t{1} << 30U;
/// Usually more than is left of the heap, so that it has to grow.
constexpr std::size_t kBlock = std::size_t{256} << 10U;
/// The most that the C library takes. Larger blocks are no part of the heap.
constexpr int kLargestBlock = 32 << 20;
/// What the C library has by default.
constexpr int kUsualGrowth = 128 << 10;
/// For the C library's own numbers at the end of a block: they shall not need a large page.
constexpr std::size_t kSlack = 64;

std::uintptr_t EndOfHeap() { return reinterpret_cast<std::uintptr_t>(::sbrk(0)); }

}  // namespace

void PrepareHeap(std::size_t bytes) {
  static void* volatile filler = nullptr;
  if (filler != nullptr) return;
  const std::uintptr_t oldEnd = EndOfHeap();
  ::mallopt(M_MMAP_THRESHOLD, kLargestBlock);
  ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  ::mallopt(M_TOP_PAD, static_cast<int>(std::min(bytes, kMost)));
  void* volatile block = std::malloc(kBlock);
  // Growing by much more than is needed would fail near a limit.
  ::mallopt(M_TOP_PAD, kUsualGrowth);
  const std::uintptr_t begin = reinterpret_cast<std::uintptr_t>(block), end = EndOfHeap();
  if (end <= oldEnd || begin >= end) return std::free(block);
  // What was written to after the block has small pages already.
  const std::uintptr_t firstLarge = (begin + kBlock + kSlack + kLargePage) & ~(kLargePage - 1);
  if (firstLarge + kLargePage > end) return std::free(block);
  // The block is never used, nor given memory, up to there.
  filler = std::realloc(block, firstLarge - begin - kSlack);
  if (filler == nullptr) return std::free(block);
  (void)::madvise(reinterpret_cast<void*>(firstLarge), end - firstLarge, MADV_HUGEPAGE);
}

}  // namespace NVORNQDX20
