// SPDX-License-Identifier: Apache-2.0
// The same cases in a file and on a server.
#include "storage/store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>

#include "database/open.h"
#include "postgresql_server.h"
#include "sample_document.h"
#include "storage/hosts.h"
#include "storage/identity.h"
#include "storage/identity_group.h"
#include "storage/removal.h"
#include "support/expect_status.h"
#include "support/temp_dir.h"

using namespace NSample;
using namespace NVORNQDX20;
using namespace NVORNQDX20::NStore;

namespace {

const THostIdentity kHost = {"4c4c4544-0001-4a10-8051-b4c04f4a5331", "m1", "S1", "Acme", "M", "a"};
/// The same machine without root.
const THostIdentity kUser = {"", "m1", "", "", "M", "a"};
const char* const kDisk = "VORNSG_DiskDrive";

class Store : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (GetParam() && !TPostgreSQLServer::Get().WhyNot().empty()) {
      GTEST_SKIP() << TPostgreSQLServer::Get().WhyNot();
    }
    Renew();
  }

  /// Continues with an empty store.
  void Renew() {
    const std::string place = GetParam() ? TPostgreSQLServer::Get().NewDatabase()
                                         : (fFolder.Path() / std::to_string(++fStores)).string();
    fDatabase = OpenStore(TLocation(place), EAccess::kCreating);
    fStore = std::make_unique<TStore>(*fDatabase);
  }

  /// The rows of a query, sorted; the cells with "|" between them.
  std::multiset<std::string> Rows(const std::string& query, std::size_t columns) {
    std::multiset<std::string> rows;
    fDatabase->Query(query, columns, {}, [&](const TRow& row) {
      std::string text;
      for (const TCell& cell : row) text += (text.empty() ? "" : "|") + cell.value_or("-");
      rows.insert(text);
    });
    return rows;
  }

  /// Everything that the order of the documents could change, without numbers of rows.
  std::multiset<std::string> Contents() {
    std::multiset<std::string> all = Rows(
        "SELECT h.key, f.class, f.object, f.property, f.value, f.valid_from, f.valid_to"
        " FROM facts AS f JOIN host AS h ON h.id = f.host_id",
        7);
    all.merge(
        Rows("SELECT h.key, m.class, m.object, m.property, m.reason, m.valid_from"
             " FROM missing AS m JOIN host AS h ON h.id = m.host_id",
             6));
    all.merge(Rows("SELECT host, object, time, value FROM readings", 4));
    all.merge(
        Rows("SELECT host, uuid, machine_id, first_seen, last_seen, documents FROM hosts", 6));
    return all;
  }

  std::unique_ptr<TDatabase> fDatabase;
  std::unique_ptr<TStore> fStore;

 private:
  const TTempDir fFolder;
  int fStores = 0;
};

INSTANTIATE_TEST_SUITE_P(In, Store, ::testing::Values(false, true), [](const auto& row) {
  return std::string(row.param ? "PostgreSQL" : "File");
});

TEST_P(Store, KeepsFromWhenToWhenAFactHolds) {
  for (const auto& [seconds, firmware] : {std::pair(100, "1"), {200, "1"}, {300, "2"}}) {
    TDocumentFacts document = Document(kHost, seconds);
    AddFact(document, kDisk, "/dev/sda", "FirmwareRevision", firmware);
    AddFact(document, kDisk, "/dev/sda", "Size", "1000204886016", false, "uint64");
    if (seconds < 300) AddFact(document, kDisk, "/dev/sdb", "Model", "Spin 'n' \"go\"\\\u00e9");
    AddFact(document, kDisk, "/dev/sda", "Temperature", std::to_string(seconds), true);
    EXPECT_TRUE(fStore->Add(document).fIsNew);
    EXPECT_FALSE(fStore->Add(document).fIsNew);
  }
  EXPECT_EQ(Rows("SELECT object, property, value, valid_from, valid_to FROM facts", 5),
            (std::multiset<std::string>{
                "/dev/sda|FirmwareRevision|1|1970-01-01T00:01:40.000Z|1970-01-01T00:05:00.000Z",
                "/dev/sda|FirmwareRevision|2|1970-01-01T00:05:00.000Z|-",
                "/dev/sda|Size|1000204886016|1970-01-01T00:01:40.000Z|-",
                "/dev/sdb|Model|Spin 'n' \"go\"\\\u00e9|1970-01-01T00:01:40.000Z|"
                "1970-01-01T00:05:00.000Z"}));
  EXPECT_EQ(Rows("SELECT time, object, property, old_value, new_value FROM changes", 5),
            (std::multiset<std::string>{
                "1970-01-01T00:05:00.000Z|/dev/sda|FirmwareRevision|1|2",
                "1970-01-01T00:05:00.000Z|/dev/sdb|Model|Spin 'n' \"go\"\\\u00e9|-"}));
  EXPECT_EQ(Rows("SELECT host, device, firmware, bytes FROM disks", 4),
            (std::multiset<std::string>{"a|/dev/sda|2|1000204886016"}));
  EXPECT_EQ(Rows("SELECT value FROM readings", 1),
            (std::multiset<std::string>{"100", "200", "300"}));
  EXPECT_EQ(fStore->PruneReadings(300 * 1'000'000), 2);
  EXPECT_EQ(Rows("SELECT value FROM readings", 1), (std::multiset<std::string>{"300"}));
}

