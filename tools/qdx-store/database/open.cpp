// SPDX-License-Identifier: Apache-2.0
#include "open.h"

#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>

#include "locks.h"
#include "schema.h"

namespace NVORNQDX20::NStore {
namespace {

/// Marks a file of SQLite as a store, for file(1) and for ourselves: "qdxs".
const std::int64_t kApplication = 0x71647873;

[[noreturn]] void Fail(TQDXStatusCode status, const std::string& reason) {
  throw TDatabaseError(TDatabaseError::kUnusable, status, reason);
}

[[noreturn]] void FailToCreate(int error) {
  Fail(error == EACCES || error == EROFS ? kQDXStatusAccessDenied : kQDXStatusFileSystemError,
       ErrorText(error));
}

std::filesystem::path FolderOf(const std::string& file) {
  const auto folder = std::filesystem::path(file).parent_path();
  return folder.empty() ? "." : folder;
}

/// Returns false if the file can be made.
bool FileExists(const std::string& file) {
  struct stat status {};
  if (::lstat(file.c_str(), &status) == 0) return true;
  if (errno != ENOENT) FailToCreate(errno);
  const bool canWrite = ::faccessat(AT_FDCWD, FolderOf(file).c_str(), W_OK | X_OK, AT_EACCESS) == 0;
  if (!canWrite) FailToCreate(errno);
  return false;
}

/// Makes the entry of a new file in its folder permanent.
void WriteFolderToDisk(const std::string& file) {
  const TDescriptor descriptor(::open(FolderOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.IsOpen()) (void)::fsync(descriptor.Get());
}

void CreateFile(const std::string& file) {
  const TDescriptor created(
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  const int error = created.GetError();
  if (created.IsOpen()) {
    WriteFolderToDisk(file);
  } else if (error != EEXIST) {
    FailToCreate(error);
  }
}

bool HasTable(TDatabase& database, const std::string& name) {
  const char* const query =
      database.IsSQLite()
          ? "SELECT COUNT(*) FROM sqlite_schema WHERE type = 'table' AND name = :name"
          : "SELECT COUNT(*) FROM pg_catalog.pg_tables WHERE schemaname = current_schema()"
            " AND tablename = :name";
  return database.QueryNumber(query, {name}).value_or(0) > 0;
}

/// Returns the version of the tables, 0 if there are none.
std::int64_t VersionOf(TDatabase& database) {
  if (database.IsSQLite()) {
    const std::int64_t application = database.QueryNumber("PRAGMA application_id").value_or(0);
    const bool isEmpty =
        database.QueryNumber("SELECT COUNT(*) FROM sqlite_schema").value_or(0) == 0;
    if (application == 0 && isEmpty) return 0;
    if (application != kApplication) Fail(kQDXStatusInvalidFormat, "it is no store");
  }
  if (!HasTable(database, "store")) return 0;
  const auto version = database.QueryNumber("SELECT version FROM store");
  if (!version) Fail(kQDXStatusCorruptedContainer, "it is no store: its version is missing");
  return *version;
}

void CreateViews(TDatabase& database) {
  for (const TView& view : Views()) {
    database.Execute("CREATE VIEW " + view.fName + " AS " + view.fQuery);
  }
}

/// In the opposite order, since a view may use those before it.
void DropViews(TDatabase& database) {
  const std::vector<TView> views = Views();
  for (auto view = views.rbegin(); view != views.rend(); ++view) {
    database.Execute("DROP VIEW IF EXISTS " + view->fName);
  }
}

/// Returns the views of a server that are not ours and use ours, with ", " between them.
std::string ViewsOfOthers(TDatabase& database) {
  std::string ours;
  for (const TView& view : Views()) ours += (ours.empty() ? "('" : "', '") + view.fName;
  ours += "')";
  std::string names;
  database.Query(
      "SELECT DISTINCT n.nspname || '.' || c.relname FROM pg_catalog.pg_depend AS d"
      " JOIN pg_catalog.pg_class AS v ON v.oid = d.refobjid"
      " JOIN pg_catalog.pg_rewrite AS r ON r.oid = d.objid"
      " JOIN pg_catalog.pg_class AS c ON c.oid = r.ev_class"
      " JOIN pg_catalog.pg_namespace AS n ON n.oid = c.relnamespace"
      " JOIN pg_catalog.pg_namespace AS o ON o.oid = v.relnamespace"
      " WHERE d.classid = CAST('pg_catalog.pg_rewrite' AS regclass)"
      " AND d.refclassid = CAST('pg_catalog.pg_class' AS regclass)"
      " AND o.nspname = current_schema() AND v.relname IN " +
          ours + " AND NOT (c.relnamespace = v.relnamespace AND c.relname IN " + ours +
          ") ORDER BY 1",
      1, {}, [&](const TRow& row) { names += (names.empty() ? "" : ", ") + row[0].value_or(""); });
  return names;
}

/// Of a server. Views of others may use ours, which cannot be dropped then, but get new columns
/// after the old ones. So the rights that users have been granted stay, too.
void ReplaceViews(TDatabase& database) {
  database.Execute("SAVEPOINT views");
  try {
    for (const TView& view : Views()) {
      database.Execute("CREATE OR REPLACE VIEW " + view.fName + " AS " + view.fQuery);
    }
    return;
  } catch (const TDatabaseError& error) {
    if (error.GetStatusCode() == kQDXStatusAccessDenied) throw;
    database.Execute("ROLLBACK TO SAVEPOINT views");
  }
  const std::string others = ViewsOfOthers(database);
  if (!others.empty()) {
    Fail(kQDXStatusNotSupported, "this version changes views that your own ones use: drop " +
                                     others + ", run this again, and create them again");
  }
  DropViews(database);
  CreateViews(database);
}

void Migrate(TDatabase& database, std::int64_t version) {
  if (version == 0) {
    if (database.IsSQLite()) {
      database.Execute("PRAGMA application_id = " + std::to_string(kApplication));
    }
    database.Execute("CREATE TABLE store (version BIGINT NOT NULL)");
    database.Execute("INSERT INTO store (version) VALUES (0)");
  }
  if (database.IsSQLite()) DropViews(database);
  for (std::int64_t next = version; next < LatestVersion(); ++next) {
    for (const std::string& statement : Migrations()[static_cast<std::size_t>(next)]) {
      database.Execute(statement);
    }
  }
  database.IsSQLite() ? CreateViews(database) : ReplaceViews(database);
  database.Execute("UPDATE store SET version = :version", {LatestVersion()});
}

/// Returns the version. Throws a TDatabaseError if this program cannot use it.
std::int64_t CheckVersion(TDatabase& database, EAccess access) {
  const std::int64_t version = VersionOf(database);
  if (version == 0 && access == EAccess::kExisting) {
    Fail(kQDXStatusInvalidFormat, "it is no store: 'qdx-store add' makes one");
  }
  if (version > LatestVersion()) {
    Fail(kQDXStatusNotSupported,
         "a newer qdx-store has made it: its version is " + std::to_string(version) +
             ", and this program knows versions up to " + std::to_string(LatestVersion()));
  }
  return version;
}

/// On a server: who makes a file may fill it.
void RequireRightToCreate(TDatabase& database) {
  const char* const query =
      "SELECT CAST(has_schema_privilege(current_schema(), 'CREATE') AS INTEGER)";
  if (database.IsSQLite() || database.QueryNumber(query) == 1) return;
  Fail(kQDXStatusAccessDenied, "it is no store, and this user may not create tables");
}

void BringUpToDate(TDatabase& database, EAccess access) {
  if (database.IsSQLite()) database.Execute("PRAGMA journal_mode = WAL");
  TTransaction transaction(database);
  LockStore(database, ELock::kExclusive);
  // Another program may have done it in the meantime.
  const std::int64_t version = CheckVersion(database, access);
  if (version < LatestVersion()) Migrate(database, version);
  transaction.Commit();
}

}  // namespace

std::unique_ptr<TDatabase> OpenStore(const TLocation& location, EAccess access,
                                     TWaitListener onWait) {
  if (location.fIsFile && access == EAccess::kCreating) CreateFile(location.fText);
  if (location.fIsFile && access == EAccess::kOptional && !FileExists(location.fText)) {
    return nullptr;
  }
  auto database = std::make_unique<TDatabase>(location, std::move(onWait));
  if (database->IsSQLite()) {
    // A document is on the disk when its transaction ends, one fsync for each.
    database->Execute("PRAGMA synchronous = FULL");
    // A document with many new texts changes more pages than fit by default: they would be written
    // twice, and the log would be copied into the file after every few documents.
    database->Execute("PRAGMA cache_size = -32768");
    database->Execute("PRAGMA wal_autocheckpoint = 8192");
  }
  const std::int64_t version = CheckVersion(*database, access);
  if (version == LatestVersion()) return database;
  if (version == 0 && access == EAccess::kOptional) {
    RequireRightToCreate(*database);
    return nullptr;
  }
  try {
    BringUpToDate(*database, access);
  } catch (const TDatabaseError& error) {
    if (version == 0 || error.GetStatusCode() != kQDXStatusAccessDenied) throw;
    Fail(kQDXStatusAccessDenied,
         "an older qdx-store has made it, and who may write it has to bring it up to date, as"
         " 'qdx-store hosts' does: " +
             error.GetReason());
  }
  return database;
}

std::int64_t LatestVersion() { return static_cast<std::int64_t>(Migrations().size()); }

}  // namespace NVORNQDX20::NStore
