// SPDX-License-Identifier: Apache-2.0
#include "database.h"

#include <qdxsystem/error_text.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <thread>
#include <unordered_map>
#include <utility>

#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>

#include "dialect.h"
#include "sqlite_file.h"

namespace NVORNQDX20::NStore {
namespace {

using TClock = std::chrono::steady_clock;

const char* const kServerSettings[] = {
    "SET client_min_messages = warning", "SET statement_timeout = '300s'",
    "SET idle_in_transaction_session_timeout = '600s'", "SET client_encoding = 'UTF8'",
    "SET standard_conforming_strings = on"};
/// In seconds, for servers that are not reached. The environment of the user precedes.
const char* const kConnectTimeout = "10";

/// `systemError` is the number of what the operating system said last.
TDatabaseError ErrorOfFile(const soci::sqlite3_soci_error& error, const std::string& reason,
                           int systemError) {
  constexpr int kPrimary = 0xff;
  switch (error.result() & kPrimary) {
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
      return {TDatabaseError::kUnusable, kQDXStatusFileSystemError,
              reason + (systemError == 0 ? "" : ": " + ErrorText(systemError))};
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {TDatabaseError::kLocked, kQDXStatusFail, "another program keeps it locked"};
    case SQLITE_CONSTRAINT:
    case SQLITE_TOOBIG:
    case SQLITE_MISMATCH:
    case SQLITE_RANGE:
      return {TDatabaseError::kRefused, kQDXStatusFail, reason};
    case SQLITE_NOTADB:
      return {TDatabaseError::kUnusable, kQDXStatusInvalidFormat, "it is no store"};
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return {TDatabaseError::kUnusable, kQDXStatusAccessDenied, reason};
    case SQLITE_NOMEM:
      return {TDatabaseError::kUnusable, kQDXStatusOutOfMemory, "out of memory"};
    default:
      return {TDatabaseError::kUnusable, kQDXStatusFileSystemError, reason};
  }
}

TDatabaseError ErrorOfServer(const soci::postgresql_soci_error& error, const std::string& reason) {
  const std::string state = error.sqlstate();
  if (state == "55P03") {
    return {TDatabaseError::kLocked, kQDXStatusFail, "another program keeps it locked"};
  }
  for (const char* conflict : {"40001", "40P01"}) {
    if (state == conflict) return {TDatabaseError::kConflict, kQDXStatusFail, reason};
  }
  // Values that it does not take, such as an index row that is too long.
  for (const char* refusal : {"22", "23", "54"}) {
    if (boost::starts_with(state, refusal)) {
      return {TDatabaseError::kRefused, kQDXStatusFail, reason};
    }
  }
  const bool isDenied = boost::starts_with(state, "42501") || boost::starts_with(state, "28");
  return {TDatabaseError::kUnusable, isDenied ? kQDXStatusAccessDenied : kQDXStatusConnectionFailed,
          reason};
}

/// SOCI's own words precede those of the database in some messages.
std::string ReasonOf(const soci::soci_error& error, const TLocation& location) {
  std::string reason = location.WithoutSecrets(error.get_error_message());
  for (const char* prefix :
       {"Cannot establish connection to the database.", "Cannot execute query.",
        "Cannot prepare statement.", "Fatal error.", "sqlite3_statement_backend::loadOne: ",
        "sqlite3_statement_backend::prepare: ", "ERROR:", "FATAL:"}) {
    boost::trim(reason);
    if (boost::starts_with(reason, prefix)) reason.erase(0, std::string(prefix).size());
  }
  boost::trim(reason);
  // The lines after the first one repeat the statement.
  return reason.substr(0, reason.find('\n'));
}

/// Unchecked by the sanitizer: the database's library does not export the type of its session.
__attribute__((no_sanitize("vptr"))) sqlite_api::sqlite3* SQLiteOf(soci::session& session) {
  auto* const backend = static_cast<soci::sqlite3_session_backend*>(session.get_backend());
  return backend == nullptr ? nullptr : backend->conn_;
}

template <typename TCall>
void Translated(const TLocation& location, soci::session& session, const TCall& call) {
  try {
    call();
  } catch (const soci::sqlite3_soci_error& error) {
    sqlite_api::sqlite3* const own = SQLiteOf(session);
    const int systemError = own == nullptr ? 0 : sqlite_api::sqlite3_system_errno(own);
    throw ErrorOfFile(error, ReasonOf(error, location), systemError);
  } catch (const soci::postgresql_soci_error& error) {
    throw ErrorOfServer(error, ReasonOf(error, location));
  } catch (const soci::soci_error& error) {
    throw TDatabaseError(TDatabaseError::kUnusable, kQDXStatusFail, ReasonOf(error, location));
  }
}

}  // namespace

struct TDatabase::TSession {
  explicit TSession(TDatabase& database) : fDatabase(database) {}

  TDatabase& fDatabase;
  soci::session fSession;
  std::optional<TSQLiteFile> fFile;  // none for a server
  TClock::time_point fWaitingSince;  // for another program that has locked the file
  /// Ours to the database's.
  std::unordered_map<std::string, std::string> fStatements;

  const std::string& Translate(const std::string& sql, bool isSQLite) {
    const auto [found, isNew] = fStatements.try_emplace(sql);
    if (isNew) found->second = NStore::Translate(sql, isSQLite);
    return found->second;
  }

  /// To be called after opening a file.
  void WaitForLocks() {
    sqlite_api::sqlite3_busy_handler(
        SQLiteOf(fSession),
        [](void* session, int attempts) noexcept {
          return static_cast<int>(static_cast<TSession*>(session)->WaitForLock(attempts));
        },
        this);
  }

