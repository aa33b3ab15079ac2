// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/thread_variable.h>
#include <qdxsystem/zone_generation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

/// Returns the text of TZ, or null. Takes less time than getenv(), which looks for any name.
const char* FindZone() {
  if (environ == nullptr) return nullptr;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const char* const text = *entry;
    if (text[0] == 'T' && text[1] == 'Z' && text[2] == '=') return text + 3;
  }
  return nullptr;
}

/// Looks up TZ each time: it can be an entry of the caller's own, whose text changes in place, and
/// so can the name of any other entry.
class TZoneWatch {
 public:
  std::uint32_t Generation() {
    if (!fIsHeld) Look(false);
    return Last();
  }

  std::uint32_t GenerationNow() {
    Look(true);
    return Last();
  }

  /// Returns whether Generation() does not look.
  bool& Hold() {
    if (!fIsHeld) Look(false);
    return fIsHeld;
  }

 private:
  enum TState {
    kUnknown,
    kUnset,
    kSet,
    kReplaced  // TZ is set, and its file was replaced since
  };

  /// Inline in its callers: a call would cost a tenth of a comparison of date-times.
  __attribute__((always_inline)) void Look(bool looksAtFileNow) {
    const char* const zone = FindZone();
    if (!IsKept(zone)) {
      Keep(zone);
    } else if (looksAtFileNow || std::time(nullptr) != fSecond) {
      LookAtFile();
    }
  }

  std::uint32_t Last() const { return fState == kUnset || fState == kSet ? fGeneration : 0; }

  bool IsKept(const char* zone) const {
    if (fState == kUnset) return zone == nullptr;
    return fState != kUnknown && zone != nullptr && std::strcmp(zone, fText) == 0;
  }

  /// `zone` is the text of TZ, or null.
  __attribute__((noinline)) void Keep(const char* zone) {
    fState = kUnknown;
    Advance();
    if (zone == nullptr) {
      constexpr char kLocalTime[] = "/etc/localtime";
      std::memcpy(fPath, kLocalTime, sizeof kLocalTime);
      fState = kUnset;
    } else if (std::strlen(zone) < sizeof fText && FindPath(zone)) {
      std::memcpy(fText, zone, std::strlen(zone) + 1);
      fState = kSet;
    }
    if (fState != kUnknown) ReadFile();
  }

  /// Finds the file that the C library looks for. There is none if the text describes the zone.
  bool FindPath(const char* zone) {
    if (*zone == ':') ++zone;
    if (*zone == '\0') zone = "Universal";
    const char* folder = std::getenv("TZDIR");
    if (folder == nullptr || *folder == '\0') folder = "/usr/share/zoneinfo";
    const int size = *zone == '/' ? std::snprintf(fPath, sizeof fPath, "%s", zone)
                                  : std::snprintf(fPath, sizeof fPath, "%s/%s", folder, zone);
    return size >= 0 && static_cast<std::size_t>(size) < sizeof fPath;
  }

  __attribute__((noinline)) void LookAtFile() {
    const struct stat last = fFile;
    ReadFile();
    if (fFile.st_dev == last.st_dev && fFile.st_ino == last.st_ino &&
        fFile.st_mtim.tv_sec == last.st_mtim.tv_sec &&
        fFile.st_mtim.tv_nsec == last.st_mtim.tv_nsec) {
      return;
    }
    if (fState == kUnset) {
      Advance();
    } else {
      fState = kReplaced;
    }
  }

  void Advance() {
    if (++fGeneration == 0) fGeneration = 1;
  }

  void ReadFile() {
    fSecond = std::time(nullptr);
    if (::stat(fPath, &fFile) != 0) fFile = {};
  }

  bool fIsHeld = false;
  std::uint32_t fGeneration = 0;
  TState fState = kUnknown;
  char fText[256] = {};
  char fPath[512] = {};
  std::time_t fSecond = 0;  // of the last look at the file
  struct stat fFile = {};
};

thread_local TZoneWatch gWatch;

}  // namespace

std::uint32_t ZoneGeneration() { return FoundOnce(gWatch).Generation(); }

std::uint32_t ZoneGenerationNow() { return FoundOnce(gWatch).GenerationNow(); }

TZoneHold::TZoneHold() : fIsHeld(FoundOnce(gWatch).Hold()), fIsFirst(!fIsHeld) { fIsHeld = true; }

TZoneHold::~TZoneHold() {
  if (fIsFirst) fIsHeld = false;
}

}  // namespace NVORNQDX20
