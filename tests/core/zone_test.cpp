// SPDX-License-Identifier: Apache-2.0
// Date-times where the process's time zone decides.
#include <qdxcore/datetime.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

/// The zone of the C library and of /etc/localtime while a test sets one; 0 is the real one.
static int gHoursEast = 0;

/// Files and links appear as if they were there before this process.
static bool gFilesAreOld = false;

static int ReadStatus(const char* path, struct stat* result, int flags) {
  const int status = ::fstatat(AT_FDCWD, path, result, flags);
  if (gFilesAreOld) result->st_ctim = {};
  return status;
}

// These stand before the C library's functions.
extern "C" {
__attribute__((visibility("default"))) std::tm* localtime_r(const std::time_t* time,
                                                            std::tm* result) noexcept {
  static const auto next =
      reinterpret_cast<decltype(&localtime_r)>(::dlsym(RTLD_NEXT, "localtime_r"));
  const std::time_t shown = *time + gHoursEast * 3600;
  return gHoursEast == 0 ? next(time, result) : ::gmtime_r(&shown, result);
}
__attribute__((visibility("default"))) std::time_t mktime(std::tm* fields) noexcept {
  static const auto next = reinterpret_cast<decltype(&mktime)>(::dlsym(RTLD_NEXT, "mktime"));
  return gHoursEast == 0 ? next(fields) : ::timegm(fields) - gHoursEast * 3600;
}
__attribute__((visibility("default"))) int stat(const char* path, struct stat* result) noexcept {
  if (gHoursEast == 0 || std::strcmp(path, "/etc/localtime") != 0) {
    return ReadStatus(path, result, 0);
  }
  *result = {};
  result->st_ino = static_cast<ino_t>(gHoursEast + 100);
  return 0;
}
__attribute__((visibility("default"))) int lstat(const char* path, struct stat* result) noexcept {
  return ReadStatus(path, result, AT_SYMLINK_NOFOLLOW);
}
}

using namespace NVORNQDX20;

