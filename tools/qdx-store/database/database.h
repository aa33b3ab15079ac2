// SPDX-License-Identifier: Apache-2.0
/// A connection to a database of SQLite or PostgreSQL: one code path for both.
///
/// The library below is SOCI. What a document changes goes there as one parameter, a JSON array of
/// rows, which both databases turn into a table: so neither pays for a statement per row, and a
/// layer of our own would gain nothing. 500 documents of 700 facts with the same statements,
/// measured on two processors: SQLite 945 a second with SOCI and 995 with its own interface;
/// PostgreSQL 231 and 248.
#ifndef TOOLS_QDX_STORE_DATABASE_DATABASE_H_
#define TOOLS_QDX_STORE_DATABASE_DATABASE_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "error.h"
#include "location.h"

namespace NVORNQDX20::NStore {

using TValue = std::variant<std::int64_t, std::string>;
using TCell = std::optional<std::string>;  ///< None for NULL.
using TRow = std::vector<TCell>;

/// How long a program waits for another one that has locked the store.
inline constexpr std::chrono::seconds kLockTimeout{60};
/// A person is told about a wait that takes longer.
inline constexpr std::chrono::seconds kSilentWait{1};

/// Called while a database waits for another program, at most once in kLockTimeout. Throws nothing.
using TWaitListener = std::function<void()>;

/// All members throw a TDatabaseError.
///
/// Statements are those of both databases, with words of our own where these differ:
///   @ROWS(:name)  a table with the column "value": the elements of a JSON array
///   @LIST(x)      of the rows of a group, the texts with "," between them
///   @TIME(x)      the text of a moment of a document, such as 2004-03-15T13:30:00.000Z
///   @ID           the type of a column with the key of a row, which the database makes
///   @CLUSTERED    after a table: stored in the order of its key, if the database can do so
/// Each parameter such as :name occurs once, in the order of the values.
class TDatabase {
 public:
  /// Connects. A file must exist, and may be empty.
  explicit TDatabase(const TLocation& location, TWaitListener onWait = nullptr);
  ~TDatabase();
  TDatabase(const TDatabase&) = delete;
  TDatabase& operator=(const TDatabase&) = delete;

  bool IsSQLite() const { return fLocation.fIsFile; }
  const TLocation& GetLocation() const { return fLocation; }

  void Execute(const std::string& sql, const std::vector<TValue>& values = {});
  /// Calls `take` for each row, which has so many columns.
  void Query(const std::string& sql, std::size_t columns, const std::vector<TValue>& values,
             const std::function<void(const TRow&)>& take);
  /// Returns the first cell of the first row; none if there is no row, or for NULL.
  std::optional<std::int64_t> QueryNumber(const std::string& sql,
                                          const std::vector<TValue>& values = {});

  /// To be called when another program has kept this one waiting for kSilentWait.
  void ReportWait();

  /// To be called when all is read. A file that cannot be written is read without a lock: throws
  /// if somebody has written it since it was opened.
  void RequireSameState() const;

  /// To be called when something is written. Throws if the file was removed or replaced since it
  /// was opened: then it is written to nowhere.
  void RequireSameFile() const;

 private:
  struct TSession;

  void RunQuery(const std::string& sql, std::size_t columns, const std::vector<TValue>& values,
                const std::function<void(const TRow&)>& take);

  TLocation fLocation;
  TWaitListener fOnWait;
  std::chrono::steady_clock::time_point fNextReport;  // of a wait
  std::unique_ptr<TSession> fSession;
};

/// Throws a TDatabaseError if the cell is not a number.
std::int64_t ToNumber(const TCell& cell);

/// Changes that are there completely after Commit(), and else not at all.
class TTransaction {
 public:
  enum EPurpose {
    kWriting,  ///< In a file nobody else writes from now on.
    kReading   ///< All queries see the same state, and nobody waits.
  };

  explicit TTransaction(TDatabase& database, EPurpose purpose = kWriting);
  /// Undoes the changes, unless they are committed.
  ~TTransaction();
  TTransaction(const TTransaction&) = delete;
  TTransaction& operator=(const TTransaction&) = delete;

  /// The changes are on the disk when it returns.
  void Commit();

 private:
  TDatabase& fDatabase;
  bool fIsOpen = true;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_DATABASE_H_
