// SPDX-License-Identifier: Apache-2.0
/// The order of the documents of a host.
#ifndef TOOLS_QDX_STORE_STORAGE_MOMENT_H_
#define TOOLS_QDX_STORE_STORAGE_MOMENT_H_

#include <cstdint>
#include <limits>
#include <string>

namespace NVORNQDX20::NStore {

/// The time of a document in milliseconds since 1970, times 2^20, plus the first 20 bits of the
/// document's digest. So two documents of one host with the same time have an order, too, which
/// does not depend on which of them was added first.
using TMoment = std::int64_t;

/// The end of what still holds.
inline constexpr TMoment kStillValid = std::numeric_limits<TMoment>::max();
inline constexpr int kDigestBits = 20;

/// `microseconds` since 1970. Throws kQDXStatusInvalidDateTime for a time before 1970 or after
/// 2199, and kQDXStatusInvalidFormat if the digest has no five hexadecimal digits.
TMoment MomentOf(std::int64_t microseconds, const std::string& digest);

/// The same for the first moment of a time, whatever the digest.
TMoment FirstMomentOf(std::int64_t microseconds);

/// Returns the milliseconds since 1970.
inline std::int64_t TimeOf(TMoment moment) { return moment >> kDigestBits; }

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_MOMENT_H_
