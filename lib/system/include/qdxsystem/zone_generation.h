// SPDX-License-Identifier: Apache-2.0
/// Notices a change of the process's time zone.
#ifndef QDXSYSTEM_ZONE_GENERATION_H_
#define QDXSYSTEM_ZONE_GENERATION_H_

#include <cstdint>
#include <ctime>

#include <sys/stat.h>

namespace NVORNQDX20 {

/// Returns a number for caches of what depends on the time zone: it differs from the last one that
/// this thread got if TZ has another text, or if TZ is not set and /etc/localtime was replaced.
/// Such a file is noticed within a second. Allocates nothing.
///
/// Returns 0 if nothing can be kept: TZ has a text that is too long to be remembered, or it is set
/// and its file was replaced since the library was loaded. The C library reads that file again at
/// some time that cannot be known.
std::uint32_t ZoneGeneration();

/// Does the same, but looks at the file now.
std::uint32_t ZoneGenerationNow();

class TZoneWatch;

/// Returns what ZoneGeneration() and the others look with: for callers that keep it, since to find
/// a variable of a thread takes as long as all the rest.
TZoneWatch& ZoneWatchOfThisThread();

/// What a thread knows of the zone that the process has. Its functions are those of the same names.
///
/// Looks up TZ each time: it can be an entry of the caller's own, whose text changes in place, and
/// so can the name of any other entry.
class TZoneWatch {
 public:
  std::uint32_t Generation() {
    if (!fIsHeld) Look();
    return fKnown;
  }

  std::uint32_t GenerationNow();

  /// Returns whether Generation() does not look.
  bool& Hold() {
    if (!fIsHeld) Look();
    return fIsHeld;
  }

 private:
  void Look();
  bool IsKept(const char* zone) const;
  void Keep(const char* zone);
  bool FindPath(const char* zone);
  void LookAtFile();
  bool IsFileInDoubt() const;
  void Doubt();
  void Advance();
  void ReadFile();

  enum TState {
    kUnknown,
    kUnset,
    kSet,
    kReplaced  // TZ is set, and its file was replaced since the library was loaded
  };

  bool fIsHeld = false;
  TState fState = kUnknown;
  std::uint32_t fKnown = 0;  // the generation, or 0
  std::uint32_t fGeneration = 0;
  std::time_t fSecond = 0;  // of the last look at the file
  struct stat fFile = {};
  char fText[256] = {};
  char fPath[512] = {};
};

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