namespace {
/// The time zone from here on, or the host's for null.
void SetZone(const char* name) { name == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", name, 1); }

/// The C library reads the file of TZ again, without an operation in between.
void ReadZoneAgain(const std::string& name) {
  for (const char* zone : {"UTC0", name.c_str()}) {
    SetZone(zone);
    ::tzset();
  }
}

/// Whether the zone has a day that Kwajalein had not.
bool IsTaken() { return TCIMDateTimeImpl::IsValid(1993, 8, 21, 12, 0, 0, 0, 0); }

/// However the environment changes, the next operation is in the zone of TZ: in Kwajalein there was
/// no such day.
TEST(CIMDateTime, FollowsTheEnvironment) {
  if (!std::filesystem::exists("/usr/share/zoneinfo")) GTEST_SKIP() << "needs tzdata";
  const char* const kSkipping = "Pacific/Kwajalein";
  ::unsetenv("TZ");
  ::setenv("FIRST", "1", 1);
  ::setenv("SECOND", "2", 1);
  EXPECT_TRUE(IsTaken());
  ::unsetenv("SECOND");
  ::setenv("TZ", kSkipping, 1);  // as many entries as before
  EXPECT_FALSE(IsTaken());
  ::unsetenv("FIRST");
  EXPECT_FALSE(IsTaken());
  ::unsetenv("TZ");
  EXPECT_TRUE(IsTaken());

  char entry[32] = "TZ=UTC";
  ::putenv(entry);
  EXPECT_TRUE(IsTaken());
  std::strcpy(entry + 3, kSkipping);
  EXPECT_FALSE(IsTaken());
  for (int i = 0; i < 1100; ++i) ::setenv(("FILLER" + std::to_string(i)).c_str(), "", 1);
  std::strcpy(entry + 3, "UTC");
  EXPECT_TRUE(IsTaken());
  ::unsetenv("TZ");
  EXPECT_TRUE(IsTaken());
  ::setenv("TZ", kSkipping, 1);  // comes last, too far to be remembered
  EXPECT_FALSE(IsTaken());

  std::string longPath = ":/usr/share/zoneinfo";
  for (int i = 0; i < 150; ++i) longPath += "/.";
  ::setenv("TZ", (longPath + "/UTC").c_str(), 1);
  EXPECT_TRUE(IsTaken());
  ::setenv("TZ", (longPath + "/" + kSkipping).c_str(), 1);
  EXPECT_FALSE(IsTaken());

  for (int i = 0; i < 1100; ++i) ::unsetenv(("FILLER" + std::to_string(i)).c_str());
  EXPECT_FALSE(IsTaken());
  ::unsetenv("TZ");
  static char first[32] = "A=1";
  static char second[32] = "B=2";
  ::putenv(first);
  ::setenv("LAST", "1", 1);
  EXPECT_TRUE(IsTaken());
  // An entry takes the name where it is, or comes back with it, and another one comes last.
  ::putenv(second);
  for (char* const renamed : {first, second}) {
    std::strcpy(renamed, ("TZ=" + std::string(kSkipping)).c_str());
    EXPECT_FALSE(IsTaken());
    std::strcpy(renamed, "C=3");
    EXPECT_TRUE(IsTaken());
  }
  ::unsetenv("C");
  std::strcpy(first, ("TZ=" + std::string(kSkipping)).c_str());
  ::putenv(first);
  ::setenv("LAST", "1", 1);
  EXPECT_FALSE(IsTaken());

  char* own[] = {entry, nullptr};
  char** const old = std::exchange(environ, own);
  EXPECT_TRUE(IsTaken());
  environ = nullptr;
  EXPECT_TRUE(IsTaken());
  // Wherever the entry is, and however many there are.
  static char filler[] = "TZX=1", skipping[] = "TZ=Pacific/Kwajalein";
  for (std::size_t size = 1; size < 10; ++size) {
    std::vector<char*> entries(size + 1, filler);
    entries[size] = nullptr;
    environ = entries.data();
    for (std::size_t place = 0; place < size; ++place) {
      EXPECT_TRUE(IsTaken());
      entries[place] = skipping;
      EXPECT_FALSE(IsTaken()) << place << " of " << size;
      entries[place] = filler;
    }
  }
  // It is not read beyond its end, however long it was.
  const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  void* const memory =
      ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  environ = reinterpret_cast<char**>(static_cast<char*>(memory) + page) - 2;
  std::fill_n(environ, 60, &second[0]);
  EXPECT_TRUE(IsTaken());
  environ[1] = nullptr;
  ::mprotect(static_cast<char*>(memory) + page, page, PROT_NONE);
  EXPECT_TRUE(IsTaken());
  environ = old;
  EXPECT_FALSE(IsTaken());
  ::munmap(memory, 2 * page);
  for (const char* name : {"TZ", "C", "LAST"}) ::unsetenv(name);
}

/// The C library reads a replaced file of TZ again when TZ was another one in the meantime, which
/// need not be seen here.
TEST(CIMDateTime, FollowsAReplacedFileOfTZ) {
  const std::filesystem::path zones = "/usr/share/zoneinfo";
  if (!std::filesystem::exists(zones)) GTEST_SKIP() << "needs tzdata";
  const TTempDir directory;
  const std::string file = (directory.Path() / "zone").string(), name = ":" + file;
  const TCIMDateTime noon(2020, 7, 1, 12, 0, 0, 0, 0);
  const TCIMDateTime day(1, 0, 0, 0, 0);
  std::filesystem::copy(zones / "UTC", file);
  gFilesAreOld = true;
  SetZone(name.c_str());
  EXPECT_EQ((noon + day).ToString(), "20200702120000.000000+000");
  EXPECT_TRUE(IsTaken());
  std::filesystem::copy(zones / "Pacific/Kwajalein", file + ".new");
  std::filesystem::rename(file + ".new", file);
  ReadZoneAgain(name);
  EXPECT_EQ((noon + day).ToString(), "20200702120000.000000+000");
  ::usleep(1100000);  // until it is noticed
  EXPECT_FALSE(IsTaken());
  SetZone("UTC");
  EXPECT_TRUE(IsTaken());
  gFilesAreOld = false;
}

/// The file, or the link to it, is another one since the C library has read it.
TEST(CIMDateTime, FollowsAFileOfTZReplacedBeforeTheFirstLook) {
  const std::filesystem::path zones = "/usr/share/zoneinfo";
  if (!std::filesystem::exists(zones)) GTEST_SKIP() << "needs tzdata";
  const TTempDir directory;
  for (const bool isLink : {false, true}) {
    const std::string file = (directory.Path() / (isLink ? "link" : "file")).string();
    for (const char* zone : {"UTC", "Pacific/Kwajalein"}) {
      if (isLink) {
        std::filesystem::create_symlink(zones / zone, file + ".new");
      } else {
        std::filesystem::copy(zones / zone, file + ".new");
      }
      std::filesystem::rename(file + ".new", file);
      SetZone(file.c_str());
      ::tzset();
    }
    EXPECT_TRUE(IsTaken()) << file;
    ReadZoneAgain(file);
    EXPECT_FALSE(IsTaken()) << file;
  }
  SetZone(nullptr);
}

TEST(CIMDateTime, FollowsTheFolderOfZones) {
  const char* const kWithLeapSeconds = "/usr/share/zoneinfo/right";
  if (!std::filesystem::exists(kWithLeapSeconds)) GTEST_SKIP() << "needs tzdata";
  const TCIMDateTime before(2016, 6, 1, 12, 0, 0, 0, 0), after(2017, 6, 1, 12, 0, 0, 0, 0);
  SetZone("Etc/UTC");
  EXPECT_EQ((after - before).ToString(), "00000365000000.000000:000");
  ::setenv("TZDIR", kWithLeapSeconds, 1);
  EXPECT_EQ((after - before).ToString(), "00000365000000.000000:000");
  ReadZoneAgain("Etc/UTC");
  EXPECT_TRUE(IsTaken());  // looks at the file, since that year was not asked for yet
  EXPECT_EQ((after - before).ToString(), "00000365000001.000000:000");
  ::unsetenv("TZDIR");
  SetZone(nullptr);
}

/// In the second before a replaced /etc/localtime is noticed, too, no operation mixes two zones.
TEST(CIMDateTime, IsMovedInOneZoneWhileItsFileIsReplaced) {
  SetZone(nullptr);
  const TCIMDateTime noon(2020, 7, 1, 12, 0, 0, 5, 60);
  const TCIMDateTime nearEpoch(1970, 1, 2, 12, 0, 0, 0, 60);  // always by mktime()
  std::uint16_t year = 1985;
  for (const int hours : {1, 9, -5}) {
    gHoursEast = hours;
    // Comes before all others, which notice the change: what is known of noon, but not of the sum.
    EXPECT_EQ((noon + TCIMDateTime(year, 0, 0, 0, 0)).GetHour(), 12);
    // In years that were not looked at yet, unlike that of noon.
    const TCIMDateTime early(++year, 7, 1, 12, 0, 0, 5, 60), later(++year, 7, 1, 12, 0, 0, 5, 60);
    EXPECT_EQ((noon - early).GetHour(), 0);
    EXPECT_EQ((later - noon).GetHour(), 0);
    EXPECT_EQ((noon + TCIMDateTime(1, 0, 0, 0, 0)).ToString(), "20200702120000.000005+060");
    EXPECT_EQ((noon - TCIMDateTime(1, 0, 0, 0, 0)).ToString(), "20200630120000.000005+060");
    EXPECT_EQ((noon - nearEpoch).ToString(), "00018443000000.000005:000");
  }
  gHoursEast = 0;
}

}  // namespace
