// SPDX-License-Identifier: Apache-2.0
/// What changed on a host, and when.
#ifndef TOOLS_QDX_STORE_QUESTIONS_HISTORY_H_
#define TOOLS_QDX_STORE_QUESTIONS_HISTORY_H_

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "database/database.h"

namespace NVORNQDX20::NStore {

struct TChange {
  enum EChange {
    kAdded,
    kRemoved,
    kChanged,
    kMissing,    ///< There is a reason why it is missing, which there was not before.
    kNotMissing  ///< The reason does not hold any more.
  };

  std::int64_t fTime;   ///< Of the first document that shows it: milliseconds since 1970.
  std::int64_t fAfter;  ///< Of the document before: the change was between the two.
  EChange fChange;
  std::string fNamespace;
  std::string fClass;
  std::string fObject;              ///< Of what is missing empty for all objects of the class.
  std::string fProperty;            ///< Of what is missing empty for the objects themselves.
  bool fIsOfWholeObject;            ///< The object came or went with all its values.
  std::optional<std::string> fOld;  ///< None for an added value.
  std::optional<std::string> fNew;  ///< None for a removed value.
  /// Why it is or was missing; none for the changes of values.
  std::optional<std::string> fReason = {};
};

struct THistoryRequest {
  std::int64_t fHost;
  std::string fClass;         ///< The only one; empty for all.
  bool fWithMissing = false;  ///< Also what became missing for a reason, and what ended that.
  /// The times between which changes are reported, the second one excluded.
  std::int64_t fSince = std::numeric_limits<std::int64_t>::min();
  std::int64_t fUntil = std::numeric_limits<std::int64_t>::max();
};

/// Returns the changes from document to document, by time, class, object and property; nothing of
/// the first document. Throws a TDatabaseError.
std::vector<TChange> ReadHistory(TDatabase& database, const THistoryRequest& request);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_QUESTIONS_HISTORY_H_
