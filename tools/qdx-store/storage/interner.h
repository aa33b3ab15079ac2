// SPDX-License-Identifier: Apache-2.0
/// Texts, classes, objects and properties: each is stored once, and has a number.
#ifndef TOOLS_QDX_STORE_STORAGE_INTERNER_H_
#define TOOLS_QDX_STORE_STORAGE_INTERNER_H_

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <nlohmann/json.hpp>

#include "database/database.h"

namespace NVORNQDX20::NStore {

/// A table whose rows are found by a digest of what makes them different.
struct TInternedTable {
  const char* fName;
  std::vector<const char*> fColumns;  ///< Besides "id" and "digest".
  std::vector<bool> fIsNumber;        ///< Of each column.
  /// The columns that are no part of the digest: the largest value is kept, whatever the order of
  /// the documents.
  std::vector<const char*> fAttributes = {};
};

extern const TInternedTable kStringTable;
extern const TInternedTable kReasonTable;
extern const TInternedTable kClassTable;
extern const TInternedTable kPropertyTable;
extern const TInternedTable kObjectTable;

/// Remembers numbers across documents, at most so many that memory stays small.
class TInterner {
 public:
  explicit TInterner(TDatabase& database) : fDatabase(database) {}

  /// A row: its columns, without those of `fAttributes`, then these.
  using TInternedRow = std::vector<nlohmann::json>;

  /// Returns the numbers of the rows, and stores those that are new. Throws a TDatabaseError.
  std::vector<std::int64_t> Intern(const TInternedTable& table,
                                   const std::vector<TInternedRow>& rows);
  std::int64_t InternString(const std::string& text);
  std::vector<std::int64_t> InternStrings(const std::vector<std::string>& texts);

  /// To be called after a transaction that was undone: its numbers do not exist.
  void Forget() { fNumbers.clear(); }

 private:
  TDatabase& fDatabase;
  /// By the name of the table, the digest and the attributes.
  std::unordered_map<std::string, std::int64_t> fNumbers;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_INTERNER_H_
