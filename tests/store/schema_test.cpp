// SPDX-License-Identifier: Apache-2.0
// Stores of other versions, and what is no store.
#include "database/schema.h"

#include <gtest/gtest.h>

#include <fstream>

#include <sys/mount.h>

#include "database/open.h"
#include "postgresql_server.h"
#include "sample_document.h"
#include "storage/store.h"
#include "support/expect_status.h"
#include "support/temp_dir.h"

using namespace NSample;
using namespace NVORNQDX20;
using namespace NVORNQDX20::NStore;

namespace {

/// Runs the statements that sqlite3 has printed, one in each line unless a text has line ends.
void Load(const std::string& script, TDatabase& database) {
  std::ifstream file(script);
  std::string statement;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("--", 0) == 0) continue;
    statement += line + "\n";
    if (line.empty() || line.back() != ';') continue;
    database.Execute(statement);
    statement.clear();
  }
}

std::string Cells(TDatabase& database, const std::string& query, std::size_t columns) {
  std::string text;
  database.Query(query, columns, {}, [&](const TRow& row) {
    for (const TCell& cell : row) text += cell.value_or("-") + "|";
  });
  return text;
}

TEST(StoreSchema, BringsAFileOfVersion1UpToDate) {
  const TTempDir folder;
  const TLocation location(folder.Write("old.db", "").string());
  {
    TDatabase old(location);
    Load(STORE_DATA "/version1.sql", old);
    old.Execute("PRAGMA application_id = 1902409843");
    EXPECT_EQ(old.QueryNumber("SELECT version FROM store"), 1);
  }
  const auto database = OpenStore(location, EAccess::kExisting);
  EXPECT_EQ(database->QueryNumber("SELECT version FROM store"), LatestVersion());
  EXPECT_EQ(Cells(*database, "SELECT time, added FROM documents ORDER BY time", 2),
            "1970-01-01T00:01:40.000Z|-|1970-01-01T00:03:20.000Z|-|");
  // Its contents are those that this version would have, also for a document in between.
  TDocumentFacts between =
      Document({"4c4c4544-0001-4a10-8051-b4c04f4a5331", "", "", "", "", ""}, 150);
  AddFact(between, "VORNSG_DiskDrive", "/dev/sda", "FirmwareRevision", "150");
  TStore(*database).Add(between);
  EXPECT_EQ(Cells(*database,
                  "SELECT value, valid_from, valid_to FROM facts"
                  " WHERE property = 'FirmwareRevision' ORDER BY valid_from",
                  3),
            "100|1970-01-01T00:01:40.000Z|1970-01-01T00:02:30.000Z|"
            "150|1970-01-01T00:02:30.000Z|1970-01-01T00:03:20.000Z|"
            "200|1970-01-01T00:03:20.000Z|-|");
}

TEST(StoreSchema, BringsAServersStoreOfVersion1UpToDate) {
  TPostgreSQLServer& server = TPostgreSQLServer::Get();
  if (!server.WhyNot().empty()) GTEST_SKIP() << server.WhyNot();
  const TLocation location(server.NewDatabase());
  {
    TDatabase old(location);
    old.Execute("CREATE TABLE store (version BIGINT NOT NULL)");
    old.Execute("INSERT INTO store (version) VALUES (1)");
    for (const std::string& statement : Migrations()[0]) old.Execute(statement);
  }
  const auto database = OpenStore(location, EAccess::kExisting);
  TStore(*database).Add(Document({"", "m", "", "", "", "a"}, 100));
  EXPECT_EQ(database->QueryNumber("SELECT COUNT(*) FROM documents WHERE added IS NOT NULL"), 1);
}