  /// Waits a moment. Returns whether it is worth another attempt.
  bool WaitForLock(int attempts) {
    const auto now = TClock::now();
    if (attempts == 0) fWaitingSince = now;
    if (now - fWaitingSince >= kLockTimeout) return false;
    if (now - fWaitingSince >= kSilentWait) fDatabase.ReportWait();
    constexpr int kLongest = 50;
    std::this_thread::sleep_for(std::chrono::milliseconds(std::min(attempts + 1, kLongest)));
    return true;
  }
};

TDatabase::TDatabase(const TLocation& location, TWaitListener onWait)
    : fLocation(location), fOnWait(std::move(onWait)), fSession(std::make_unique<TSession>(*this)) {
  if (fLocation.fIsFile) fSession->fFile.emplace(fLocation.fText);
  Translated(fLocation, fSession->fSession, [&] {
    if (fLocation.fIsFile) {
      // Once, before SQLite is used; no name of a file becomes a URI.
      static const int urisAreNames = sqlite_api::sqlite3_config(SQLITE_CONFIG_URI, 1);
      (void)urisAreNames;
      fSession->fSession.open(soci::sqlite3, fSession->fFile->GetParameters());
      fSession->WaitForLocks();
      Execute("PRAGMA foreign_keys = ON");
      return;
    }
    ::setenv("PGCONNECT_TIMEOUT", kConnectTimeout, 0);
    ::setenv("PGAPPNAME", "qdx-store", 0);
    fSession->fSession.open(soci::postgresql, fLocation.fText);
    for (const char* setting : kServerSettings) Execute(setting);
    Execute("SET lock_timeout = '" + std::to_string(kLockTimeout.count()) + "s'");
  });
}

TDatabase::~TDatabase() = default;

void TDatabase::Execute(const std::string& sql, const std::vector<TValue>& values) {
  Query(sql, 0, values, [](const TRow&) {});
}

void TDatabase::Query(const std::string& sql, std::size_t columns,
                      const std::vector<TValue>& values,
                      const std::function<void(const TRow&)>& take) {
  try {
    RunQuery(sql, columns, values, take);
  } catch (const TDatabaseError&) {
    RequireSameState();  // else what is wrong may be only that
    throw;
  }
}

void TDatabase::RunQuery(const std::string& sql, std::size_t columns,
                         const std::vector<TValue>& values,
                         const std::function<void(const TRow&)>& take) {
  Translated(fLocation, fSession->fSession, [&] {
    std::vector<std::string> cells(columns);
    std::vector<soci::indicator> indicators(columns, soci::i_ok);
    std::vector<long long> numbers(values.size());
    soci::statement statement(fSession->fSession);
    for (std::size_t i = 0; i < columns; ++i) {
      statement.exchange(soci::into(cells[i], indicators[i]));
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (const auto* const text = std::get_if<std::string>(&values[i])) {
        statement.exchange(soci::use(*text));
      } else {
        numbers[i] = std::get<std::int64_t>(values[i]);
        statement.exchange(soci::use(numbers[i]));
      }
    }
    statement.alloc();
    statement.prepare(fSession->Translate(sql, IsSQLite()), soci::details::st_one_time_query);
    statement.define_and_bind();
    if (columns == 0) {
      statement.execute(true);
      return;
    }
    TRow row(columns);
    statement.execute(false);
    while (statement.fetch()) {
      for (std::size_t i = 0; i < columns; ++i) {
        if (indicators[i] == soci::i_null) {
          row[i].reset();
        } else {
          row[i] = cells[i];
        }
      }
      take(row);
    }
  });
}

std::optional<std::int64_t> TDatabase::QueryNumber(const std::string& sql,
                                                   const std::vector<TValue>& values) {
  std::optional<std::int64_t> number;
  Query(sql, 1, values, [&](const TRow& row) {
    if (!number && row[0]) number = ToNumber(row[0]);
  });
  return number;
}

void TDatabase::ReportWait() {
  const auto now = TClock::now();
  if (!fOnWait || now < fNextReport) return;
  fNextReport = now + kLockTimeout;
  fOnWait();
}

void TDatabase::RequireSameState() const {
  if (fSession->fFile && fSession->fFile->HasChanged()) {
    throw TDatabaseError(TDatabaseError::kConflict, kQDXStatusFail,
                         "it was written while it was read: try again");
  }
}

void TDatabase::RequireSameFile() const {
  if (fSession->fFile && fSession->fFile->IsReplaced()) {
    throw TDatabaseError(TDatabaseError::kUnusable, kQDXStatusFileNotFound,
                         "its file was removed or replaced while it was written");
  }
}

std::int64_t ToNumber(const TCell& cell) {
  std::int64_t number = 0;
  const std::string text = cell.value_or("");
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    throw TDatabaseError(TDatabaseError::kUnusable, kQDXStatusCorruptedContainer,
                         "it has a text where a number is expected");
  }
  return number;
}

TTransaction::TTransaction(TDatabase& database, EPurpose purpose) : fDatabase(database) {
  if (purpose == kReading) {
    const char* const sameState = "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY";
    fDatabase.Execute(fDatabase.IsSQLite() ? "BEGIN" : sameState);
  } else {
    // Of a file the lock at once: a reader that becomes a writer later may be refused.
    fDatabase.Execute(fDatabase.IsSQLite() ? "BEGIN IMMEDIATE" : "BEGIN");
  }
}

TTransaction::~TTransaction() {
  if (!fIsOpen) return;
  try {
    fDatabase.Execute("ROLLBACK");
  } catch (...) {
    // The database undoes it itself: it has lost the connection, or has done so already.
  }
}

void TTransaction::Commit() {
  fDatabase.Execute("COMMIT");
  fIsOpen = false;
  fDatabase.RequireSameFile();
}

}  // namespace NVORNQDX20::NStore
