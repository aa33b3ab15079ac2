// SPDX-License-Identifier: Apache-2.0
#include "payload_memory.h"

#include <initializer_list>
#include <utility>

namespace NVORNQDX20 {
namespace {

// Blocks that are kept would hide the use of values after their end.
#if defined(__clang__)
constexpr bool kIsUseChecked = __has_feature(address_sanitizer);
#elif defined(__SANITIZE_ADDRESS__)
constexpr bool kIsUseChecked = true;
#else
constexpr bool kIsUseChecked = false;
#endif

/// Of each size: enough for the values of some instances, and at most 10 KB for a thread.
constexpr unsigned int kMostKept = kIsUseChecked ? 0 : 128;

}  // namespace

/// Returns the blocks when the thread ends. The memory of values that are destroyed even later,
/// such as those in static variables, is not kept.
class TPayloadMemory::TReturnAtThreadEnd {
 public:
  explicit TReturnAtThreadEnd(TBlocksOfThread& blocks) : fBlocks(blocks) {
    fBlocks.fSmall.fRoom = fBlocks.fLarge.fRoom = kMostKept;
  }
  TReturnAtThreadEnd(const TReturnAtThreadEnd&) = delete;
  TReturnAtThreadEnd& operator=(const TReturnAtThreadEnd&) = delete;
  ~TReturnAtThreadEnd() {
    for (TBlocks* const blocks : {&fBlocks.fSmall, &fBlocks.fLarge}) {
      blocks->fRoom = 0;
      while (TBlock* const first = blocks->fFirst) {
        blocks->fFirst = first->fNext;
        ::operator delete(first);
      }
    }
  }

 private:
  TBlocksOfThread& fBlocks;
};

void TPayloadMemory::KeepFirstOrReturn(TBlocks& blocks, void* memory) noexcept {
  if (std::exchange(gBlocks.fWasOpened, true)) return ::operator delete(memory);
  thread_local const TReturnAtThreadEnd atEnd(gBlocks);
  if (blocks.fRoom == 0) return ::operator delete(memory);
  --blocks.fRoom;
  blocks.fFirst = ::new (memory) TBlock{blocks.fFirst};
}

}  // namespace NVORNQDX20
