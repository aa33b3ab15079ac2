// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/zone_generation.h>

#include <cstdlib>
#include <cstring>
#include <ctime>

#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

constexpr char kName[] = "TZ=";

bool IsZone(const char* entry) { return std::strncmp(entry, kName, sizeof kName - 1) == 0; }

/// getenv() visits every entry of the environment when TZ is not set, and there can be hundreds.
/// Comparing the addresses of the entries with those of the last visit takes a third of that time.
class TZoneWatch {
 public:
  std::uint32_t Generation() {
    if (!HasSameEntries()) ReadEntries();
    if (fState == kUnset && IsFileReplaced()) Advance();
    return fState == kUnknown ? 0 : fGeneration;
  }

  bool IsFromFile() const { return fState == kUnset; }

 private:
  enum TState { kUnknown, kUnset, kSet };
  static constexpr std::size_t kMaxCount = 1024;

  /// Returns whether TZ is what it was. The text of its entry can change in place, since the entry
  /// can be the caller's own; that another entry takes its name in place is not noticed.
  bool HasSameEntries() const {
    if (fCount == 0 || environ != fEnvironment ||
        std::memcmp(environ, fEntries, fCount * sizeof *fEntries) != 0) {
      return false;
    }
    if (fState == kSet) return std::strcmp(fEntries[fCount - 1], fText) == 0;
    // New entries come last, perhaps at the address of one that was freed.
    return fCount == 1 || !IsZone(fEntries[fCount - 2]);
  }

  __attribute__((noinline)) void ReadEntries() {
    fEnvironment = environ;
    fCount = 0;
    const char* zone = nullptr;
    std::size_t count = 0;
    for (char** entry = environ; entry != nullptr && *entry != nullptr && zone == nullptr;
         ++entry) {
      if (IsZone(*entry)) zone = *entry;
      if (count < kMaxCount) fEntries[count] = *entry;
      ++count;
    }
    if (zone == nullptr && environ != nullptr && count < kMaxCount) fEntries[count] = nullptr;
    SetText(zone);
    if (zone == nullptr) ++count;  // the null at the end
    if (environ != nullptr && count <= kMaxCount && fState != kUnknown) fCount = count;
  }

  /// `zone` is the entry of TZ, or null.
  void SetText(const char* zone) {
    const TState last = fState;
    if (zone == nullptr) {
      fState = kUnset;
      if (last != kUnset) Advance();
      return;
    }
    if (last == kSet && std::strcmp(zone, fText) == 0) return;
    const std::size_t size = std::strlen(zone) + 1;
    fState = size <= sizeof fText ? kSet : kUnknown;
    if (fState == kSet) std::memcpy(fText, zone, size);
    Advance();
  }

  bool IsFileReplaced() {
    const std::time_t now = std::time(nullptr);
    return now != fSecond && IsFileReplacedSince(now);
  }

  __attribute__((noinline)) bool IsFileReplacedSince(std::time_t now) {
    fSecond = now;
    const struct stat last = fFile;
    if (::stat("/etc/localtime", &fFile) != 0) fFile = {};
    return fFile.st_dev != last.st_dev || fFile.st_ino != last.st_ino ||
           fFile.st_mtim.tv_sec != last.st_mtim.tv_sec ||
           fFile.st_mtim.tv_nsec != last.st_mtim.tv_nsec;
  }

  void Advance() {
    if (++fGeneration == 0) fGeneration = 1;
  }

  std::uint32_t fGeneration = 0;
  TState fState = kUnknown;
  char fText[256] = {};  // the entry, name included
  std::time_t fSecond = 0;
  struct stat fFile = {};
  char** fEnvironment = nullptr;
  std::size_t fCount = 0;  // of the entries up to TZ, or the null; 0 if they are not remembered
  char* fEntries[kMaxCount] = {};
};

thread_local TZoneWatch gWatch;

}  // namespace

std::uint32_t ZoneGeneration() { return gWatch.Generation(); }

bool IsZoneFromFile() { return gWatch.IsFromFile(); }

}  // namespace NVORNQDX20