TEST(StoreSchema, KeepsViewsOfOthersOnAServer) {
  TPostgreSQLServer& server = TPostgreSQLServer::Get();
  if (!server.WhyNot().empty()) GTEST_SKIP() << server.WhyNot();
  // The views of an older version; one has fewer columns, the other one different ones.
  for (const char* const facts : {"", "CREATE VIEW facts AS SELECT name AS other FROM host"}) {
    const TLocation location(server.NewDatabase());
    TDatabase old(location);
    old.Execute("CREATE TABLE store (version BIGINT NOT NULL)");
    old.Execute("INSERT INTO store (version) VALUES (1)");
    for (const std::string& statement : Migrations()[0]) old.Execute(statement);
    old.Execute("CREATE VIEW hosts AS SELECT name AS host, id AS host_id FROM host");
    old.Execute("CREATE VIEW mine AS SELECT host FROM hosts");
    old.Execute("GRANT SELECT ON hosts TO PUBLIC");
    if (*facts != '\0') {
      old.Execute(facts);
      std::string reason;
      try {
        OpenStore(location, EAccess::kExisting);
      } catch (const TDatabaseError& error) {
        reason = error.GetReason();
      }
      EXPECT_NE(reason.find("drop public.mine, run this again"), std::string::npos) << reason;
      EXPECT_EQ(old.QueryNumber("SELECT version FROM store"), 1);
      old.Execute("DROP VIEW mine");
    }
    const auto database = OpenStore(location, EAccess::kExisting);
    TStore(*database).Add(Document({"", "m", "", "", "", "a"}, 100));
    EXPECT_EQ(Cells(old, "SELECT host, machine_id FROM hosts", 2), "a|m|");
    if (*facts != '\0') continue;
    EXPECT_EQ(Cells(old, "SELECT host FROM mine", 1), "a|");
    EXPECT_EQ(Cells(old, "SELECT has_table_privilege('pg_monitor', 'hosts', 'SELECT')", 1), "t|");
  }
}

TEST(StoreSchema, RefusesWhatItDoesNotKnow) {
  const TTempDir folder;
  const auto open = [](const std::filesystem::path& file, EAccess access) {
    return OpenStore(TLocation(file.string()), access);
  };
  const auto text = folder.Write("text", std::string(5000, 'x'));
  EXPECT_QDX_STATUS(open(text, EAccess::kCreating), kQDXStatusInvalidFormat);
  const auto empty = folder.Write("empty", "");
  EXPECT_QDX_STATUS(open(empty, EAccess::kExisting), kQDXStatusInvalidFormat);
  EXPECT_QDX_STATUS(open(folder.Path() / "none", EAccess::kExisting), kQDXStatusFileNotFound);
  EXPECT_QDX_STATUS(open(folder.Path(), EAccess::kCreating), kQDXStatusFileSystemError);
  const auto other = folder.Write("other", "");
  TDatabase(TLocation(other.string())).Execute("CREATE TABLE store (version BIGINT)");
  EXPECT_QDX_STATUS(open(other, EAccess::kCreating), kQDXStatusInvalidFormat);
  const auto newer = folder.Path() / "newer";
  open(newer, EAccess::kCreating)->Execute("UPDATE store SET version = 1000");
  EXPECT_QDX_STATUS(open(newer, EAccess::kCreating), kQDXStatusNotSupported);
}

TEST(StoreSchema, IsMadeOnlyWhenItIsNeeded) {
  const TTempDir folder;
  const auto file = folder.Path() / "none";
  EXPECT_EQ(OpenStore(TLocation(file.string()), EAccess::kOptional), nullptr);
  EXPECT_FALSE(std::filesystem::exists(file));
  const auto empty = folder.Write("empty", "");
  EXPECT_EQ(OpenStore(TLocation(empty.string()), EAccess::kOptional), nullptr);
  EXPECT_EQ(std::filesystem::file_size(empty), 0U);
  OpenStore(TLocation(file.string()), EAccess::kCreating);
  EXPECT_NE(OpenStore(TLocation(file.string()), EAccess::kOptional), nullptr);
  // What cannot be made is known before somebody has collected for it.
  const auto open = [](const std::filesystem::path& place) {
    return OpenStore(TLocation(place.string()), EAccess::kOptional);
  };
  EXPECT_QDX_STATUS(open(folder.Path() / "no" / "store"), kQDXStatusFileSystemError);
  EXPECT_QDX_STATUS(open(empty / "store"), kQDXStatusFileSystemError);
  std::filesystem::create_symlink("nowhere", folder.Path() / "link");
  EXPECT_QDX_STATUS(open(folder.Path() / "link"), kQDXStatusFileNotFound);
  TPostgreSQLServer& server = TPostgreSQLServer::Get();
  if (!server.WhyNot().empty()) GTEST_SKIP() << server.WhyNot();
  std::string store = server.NewDatabase();
  EXPECT_EQ(open(store), nullptr);
  TDatabase(TLocation(store)).Execute("CREATE ROLE poor LOGIN");
  store.replace(store.find("tester@"), 6, "poor");
  EXPECT_QDX_STATUS(open(store), kQDXStatusAccessDenied);
}