TEST_P(Store, EndsNothingThatADocumentCouldNotSee) {
  TDocumentFacts first = Document(kHost, 100);
  AddFact(first, kDisk, "/dev/sda", "SerialNumber", "X1");
  AddFact(first, kDisk, "/dev/sda", "Model", "Old");
  TDocumentFacts second = Document(kUser, 200);
  AddFact(second, kDisk, "/dev/sda", "Model", "Old");
  AddMissing(second, kDisk, "/dev/sda", "SerialNumber");
  TDocumentFacts third = Document(kHost, 300);
  third.fUnknown.push_back({kNamespace, "", "part", {}, ""});
  fStore->Add(third);
  fStore->Add(second);
  fStore->Add(first);
  EXPECT_EQ(Rows("SELECT property, valid_to FROM facts", 2),
            (std::multiset<std::string>{"Model|-", "SerialNumber|-"}));
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM hosts", 1), (std::multiset<std::string>{"1"}));
}

/// Documents of four machines, of which two have the same machine-id, with and without root.
std::vector<TDocumentFacts> RandomDocuments(std::mt19937& random) {
  const THostIdentity hosts[] = {
      kHost,
      kUser,
      {"4c4c4544-0002-4a10-8051-b4c04f4a5331", "m1", "S2", "Acme", "M", "b"},
      {"", "m1", "", "", "M", "b"},
      {"", "", "S2", "Acme", "M", ""},
      {"", "", "", "", "", "a"}};
  std::vector<TDocumentFacts> documents;
  for (unsigned i = 0; i < 14; ++i) {
    // Some at the same time.
    TDocumentFacts document = Document(hosts[random() % std::size(hosts)], 1000 + 10 * (i / 2), i);
    for (const char* disk : {"/dev/sda", "/dev/sdb"}) {
      for (const char* property : {"Model", "SerialNumber"}) {
        const auto what = random() % 5;
        if (what == 0) AddMissing(document, kDisk, disk, property);
        if (what > 1) AddFact(document, kDisk, disk, property, std::to_string(what));
      }
      AddFact(document, kDisk, disk, "Temperature", std::to_string(i), true);
    }
    if (random() % 4 == 0) document.fUnknown.push_back({kNamespace, "", "part", {}, ""});
    if (random() % 4 == 0) document.fUnknown.push_back({kNamespace, kDisk, "", {}, "Model"});
    documents.push_back(document);
  }
  return documents;
}

TEST_P(Store, DependsOnTheDocumentsAndNotOnTheirOrder) {
  std::mt19937 random(4);
  for (int round = 0; round < (GetParam() ? 3 : 12); ++round) {
    std::vector<TDocumentFacts> documents = RandomDocuments(random);
    for (const TDocumentFacts& document : documents) fStore->Add(document);
    const auto expected = Contents();
    for (int order = 0; order < 3; ++order) {
      std::shuffle(documents.begin(), documents.end(), random);
      Renew();
      for (const TDocumentFacts& document : documents) fStore->Add(document);
      EXPECT_EQ(Contents(), expected) << "round " << round;
    }
    Renew();
  }
}

