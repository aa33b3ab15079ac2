// SPDX-License-Identifier: Apache-2.0
#include "payload_memory.h"

#include <qdxsystem/thread_end.h>

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
/// At most 5 KB.
constexpr unsigned int kMostBodies = kIsUseChecked ? 0 : 32;

}  // namespace

void TPayloadMemory::ReturnBlocks(void* blocksOfThread) noexcept {
  auto& all = *static_cast<TBlocksOfThread*>(blocksOfThread);
  for (TBlocks* const blocks : {&all.fSmall, &all.fLarge, &all.fBodies}) {
    blocks->fRoom = 0;
    while (TBlock* const first = blocks->fFirst) {
      blocks->fFirst = first->fNext;
      ::operator delete(first);
    }
  }
}

// The memory of values that are destroyed after the end of the thread or of the library, such as
// those in static variables, is not kept.
void TPayloadMemory::KeepFirstOrReturn(TBlocks& blocks, void* memory) noexcept {
  static const TThreadEnd end(&ReturnBlocks);
  if (!std::exchange(gBlocks.fWasOpened, true) && end.Expect(&gBlocks)) {
    gBlocks.fSmall.fRoom = gBlocks.fLarge.fRoom = kMostKept;
    gBlocks.fBodies.fRoom = kMostBodies;
  }
  if (blocks.fRoom == 0) return ::operator delete(memory);
  --blocks.fRoom;
  blocks.fFirst = ::new (memory) TBlock{blocks.fFirst};
}

}  // namespace NVORNQDX20
