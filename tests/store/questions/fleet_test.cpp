// SPDX-License-Identifier: Apache-2.0
#include "questions/fleet.h"

#include <gtest/gtest.h>

#include "database/open.h"
#include "storage/store.h"
#include "store/sample_document.h"
#include "support/temp_dir.h"

namespace NVORNQDX20::NStore {
namespace {

std::string NamesOf(const std::vector<TFleetHost>& hosts) {
  std::string names;
  for (const TFleetHost& host : hosts) names += (names.empty() ? "" : " ") + host.fName;
  return names;
}

TEST(Fleet, FindsTheHostsThatAPersonCanMean) {
  const std::vector<TFleetHost> fleet = {{1, "web1", "aaaa-1", "m1", "S1"},
                                         {2, "web10", "aabb-2", "m2", "S2"},
                                         {3, "db", "bbbb-3", "", ""}};
  const struct {
    const char* fTyped;
    const char* fFound;
  } rows[] = {{"web1", "web1"},    {"WEB", "web1 web10"}, {"web10", "web10"}, {"AAB", "web10"},
              {"m", "web1 web10"}, {"s2", "web10"},       {"S", ""},          {"x", ""},
              {"host_id=3", "db"}};
  for (const auto& [typed, found] : rows) {
    EXPECT_EQ(NamesOf(FindHosts(fleet, typed)), found) << typed;
  }
}

TEST(Fleet, KnowsWhoReportedWhenAndWhatFailed) {
  const TTempDir folder;
  const auto database = OpenStore(TLocation((folder.Path() / "s").string()), EAccess::kCreating);
  TStore store(*database);
  const std::string uuid = "4c4c4544-0000-1000-8000-00000000000";
  auto first = NSample::Document({uuid + "1", "same", "S1", "Acme", "M", "web1"}, 1'700'000'000);
  auto last = NSample::Document({uuid + "1", "same", "S1", "Acme", "M", "web1"}, 1'700'003'600);
  last.fHasAllPermissions = false;
  last.fIsComplete = false;
  last.fPartsLeftOut = {"processes", "users"};
  last.fFailures = {{"p", "root/x", "reading", "it crashed"}};
  first.fFailures = {{"p", "root/y", "reading", "long ago"}};
  for (const auto& each : {last, first}) store.Add(each);
  store.Add(NSample::Document({uuid + "2", "same", "S2", "", "", "web2"}, 1'700'000'001));
  const std::vector<TFleetHost> fleet = ReadFleet(*database);
  ASSERT_EQ(NamesOf(fleet), "web1 web2");
  EXPECT_EQ(fleet[0].fUUID, uuid + "1");
  EXPECT_EQ(fleet[0].fFirstSeen, "2023-11-14T22:13:20Z");
  EXPECT_EQ(fleet[0].fLastSeen, "2023-11-14T23:13:20Z");
  EXPECT_EQ(fleet[0].fDocuments, 2);
  EXPECT_FALSE(fleet[0].fHasAllPermissions);
  EXPECT_FALSE(fleet[0].fIsComplete);
  EXPECT_EQ(fleet[0].fPartsLeftOut, (std::vector<std::string>{"processes", "users"}));
  ASSERT_EQ(fleet[0].fProblems.size(), 1U);
  EXPECT_EQ(fleet[0].fProblems[0].fReason, "it crashed");
  EXPECT_EQ(fleet[0].fClones, std::vector<std::string>{"web2"});
  EXPECT_EQ(fleet[1].fClones, std::vector<std::string>{"web1"});
  EXPECT_TRUE(fleet[1].fIsComplete);
  EXPECT_EQ(ProductOf(fleet[0]), "Acme M");
}

TEST(Fleet, NoticesThatSeveralMachinesHaveOneUUID) {
  const THostIdentity one = {"4c4c4544-0000-1000-8000-000000000001", "m1", "S1", "Acme", "M", "a"};
  THostIdentity other = one;
  other.fMachineID = "m2";
  other.fName = "b";
  THostIdentity otherSerial = other;
  otherSerial.fSerialNumber = "S2";
  THostIdentity user = other;  // without root
  user.fUUID = user.fSerialNumber = "";
  using TIdentifiers = std::vector<TFleetHost::EIdentifier>;
  const struct {
    const char* fName;
    std::vector<THostIdentity> fDocuments;
    TIdentifiers fAlternating;
  } rows[] = {{"new installation", {one, one, other, other}, {}},
              {"two systems", {one, other, one}, {TFleetHost::kMachineID, TFleetHost::kName}},
              {"in the middle",
               {one, otherSerial, otherSerial, one},
               {TFleetHost::kMachineID, TFleetHost::kSerialNumber, TFleetHost::kName}},
              {"without root", {one, user, one}, {}}};
  for (const auto& row : rows) {
    const TTempDir folder;
    const auto database = OpenStore(TLocation((folder.Path() / "s").string()), EAccess::kCreating);
    std::int64_t time = 1'700'000'000;
    for (const THostIdentity& each : row.fDocuments) {
      TStore(*database).Add(NSample::Document(each, time += 60));
    }
    EXPECT_EQ(ReadFleet(*database)[0].fAlternating, row.fAlternating) << row.fName;
  }
}

}  // namespace
}  // namespace NVORNQDX20::NStore
