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

#include "schema.h"

namespace NVORNQDX20::NStore {
namespace {

/// Marks a file of SQLite as a store, for file(1) and for ourselves: "qdxs".
const std::int64_t kApplication = 0x71647873;
/// Writers that create the tables at the same time wait for each other.
const char* const kLockOfSchema = "SELECT pg_advisory_xact_lock(7366225, 0)";

[[noreturn]] void Fail(TQDXStatusCode status, const std::string& reason) {
  throw TDatabaseError(TDatabaseError::kUnusable, status, reason);
}

/// Makes the entry of a new file in its folder permanent.
void WriteFolderToDisk(const std::string& file) {
  const auto folder = std::filesystem::path(file).parent_path();
  const TDescriptor descriptor(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.IsOpen()) (void)::fsync(descriptor.Get());
}

void CreateFile(const std::string& file) {
  const TDescriptor created(
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  const int error = created.GetError();
  if (created.IsOpen()) {
    WriteFolderToDisk(file);
  } else if (error != EEXIST) {
    Fail(error == EACCES || error == EROFS ? kQDXStatusAccessDenied : kQDXStatusFileSystemError,
         ErrorText(error));
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

void Migrate(TDatabase& database, std::int64_t version) {
  if (version == 0) {
    if (database.IsSQLite()) {
      database.Execute("PRAGMA application_id = " + std::to_string(kApplication));
    }
    database.Execute("CREATE TABLE store (version BIGINT NOT NULL)");
    database.Execute("INSERT INTO store (version) VALUES (0)");
  }
  DropViews(database);
  for (std::int64_t next = version; next < LatestVersion(); ++next) {
    for (const std::string& statement : Migrations()[static_cast<std::size_t>(next)]) {
      database.Execute(statement);
    }
  }
  CreateViews(database);
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

void BringUpToDate(TDatabase& database, EAccess access) {
  if (database.IsSQLite()) database.Execute("PRAGMA journal_mode = WAL");
  TTransaction transaction(database);
  if (!database.IsSQLite()) database.Execute(kLockOfSchema);
  // Another program may have done it in the meantime.
  const std::int64_t version = CheckVersion(database, access);
  if (version < LatestVersion()) Migrate(database, version);
  transaction.Commit();
}

}  // namespace

std::unique_ptr<TDatabase> OpenStore(const TLocation& location, EAccess access) {
  if (location.fIsFile && access == EAccess::kCreating) CreateFile(location.fText);
  auto database = std::make_unique<TDatabase>(location);
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
