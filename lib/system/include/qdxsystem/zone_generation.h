// SPDX-License-Identifier: Apache-2.0
/// Notices a change of the process's time zone.
#ifndef QDXSYSTEM_ZONE_GENERATION_H_
#define QDXSYSTEM_ZONE_GENERATION_H_

#include <cstdint>

namespace NVORNQDX20 {

/// Returns a number for caches of what depends on the time zone: it differs from the last one that
/// this thread got if TZ has another text, or if TZ is not set and /etc/localtime was replaced.
/// Such a file is noticed within a second. Allocates nothing.
///
/// Returns 0 if nothing can be kept: TZ has a text that is too long to be remembered, or it is set
/// and its file was replaced since. The C library reads that file again at some time that cannot be
/// known.
std::uint32_t ZoneGeneration();

/// Does the same, but looks at the file now.
std::uint32_t ZoneGenerationNow();

/// Looks at the zone once, and keeps ZoneGeneration() of this thread from looking again: looking
/// costs more than the rest of an operation, above all where there are many variables. For a few
/// lines that change neither the environment nor the zone. A second one changes nothing.
class TZoneHold {
 public:
  TZoneHold();
  ~TZoneHold();
  TZoneHold(const TZoneHold&) = delete;
  TZoneHold& operator=(const TZoneHold&) = delete;

 private:
  bool& fIsHeld;
  const bool fIsFirst;
};

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_ZONE_GENERATION_H_
