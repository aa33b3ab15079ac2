// SPDX-License-Identifier: Apache-2.0
/// The memory of payloads, and of the bodies of references. A thread keeps that of some that it
/// destroyed for those that it makes next: most values and references live for a call or a line,
/// and the allocator takes much longer.
#ifndef SRC_CORE_PAYLOAD_MEMORY_H_
#define SRC_CORE_PAYLOAD_MEMORY_H_

#include <qdxsystem/thread_variable.h>

#include <cstddef>
#include <new>

namespace NVORNQDX20 {

/// Some blocks for each of three sizes: numbers and what has a body of its own; texts and arrays;
/// the bodies of references.
class TPayloadMemory {
 public:
  static constexpr std::size_t kSmall = 24;
  static constexpr std::size_t kLarge = 40;
  static constexpr std::size_t kBody = 152;

  /// Returns memory of this size.
  template <std::size_t kSize>
  static void* Take() {
    TBlocks& blocks = Blocks<kSize>();
    TBlock* const first = blocks.fFirst;
    if (first == nullptr) return ::operator new(kBlockSize<kSize>);
    blocks.fFirst = first->fNext;
    ++blocks.fRoom;
    return first;
  }

  /// Takes back what Take<kSize>() returned, on this thread or another.
  template <std::size_t kSize>
  static void Keep(void* memory) noexcept {
    TBlocks& blocks = Blocks<kSize>();
    if (blocks.fRoom == 0) return KeepFirstOrReturn(blocks, memory);
    --blocks.fRoom;
    blocks.fFirst = ::new (memory) TBlock{blocks.fFirst};
  }

 private:
  struct TBlock {
    TBlock* fNext;
  };
  struct TBlocks {
    TBlock* fFirst;
    unsigned int fRoom;  // for so many more blocks
  };
  /// All zero at first, so that a thread does nothing before its first payload.
  struct TBlocksOfThread {
    TBlocks fSmall;
    TBlocks fLarge;
    TBlocks fBodies;
    bool fWasOpened;
  };

  template <std::size_t kSize>
  static constexpr std::size_t kBlockSize = kSize <= kSmall   ? kSmall
                                            : kSize <= kLarge ? kLarge
                                                              : kBody;

  template <std::size_t kSize>
  static TBlocks& Blocks() {
    static_assert(kSize <= kBlockSize<kSize>);
    TBlocksOfThread& blocks = FoundOnce(gBlocks);
    if constexpr (kBlockSize<kSize> == kSmall) return blocks.fSmall;
    if constexpr (kBlockSize<kSize> == kLarge) return blocks.fLarge;
    return blocks.fBodies;
  }
  static void ReturnBlocks(void* blocksOfThread) noexcept;
  static void KeepFirstOrReturn(TBlocks& blocks, void* memory) noexcept;

  static inline thread_local TBlocksOfThread gBlocks = {};
};

}  // namespace NVORNQDX20

#endif  // SRC_CORE_PAYLOAD_MEMORY_H_
