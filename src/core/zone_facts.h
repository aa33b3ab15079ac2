// SPDX-License-Identifier: Apache-2.0
/// What is known of the host's time zone, so that the C library need not be asked each time.
#ifndef SRC_CORE_ZONE_FACTS_H_
#define SRC_CORE_ZONE_FACTS_H_

#include <cstddef>
#include <cstdint>
#include <limits>

namespace NVORNQDX20 {

class TZoneWatch;

/// The largest distance of a time zone from UTC that a zone file can express.
constexpr std::int64_t kZoneReach = 4 * std::int64_t{86400};

/// A cache of some years for each thread.
///
/// All that is found after one look at the zone is of that zone, or it is kVarying.
class TZoneFacts {
 public:
  static constexpr std::int32_t kVarying = std::numeric_limits<std::int32_t>::min();

  /// Looks at the zone, once for each operation: it costs more than all the rest.
  static TZoneFacts& OfThisThread();

  /// Returns the seconds that mktime() subtracts from every reading of the wall clock from three
  /// days before to three days after this one, none of which becomes the instant -1; or kVarying.
  /// So they are ordered like their instants. A reading is in seconds since 1970 without daylight
  /// saving. In zones with leap seconds, this is not exact for a field of seconds that carries
  /// over.
  std::int32_t SubtractedAround(std::int64_t reading) { return Find(reading).fSubtracted; }

  /// Returns the seconds that the wall clock without daylight saving is ahead of this instant by
  /// localtime_r(): at the instant or, during daylight saving, an hour before; or kVarying.
  std::int32_t AheadAt(std::int64_t instant) { return Find(instant).fAhead; }

 private:
  static constexpr std::size_t kStretches = 2048;  // 68 years
  /// Some twelve days; a power of two divides fastest.
  static constexpr std::int64_t kStretch = std::int64_t{1} << 20;
  /// A number of stretches, so that none is negative, and none that is asked for is 0.
  static constexpr std::int64_t kStretchesBefore1970 = std::int64_t{1} << 28;

  struct TStretch {
    std::uint32_t fNumber;  // or 0 for an unknown one
    std::int32_t fSubtracted;
    std::int32_t fAhead;
  };

  const TStretch& Find(std::int64_t seconds) {
    const auto number = static_cast<std::uint32_t>(
        static_cast<std::uint64_t>(seconds + kStretchesBefore1970 * kStretch) / kStretch);
    TStretch& stretch = fStretches[number % kStretches];
    return stretch.fNumber == number ? stretch : Examine(stretch, number);
  }

  const TStretch& Examine(TStretch& stretch, std::uint32_t number);
  void Forget(std::uint32_t zone);

  TZoneWatch* fWatch = nullptr;
  std::uint32_t fZone = 0;
  TStretch fStretches[kStretches] = {};
};

}  // namespace NVORNQDX20

#endif  // SRC_CORE_ZONE_FACTS_H_
