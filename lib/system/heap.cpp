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

char* EndOfHeap() { return static_cast<char*>(::sbrk(0)); }

}  // namespace

void PrepareHeap(std::size_t bytes) {
  static void* volatile filler = nullptr;
  if (filler != nullptr) return;
  const char* const oldEnd = EndOfHeap();
  ::mallopt(M_MMAP_THRESHOLD, kLargestBlock);
  ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  ::mallopt(M_TOP_PAD, static_cast<int>(std::min(bytes, kMost)));
  char* const block = static_cast<char*>(std::malloc(kBlock));
  // Growing by much more than is needed would fail near a limit.
  ::mallopt(M_TOP_PAD, kUsualGrowth);
  char* const end = EndOfHeap();
  if (block == nullptr || end <= oldEnd || block >= end) return std::free(block);
  // What was written to after the block has small pages already.
  const std::size_t place = reinterpret_cast<std::uintptr_t>(block) % kLargePage;
  const std::size_t left = kLargePage - place;
  const std::size_t before = left < kBlock + kSlack ? left + kLargePage : left;
  const std::size_t room = static_cast<std::size_t>(end - block);
  if (room < before + kLargePage) return std::free(block);
  // The block is never used, nor given memory, up to there.
  void* const resized = std::realloc(block, before - kSlack);
  if (resized == nullptr) return std::free(block);
  filler = resized;
  (void)::madvise(end - (room - before), room - before, MADV_HUGEPAGE);
}

}  // namespace NVORNQDX20
