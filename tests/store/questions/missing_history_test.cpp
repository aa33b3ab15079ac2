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

}  // namespace
}  // namespace NVORNQDX20::NStore