TEST(StoreSchema, IsInAFileWhateverItsName) {
  const TTempDir folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  for (const char* name : {":memory:", "file:x?mode=memory", "a=b c", "-", "x'y\"z"}) {
    OpenStore(TLocation(name), EAccess::kCreating);
    EXPECT_GT(std::filesystem::file_size(name), 0U) << name;
  }
  std::filesystem::current_path(before);
}

TEST(StoreFile, NoticesThatItChangedWhileItWasReadWithoutALock) {
  const TTempDir folder;
  const auto file = folder.Path() / "store";
  const auto readOnly = folder.Path() / "mounted";
  std::filesystem::create_directory(readOnly);
  OpenStore(TLocation(file.string()), EAccess::kCreating);
  if (::mount(folder.Path().c_str(), readOnly.c_str(), nullptr, MS_BIND, nullptr) != 0) {
    GTEST_SKIP() << "a folder cannot be mounted: not root";
  }
  ::mount(nullptr, readOnly.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr);
  {
    const TLocation location((readOnly / "store").string());
    const auto reader = OpenStore(location, EAccess::kExisting);
    EXPECT_EQ(reader->QueryNumber("SELECT COUNT(*) FROM hosts"), 0);
    EXPECT_NO_THROW(reader->RequireSameState());
    TStore(*OpenStore(TLocation(file.string()), EAccess::kExisting))
        .Add(Document({"", "m", "", "", "", "a"}, 100));
    EXPECT_QDX_STATUS(reader->RequireSameState(), kQDXStatusFail);
    EXPECT_EQ(OpenStore(location, EAccess::kExisting)->QueryNumber("SELECT COUNT(*) FROM hosts"),
              1);
  }
  ::umount(readOnly.c_str());
}

TEST(StoreLocation, KnowsURLsOfNoStore) {
  const std::pair<const char*, const char*> rows[] = {{"mysql://u@h/n", "mysql://"},
                                                      {"POSTGRESQL://h", "POSTGRESQL://"},
                                                      {"file+x-1.0://f", "file+x-1.0://"},
                                                      {"postgres://h", ""},
                                                      {"./mysql://h", ""},
                                                      {"a b://c", ""},
                                                      {"://x", ""},
                                                      {"fleet.db", ""}};
  for (const auto& [text, scheme] : rows) EXPECT_EQ(TLocation::UnknownSchemeOf(text), scheme);
}

TEST(StoreLocation, HidesPasswords) {
  struct TRow {
    const char* fText;
    const char* fShown;
    const char* fMessage;
    const char* fHidden;
  };
  const TRow rows[] = {
      {"fleet.db", "fleet.db", "no fleet.db", "no fleet.db"},
      {"postgresql://u@h/n", "postgresql://u@h/n", "no u", "no u"},
      {"postgresql://u:pass@h/n", "postgresql://u:***@h/n", "bad \"pass\"", "bad \"***\""},
      {"postgresql://u:pa/ss@h/n", "postgresql://u:***@h/n", "bad port \"pa\"", "bad port \"***\""},
      {"postgres://h/n?password=secret&a=b", "postgres://h/n?password=***&a=b",
       "in postgres://h/n?password=secret&a=b", "in postgres://h/n?password=***&a=b"}};
  for (const TRow& row : rows) {
    const TLocation location(row.fText);
    EXPECT_EQ(location.fShown, row.fShown);
    EXPECT_EQ(location.WithoutSecrets(row.fMessage), row.fHidden);
  }
}

}  // namespace