/// Of few texts, so that many have something in common; or all of one machine-id.
THostIdentity RandomIdentity(std::mt19937& random, bool isOfOneMachine) {
  const auto text = [&random](const std::string& kind, unsigned shareOfNone) {
    const auto which = static_cast<unsigned>(random() % (3 + shareOfNone));
    return which < 3 ? kind + "-" + std::to_string(which) : "";
  };
  THostIdentity host;
  host.fUUID = text("uuid", 6);
  host.fMachineID = isOfOneMachine ? "machine" : text("machine", 3);
  host.fSerialNumber = text("serial", 4);
  host.fMaker = isOfOneMachine || random() % 2 == 0 ? "acme" : "globex";
  host.fName = text("name", 1);
  return host;
}

TEST_P(Store, GroupsHostsAsIfAllWereComparedAtOnce) {
  std::mt19937 random(6);
  for (int round = 0; round < (GetParam() ? 3 : 20); ++round) {
    std::map<std::string, TIdentity> identities;  // by digest of the document
    const auto expectKeys = [&] {
      std::vector<TIdentity> all;
      for (const auto& [digest, identity] : identities) all.push_back(identity);
      const std::vector<std::string> keys = HostKeys(all);
      std::multiset<std::string> rows;
      auto key = keys.begin();
      for (const auto& each : identities) rows.insert(each.first + "|" + *key++);
      EXPECT_EQ(
          Rows("SELECT d.digest, h.key FROM document AS d JOIN host AS h ON h.id = d.host", 2),
          rows)
          << "round " << round;
      EXPECT_EQ(Rows("SELECT DISTINCT host FROM document", 1), Rows("SELECT id FROM host", 1));
    };
    for (unsigned i = 0; i < 16; ++i) {
      const TDocumentFacts document = Document(RandomIdentity(random, round % 2 == 1), 1000 + i);
      const TIdentity identity = IdentityOf(document.fHost);
      if (identity.IsNobody()) continue;
      fStore->Add(document);
      identities[document.fDigest] = identity;
    }
    expectKeys();
    for (int removals = 0; removals < 4; ++removals) {
      TTransaction transaction(*fDatabase);
      LockAllHosts(*fDatabase);
      const auto host = fDatabase->QueryNumber("SELECT MIN(host) FROM document").value();
      for (const auto& each : RemoveDocuments(*fDatabase, host, 0, 1'008'000)) {
        identities.erase(each.fDigest);
      }
      transaction.Commit();
      expectKeys();
      if (identities.empty()) break;
    }
    Renew();
  }
}

TEST_P(Store, IsAsIfRemovedDocumentsHadNeverBeenAdded) {
  std::mt19937 random(24);
  std::size_t removals = 0;
  for (int round = 0; round < (GetParam() ? 6 : 40); ++round) {
    const std::vector<TDocumentFacts> documents = RandomDocuments(random);
    for (const TDocumentFacts& document : documents) fStore->Add(document);
    const auto all = Contents();
    std::vector<std::int64_t> hosts;
    fDatabase->Query("SELECT id FROM host", 1, {},
                     [&hosts](const TRow& row) { hosts.push_back(ToNumber(row[0])); });
    const std::int64_t since = 1'000'000 + 10'000 * static_cast<std::int64_t>(random() % 7);
    const std::int64_t until = random() % 2 == 0 ? since + 20'000 : since + 1'000'000;
    std::set<std::string> removed;
    {
      TTransaction transaction(*fDatabase);
      LockAllHosts(*fDatabase);
      for (const auto& [time, digest] :
           RemoveDocuments(*fDatabase, hosts[random() % hosts.size()], since, until)) {
        EXPECT_TRUE(time >= since && time < until);
        removed.insert(digest);
      }
      transaction.Commit();
    }
    removals += removed.size();
    const auto left = Contents();
    const auto isRemoved = [&removed](const auto& each) {
      return removed.count(each.fDigest) != 0;
    };
    for (const TDocumentFacts& document : documents) {
      EXPECT_EQ(fStore->Add(document).fIsNew, isRemoved(document));
    }
    EXPECT_EQ(Contents(), all) << "round " << round;
    Renew();
    for (const TDocumentFacts& document : documents) {
      if (!isRemoved(document)) fStore->Add(document);
    }
    EXPECT_EQ(Contents(), left) << "round " << round;
    Renew();
  }
  EXPECT_GT(removals, 10U);
}

