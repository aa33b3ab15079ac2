// SPDX-License-Identifier: Apache-2.0
// Since when something is missing, and when it was.
#include "questions/history.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "database/open.h"
#include "storage/store.h"
#include "store/sample_document.h"
#include "support/run_program.h"
#include "support/temp_dir.h"

namespace NVORNQDX20::NStore {
namespace {

using NSample::TDocumentFacts;

const char* const kDisk = "VORNSG_DiskDrive";

class MissingHistory : public ::testing::Test {
 protected:
  /// A document each day: with the serial number, twice without it, without it for another reason,
  /// and with it. The second one lacks all batteries.
  void SetUp() override {
    fDatabase = OpenStore(TLocation(fFile), EAccess::kCreating);
    TStore store(*fDatabase);
    for (int day = 0; day < 5; ++day) {
      TDocumentFacts document = NSample::Document({"", "m1", "", "", "", "web1"}, day * 86400);
      NSample::AddFact(document, kDisk, "sda", "Model", "Old");
      if (day == 0 || day == 4) {
        NSample::AddFact(document, kDisk, "sda", "SerialNumber", "S1");
      } else {
        NSample::AddMissing(document, kDisk, "sda", "SerialNumber");
        if (day == 3) document.fMissing.back().fReason = "it\x1b sleeps";
      }
      if (day == 1) {
        const auto batteries = NSample::ClassOf(document, "VORNSG_Battery");
        document.fMissing.push_back({batteries, {}, "", "no driver", false});
      }
      store.Add(document);
    }
  }

  std::int64_t HostNamed(const std::string& name) const {
    return fDatabase->QueryNumber("SELECT id FROM host WHERE name = '" + name + "'").value_or(0);
  }

  const TTempDir fFolder;
  const std::string fFile = (fFolder.Path() / "store").string();
  std::unique_ptr<TDatabase> fDatabase;
};

TEST_F(MissingHistory, IsAView) {
  std::string rows;
  fDatabase->Query(
      "SELECT class, object, property, reason, substr(valid_from, 9, 2), substr(valid_to, 9, 2)"
      " FROM missing_history ORDER BY class, valid_from",
      6, {}, [&rows](const TRow& row) {
        for (const TCell& cell : row) rows += cell.value_or("NULL") + "|";
        rows += "\n";
      });
  EXPECT_EQ(rows,
            "VORNSG_Battery|NULL||no driver|02|03|\n"
            "VORNSG_DiskDrive|sda|SerialNumber|permission denied|02|04|\n"
            "VORNSG_DiskDrive|sda|SerialNumber|it\x1b sleeps|04|05|\n");
  EXPECT_EQ(fDatabase->QueryNumber("SELECT COUNT(*) FROM missing"), 0);
}

TEST_F(MissingHistory, IsPartOfTheHistoryOnRequest) {
  const auto ask = [this](std::vector<std::string> words) {
    words.insert(words.begin(), {QDX_STORE, "history", fFile, "web1"});
    return RunProgram(words).fOutput;
  };
  EXPECT_EQ(ask({}),
            "(0 changes in 5 documents from 1970-01-01T00:00:00Z to "
            "1970-01-05T00:00:00Z)\n");
  EXPECT_EQ(ask({"--missing"}),
            "Time                  Change       Object         Property      Old  New  Reason\n"
            "1970-01-02T00:00:00Z  missing      Battery        -             -    -    no driver\n"
            "1970-01-02T00:00:00Z  missing      DiskDrive sda  SerialNumber  -    -    "
            "permission denied\n"
            "1970-01-03T00:00:00Z  not missing  Battery        -             -    -    no driver\n"
            "1970-01-04T00:00:00Z  missing      DiskDrive sda  SerialNumber  -    -    it? sleeps\n"
            "1970-01-05T00:00:00Z  not missing  DiskDrive sda  SerialNumber  -    -    it? sleeps\n"
            "(5 changes in 5 documents from 1970-01-01T00:00:00Z to 1970-01-05T00:00:00Z)\n");
  EXPECT_EQ(ask({"battery", "--missing", "--since", "1970-01-03", "--csv"}),
            "time,after,change,namespace,class,object,property,old,new,reason\r\n"
            "1970-01-03T00:00:00Z,1970-01-02T00:00:00Z,not missing,root/test,VORNSG_Battery,,,,,"
            "no driver\r\n");
}

TEST_F(MissingHistory, KnowsWhatOneObjectSharedWithOthers) {
  TStore store(*fDatabase);
  for (int day = 0; day < 4; ++day) {
    TDocumentFacts document = NSample::Document({"", "m3", "", "", "", "web3"}, day * 86400, 9);
    NSample::AddFact(document, kDisk, "sda", "Model", "Old");
    const auto disks = NSample::ClassOf(document, kDisk);
    const auto lack = [&](std::optional<std::string> object, const char* property,
                          const char* reason) {
      document.fMissing.push_back({disks, std::move(object), property, reason, false});
    };
    // Two disks, one, and two again.
    if (day == 1) {
      lack("sda", "WWN", "/run/b8:0: No such file");
      lack("sda", "Vendor", "/run/b8:0: Permission denied");
    } else {
      NSample::AddFact(document, kDisk, "sdb", "Model", "Old");
      lack({}, "WWN", "/run/b*: No such file");
      lack({}, "Vendor", "/run/b*: No such file");
    }
    store.Add(document);
  }
  std::string lines;
  for (const TChange& change : ReadHistory(*fDatabase, {HostNamed("web3"), kDisk, true})) {
    if (!change.fReason) continue;
    lines += std::to_string(change.fTime / 86400000) + " " +
             (change.fChange == TChange::kMissing ? "missing " : "not missing ") + change.fObject +
             " " + change.fProperty + "\n";
  }
  EXPECT_EQ(lines,
            "1 not missing  Vendor\n"
            "1 missing sda Vendor\n"
            "2 missing  Vendor\n"
            "2 missing  WWN\n"
            "2 not missing sda Vendor\n");
}

TEST_F(MissingHistory, DoesNotRepeatAReasonThatDependsOnOtherObjects) {
  TStore store(*fDatabase);
  const char* const reasons[] = {"/run/b*: No such file", "/run/b8:*: No such file",
                                 "/run/b8:0: No such file", "/run/*: Permission denied",
                                 "/run/b*: Permission denied"};
  for (int day = 0; day < 6; ++day) {
    TDocumentFacts document = NSample::Document({"", "m2", "", "", "", "web2"}, day * 86400, 7);
    NSample::AddFact(document, kDisk, "sda", "Model", "Old");
    if (day < 5) {
      NSample::AddMissing(document, kDisk, "sda", "SerialNumber");
      document.fMissing.back().fReason = reasons[day];
    }
    store.Add(document);
  }
  const auto answer =
      RunProgram({QDX_STORE, "history", fFile, "web2", "disk", "--missing", "--csv"});
  EXPECT_EQ(answer.fOutput,
            "time,after,change,namespace,class,object,property,old,new,reason\r\n"
            "1970-01-04T00:00:00Z,1970-01-03T00:00:00Z,missing,root/test,VORNSG_DiskDrive,sda,"
            "SerialNumber,,,/run/*: Permission denied\r\n"
            "1970-01-06T00:00:00Z,1970-01-05T00:00:00Z,not missing,root/test,VORNSG_DiskDrive,sda,"
            "SerialNumber,,,/run/b*: Permission denied\r\n");
}

}  // namespace
}  // namespace NVORNQDX20::NStore
