// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/hash.h>

#include <sys/auxv.h>

namespace NVORNQDX20::NModel {
namespace {

THashKey MakeKey() noexcept {
  // Sixteen random bytes from the kernel, unlike getrandom without a call that can fail. Other code
  // of the process uses them, too, so the key is derived from them.
  // NOLINTNEXTLINE(performance-no-int-to-ptr): this is how getauxval returns pointers.
  const auto* const random = reinterpret_cast<const char*>(::getauxval(AT_RANDOM));
  THasher hasher({0x9E3779B97F4A7C15U, 0xD6E8FEB86659FD93U});
  if (random != nullptr) hasher.Add({random, 16});
  const std::uint64_t start = hasher.Get();
  hasher.Add(1);
  return {start, hasher.Get() | 1};
}

}  // namespace

const THashKey& ProcessHashKey() noexcept {
  static const THashKey key = MakeKey();
  return key;
}

}  // namespace NVORNQDX20::NModel
