// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/thread_variable.h>
#include <qdxsystem/zone_generation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace NVORNQDX20 {
namespace {

/// Returns the text of TZ, or null. Takes less time than getenv(), which looks for any name.
inline const char* FindZone() {
  if (environ == nullptr) return nullptr;
  const char* last = nullptr;
  const auto isLast = [&last](const char* entry) {
    last = entry;
    return entry == nullptr || (entry[0] == 'T' && entry[1] == 'Z' && entry[2] == '=');
  };
  // Four in a round: almost twice as fast where there are many.
  char** entries = environ;
  while (!isLast(entries[0]) && !isLast(entries[1]) && !isLast(entries[2]) && !isLast(entries[3])) {
    entries += 4;
  }
  return last == nullptr ? nullptr : last + 3;
}

thread_local TZoneWatch gWatch;

/// When the library was loaded.
const std::time_t gLoaded = std::time(nullptr);

}  // namespace

TZoneWatch& ZoneWatchOfThisThread() { return FoundOnce(gWatch); }

inline bool TZoneWatch::IsKept(const char* zone) const {
  if (fState == kUnset) return zone == nullptr;
  return fState != kUnknown && zone != nullptr && std::strcmp(zone, fText) == 0;
}

void TZoneWatch::Look() {
  const char* const zone = FindZone();
  if (!IsKept(zone)) {
    Keep(zone);
  } else if (std::time(nullptr) != fSecond) {
    LookAtFile();
  }
}

std::uint32_t TZoneWatch::GenerationNow() {
  const char* const zone = FindZone();
  if (IsKept(zone)) {
    LookAtFile();
  } else {
    Keep(zone);
  }
  return fKnown;
}

/// `zone` is the text of TZ, or null.
__attribute__((noinline)) void TZoneWatch::Keep(const char* zone) {
  fState = kUnknown;
  fKnown = 0;
  if (zone == nullptr) {
    constexpr char kLocalTime[] = "/etc/localtime";
    std::memcpy(fPath, kLocalTime, sizeof kLocalTime);
    fState = kUnset;
  } else if (std::strlen(zone) < sizeof fText && FindPath(zone)) {
    std::memcpy(fText, zone, std::strlen(zone) + 1);
    fState = kSet;
  }
  if (fState == kUnknown) return;
  Advance();
  ReadFile();
  if (fState == kSet && IsFileInDoubt()) Doubt();
}

/// Finds the file that the C library looks for. There is none if the text describes the zone.
bool TZoneWatch::FindPath(const char* zone) {
  if (*zone == ':') ++zone;
  if (*zone == '\0') zone = "Universal";
  const char* folder = std::getenv("TZDIR");
  if (folder == nullptr || *folder == '\0') folder = "/usr/share/zoneinfo";
  const int size = *zone == '/' ? std::snprintf(fPath, sizeof fPath, "%s", zone)
                                : std::snprintf(fPath, sizeof fPath, "%s/%s", folder, zone);
  return size >= 0 && static_cast<std::size_t>(size) < sizeof fPath;
}

__attribute__((noinline)) void TZoneWatch::LookAtFile() {
  const struct stat last = fFile;
  // The folder can be another one since.
  if (fState != kUnset && !FindPath(fText)) fPath[0] = '\0';
  ReadFile();
  const bool isSame = fFile.st_dev == last.st_dev && fFile.st_ino == last.st_ino &&
                      fFile.st_mtim.tv_sec == last.st_mtim.tv_sec &&
                      fFile.st_mtim.tv_nsec == last.st_mtim.tv_nsec;
  if (fState == kUnset) {
    if (!isSame) Advance();
  } else if (!isSame || IsFileInDoubt()) {
    Doubt();
  }
}

/// Returns whether the C library can have read another file of TZ than the one that is there now:
/// this thread may have looked for the first time after the file or the link to it was replaced.
bool TZoneWatch::IsFileInDoubt() const {
  struct stat link {};
  return fFile.st_ctim.tv_sec >= gLoaded ||
         (::lstat(fPath, &link) == 0 && link.st_ctim.tv_sec >= gLoaded);
}

void TZoneWatch::Doubt() {
  fState = kReplaced;
  fKnown = 0;
}

void TZoneWatch::Advance() {
  if (++fGeneration == 0) fGeneration = 1;
  fKnown = fGeneration;
}

void TZoneWatch::ReadFile() {
  fSecond = std::time(nullptr);
  if (::stat(fPath, &fFile) != 0) fFile = {};
}

std::uint32_t ZoneGeneration() { return ZoneWatchOfThisThread().Generation(); }

std::uint32_t ZoneGenerationNow() { return ZoneWatchOfThisThread().GenerationNow(); }

TZoneHold::TZoneHold() : fIsHeld(ZoneWatchOfThisThread().Hold()), fIsFirst(!fIsHeld) {
  fIsHeld = true;
}

TZoneHold::~TZoneHold() {
  if (fIsFirst) fIsHeld = false;
}

}  // namespace NVORNQDX20
