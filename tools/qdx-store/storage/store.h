// SPDX-License-Identifier: Apache-2.0
/// Adds documents to a store.
#ifndef TOOLS_QDX_STORE_STORAGE_STORE_H_
#define TOOLS_QDX_STORE_STORAGE_STORE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "database/database.h"
#include "input/document_facts.h"
#include "interner.h"

namespace NVORNQDX20::NStore {

class TStore {
 public:
  /// The database has the tables of a store.
  explicit TStore(TDatabase& database) : fDatabase(database), fInterner(database) {}

  /// Throws a TExplainedException for a document that no store takes: it names no host, or has no
  /// usable time.
  static void Check(const TDocumentFacts& facts);

  struct TAdded {
    bool fIsNew;  ///< Otherwise the document was stored before, and nothing changes.
    std::vector<std::string> fWarnings = {};  ///< About its host.
  };
  /// Adds a document in one transaction, which is repeated a few times if it meets that of another
  /// writer. Throws a TDatabaseError, and what Check() throws.
  TAdded Add(const TDocumentFacts& facts);

  /// Returns whether the store has a document with this digest. Throws a TDatabaseError.
  bool Has(const std::string& digest);

  /// Lets queries choose their ways by how many rows there are now. Failures are ignored.
  void UpdateStatistics();

  /// Removes the readings of documents before this time, in microseconds since 1970. Returns how
  /// many. Throws a TDatabaseError.
  std::int64_t PruneReadings(std::int64_t before);

 private:
  TAdded AddOnce(const TDocumentFacts& facts);

  TDatabase& fDatabase;
  TInterner fInterner;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_STORE_H_