TEST_P(Store, ShowsNumbersOfAllHostsWhateverOneDocumentSays) {
  TDocumentFacts good = Document(kHost, 100);
  AddFact(good, kDisk, "/dev/sda", "Size", "18446744073709551615", false, "uint64");
  TDocumentFacts bad = Document({"", "m9", "", "", "", "z"}, 100, 1);
  AddFact(bad, kDisk, "/dev/sda", "Size", "[1,2]", false, "uint64[]");
  AddFact(bad, kDisk, "/dev/sdb", "Size", "-", false, "sint64");
  AddFact(bad, kDisk, "/dev/sdc", "Size", std::string(200000, '9'), false, "uint64");
  fStore->Add(good);
  fStore->Add(bad);
  EXPECT_EQ(Rows("SELECT host, device FROM disks WHERE bytes > 1000", 2),
            (std::multiset<std::string>{"a|/dev/sda"}));
}

TEST_P(Store, NoticesCopiesOfAnInstallation) {
  EXPECT_TRUE(fStore->Add(Document(kHost, 100)).fWarnings.empty());
  THostIdentity copy = kHost;
  copy.fUUID = "4c4c4544-0002-4a10-8051-b4c04f4a5331";
  copy.fName = "b";
  EXPECT_EQ(fStore->Add(Document(copy, 200)).fWarnings.size(), 1U);
  EXPECT_EQ(Rows("SELECT machine_id, host FROM cloned_machine_ids", 2),
            (std::multiset<std::string>{"m1|a", "m1|b"}));
}

TEST_P(Store, NoticesMachinesWithOneUUID) {
  const struct {
    const char* fMachineID;
    const char* fSerial;
    const char* fName;
    const char* fWarning;
  } rows[] = {{"m1", "S1", "renamed", ""},
              {"m2", "S1", "renamed", " comes with 2 machine-ids: a new installation, or several"},
              {"m2", "S1", "again", ""},
              {"", "", "again", ""},
              {"m3", "S2", "other", " comes with 2 serial numbers: several machines"}};
  fStore->Add(Document(kHost, 100));
  std::int64_t time = 200;
  for (const auto& [machine, serial, name, warning] : rows) {
    const THostIdentity host = {kHost.fUUID, machine, serial, "Acme", "M", name};
    const auto warnings = fStore->Add(Document(host, time += 60)).fWarnings;
    ASSERT_EQ(warnings.size(), *warning == '\0' ? 0U : 1U) << name;
    const std::string text = warnings.empty() ? kHost.fUUID : warnings[0];
    EXPECT_NE(text.find(kHost.fUUID + warning), std::string::npos) << text;
    EXPECT_TRUE(fStore->Add(Document(host, time += 60)).fWarnings.empty());
  }
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM hosts", 1), (std::multiset<std::string>{"1"}));
}

TEST_P(Store, ReadsFewOfManyIdentitiesForANewOne) {
  const auto numbered = [](const char* uuid, const char* serial, const char* name) {
    return [=](unsigned i) {
      const auto text = [i](const char* prefix) {
        return *prefix == '\0' ? std::string() : prefix + std::to_string(i);
      };
      return THostIdentity{text(uuid), "m", text(serial), "Acme", "", text(name)};
    };
  };
  const std::function<THostIdentity(unsigned)> kinds[] = {
      numbered("u", "s", "n"), numbered("", "s", "n"), numbered("", "s", ""), numbered("", "", "n"),
      numbered("u", "", "")};
  unsigned time = 100;
  for (const auto& identityOf : kinds) {
    constexpr unsigned kMany = 20;
    for (unsigned i = 0; i < kMany; ++i) fStore->Add(Document(identityOf(i), ++time));
    const TIdentity next = IdentityOf(identityOf(kMany));
    const TIdentityGroup group(*fDatabase, next, TIdentityGroup::kAdded);
    EXPECT_LT(group.GetStored().size(), 8U) << &identityOf - kinds;
    Renew();
  }
}

TEST_P(Store, RefusesWhatItCannotPlace) {
  EXPECT_QDX_STATUS(fStore->Add(Document({"", "", "", "", "", "localhost"}, 100)),
                    kQDXStatusNotFound);
  EXPECT_QDX_STATUS(fStore->Add(Document(kHost, -1)), kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(fStore->Add(Document(kHost, 8'000'000'000)), kQDXStatusInvalidDateTime);
  TDocumentFacts document = Document(kHost, 100);
  document.fFacts.push_back({7, 7, "x"});
  EXPECT_QDX_STATUS(fStore->Add(document), kQDXStatusInvalidFormat);
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM host", 1), (std::multiset<std::string>{"0"}));
}

}  // namespace
