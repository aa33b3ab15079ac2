// SPDX-License-Identifier: Apache-2.0
// The parsers of what is installed and of what runs.
#include <sources/software/package_status.h>
#include <sources/software/process.h>
#include <sources/software/time_zone.h>
#include <sources/software/unit_file.h>
#include <sources/software/user_table.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

constexpr std::int64_t kHour = 3600;
// Noon (UTC) of days in 2026: of winter in the north, and of summer.
constexpr std::int64_t kJanuary15 = 1'768'478'400;
constexpr std::int64_t kJuly15 = 1'784'116'800;
// When summer time begins in the middle of Europe: 29 March 2026, 01:00 UTC; and when it ends.
constexpr std::int64_t kMarch29 = 1'774'746'000;
constexpr std::int64_t kOctober25 = 1'792'890'000;

TEST(TimeZoneRule, GivesTheOffsetOfAMoment) {
  struct TRow {
    const char* fRule;
    std::int64_t fWhen;
    double fHours;
  };
  const TRow rows[] = {{"UTC0", kJuly15, 0},
                       {"EST5", kJuly15, -5},
                       {"<+0545>-5:45", kJuly15, 5.75},
                       {"CET-1CEST,M3.5.0,M10.5.0/3", kJanuary15, 1},
                       {"CET-1CEST,M3.5.0,M10.5.0/3", kJuly15, 2},
                       {"CET-1CEST,M3.5.0,M10.5.0/3", kMarch29 - 1, 1},
                       {"CET-1CEST,M3.5.0,M10.5.0/3", kMarch29, 2},
                       {"CET-1CEST,M3.5.0,M10.5.0/3", kOctober25 - 1, 2},
                       {"CET-1CEST,M3.5.0,M10.5.0/3", kOctober25, 1},
                       {"IST-1GMT0,M10.5.0,M3.5.0/1", kJuly15, 1},
                       {"IST-1GMT0,M10.5.0,M3.5.0/1", kJanuary15, 0},
                       {"AEST-10AEDT,M10.1.0,M4.1.0/3", kJanuary15, 11},
                       {"AEST-10AEDT,M10.1.0,M4.1.0/3", kJuly15, 10},
                       {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", kMarch29 - 1, -2},
                       {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", kMarch29, -1},
                       {"A3B,J60/0,J300", 951'793'199, -3},  // 29 February 2000, 02:59:59 UTC
                       {"A3B,59/0,J300", 951'793'200, -2},   // counts that day, J60 does not
                       {"A3B,J60/0,J300", 951'879'600, -2}};
  for (const auto& [rule, when, hours] : rows) {
    const auto offset = OffsetByRule(rule, when);
    ASSERT_TRUE(offset) << rule;
    EXPECT_EQ(static_cast<double>(*offset) / kHour, hours) << rule << " " << when;
  }
  for (const char* bad :
       {"", "5", "CET", "<CET-1", "CET-1CEST", "CET-1CEST,M3.5.0", "CET-1CEST,M13.1.0,M1.1.0",
        "CET-999", "CET-1CEST,M3.5.0,M10.5.0/3x", "CET-1CEST,M3.6.0,M10.5.0"}) {
    EXPECT_FALSE(OffsetByRule(bad, kJuly15)) << bad;
  }
}

std::string Number(std::int64_t number, int size) {
  std::string text;
  for (int byte = size - 1; byte >= 0; --byte) text += static_cast<char>(number >> 8 * byte);
  return text;
}

/// One table of a file: the changes, and the offsets before and after each in turn.
std::string ZoneTable(const std::vector<std::int64_t>& changes,
                      const std::vector<std::int64_t>& offsets, int timeSize) {
  const auto count = [](std::size_t number) {
    return Number(static_cast<std::int64_t>(number), 4);
  };
  std::string table = "TZif2" + std::string(15, '\0') + count(0) + count(0) + count(0) +
                      count(changes.size()) + count(offsets.size()) + count(4);
  for (const std::int64_t change : changes) table += Number(change, timeSize);
  for (std::size_t i = 0; i < changes.size(); ++i) table += static_cast<char>(i + 1);
  for (const std::int64_t offset : offsets) table += Number(offset, 4) + std::string(2, '\0');
  return table + std::string("ABC\0", 4);
}

TEST(TimeZoneFile, GivesTheOffsetOfAMoment) {
  const std::string first = ZoneTable({0}, {0, 7}, 4);
  const std::string table = ZoneTable({-5'000'000'000, kMarch29}, {-60, kHour, 2 * kHour}, 8);
  const std::string file = first + table + "\nEST5\n";
  EXPECT_EQ(OffsetInZoneFile(file, -5'000'000'001), -60);
  EXPECT_EQ(OffsetInZoneFile(file, kMarch29 - 1), kHour);
  EXPECT_EQ(OffsetInZoneFile(file, kMarch29), -5 * kHour);
  EXPECT_EQ(OffsetInZoneFile(first + table + "\n\n", kMarch29), 2 * kHour);
  std::string old = ZoneTable({0}, {0, 7}, 4);
  old[4] = '\0';
  EXPECT_EQ(OffsetInZoneFile(old, 1), 7);
  for (std::size_t size = 0; size < first.size() + table.size(); ++size) {
    EXPECT_FALSE(OffsetInZoneFile(file.substr(0, size), kJuly15)) << size;
  }
}

TEST(UnitSettings, AreThoseOfAllItsFiles) {
  TUnitSettings unit;
  unit.Add(
      "[Unit]\nDescription = one \\\n# no part of it\n  line\n;Description=x\n"
      "[Service]\nExecStart=-!\"/opt/a b/run\" --token SECRET\nExecStart=/bin/second\n"
      "[Install]\nWantedBy=a.target  b.target\nWantedBy=c.target\nAlso=x.socket\nAlso=\n"
      "[Socket]\nListenStream=22\nListenDatagram=\nListenFIFO=/f\nnonsense\n");
  EXPECT_EQ(unit.Get("Unit", "Description"), "one  line");
  EXPECT_EQ(unit.GetProgram("Service", "ExecStart"), "/opt/a b/run");
  EXPECT_EQ(unit.GetWords("Install", "WantedBy"),
            (std::vector<std::string>{"a.target", "b.target", "c.target"}));
  EXPECT_TRUE(unit.GetWords("Install", "Also").empty());
  EXPECT_EQ(unit.GetList("Socket", "Listen"), std::vector<std::string>{"ListenFIFO=/f"});
  unit.Add("[Service]\nExecStart=\nExecStart=@/bin/other name SECRET\n");
  EXPECT_EQ(unit.GetProgram("Service", "ExecStart"), "/bin/other");
}

TEST(PackageStatus, HasThePackagesThatLeftSomething) {
  std::vector<TPackage> packages;
  ParsePackages(
      "Package: a\nVersion: 1\nStatus: deinstall ok config-files\n\n"
      "Package: gone\nVersion: 1\nStatus: purge ok not-installed\n\n\n"
      "package:b \nVersion: 2:3-4\nDescription: in a line\n Version: 9\nVersion: 8\n\t\n"
      "Version: 7\n",
      packages);
  ASSERT_EQ(packages.size(), 2U);
  EXPECT_EQ(packages[0].fName + packages[0].fStatus, "adeinstall ok config-files");
  EXPECT_EQ(packages[1].fName + packages[1].fVersion + packages[1].fSummary, "b2:3-4in a line");
}

TEST(UserTable, HasNoPasswordsAndNoForeignEntries) {
  const auto users = ParseUsers(
      "root:$6$hash:0:0:The root:/root:/bin/sh:x\n+nis::::::\nbad:x:y:0::\n"
      "+:x:1:1::\nu:x:1000:100\n");
  ASSERT_EQ(users.size(), 2U);
  const TUser& root = users[0];
  EXPECT_EQ(root.fName + root.fID + root.fGroupID + root.fComment + root.fHome + root.fShell,
            "root00The root/root/bin/sh:x");
  EXPECT_EQ(users[1].fGroupID + users[1].fHome, "100");
  const auto groups = ParseGroups("wheel:pw:10:a,,b ,\n#x:y:1:\n");
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_EQ(groups[0].fMembers, (std::vector<std::string>{"a", "b"}));
}

TEST(ProcessState, IsReadAfterANameOfAnyCharacters) {
  const std::string numbers = " 1 20 30 0 -1 4194304 5 6 7 8 900 100 11 12 20 -5 3 0 777 1 2";
  const auto state = ParseProcessState("42 (a) S 9 (\n) b) R" + numbers + "\n");
  ASSERT_TRUE(state);
  EXPECT_EQ(state->fName, "a) S 9 () b");
  EXPECT_EQ(state->fState, 'R');
  EXPECT_EQ(state->fParent, "1");
  EXPECT_EQ(state->fGroup + state->fSession, 50U);
  EXPECT_EQ(state->fUserTime + state->fKernelTime, 1000U);
  EXPECT_EQ(state->fNice, -5);
  EXPECT_EQ(state->fThreads, 3U);
  EXPECT_EQ(state->fStartTime, 777U);
  for (const char* bad :
       {"", "42 (a", ")(", "42 (a) S 1 2", "42 (a) S x 20 30 0 -1 0 5 6 7 8 9 1 1 1 2 0 3 0 7"}) {
    EXPECT_FALSE(ParseProcessState(bad)) << bad;
  }
}

}  // namespace
}  // namespace NVORNQDX20
