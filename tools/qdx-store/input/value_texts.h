// SPDX-License-Identifier: Apache-2.0
/// The texts of values and the names of objects, as TDocumentFacts has them.
#ifndef TOOLS_QDX_STORE_INPUT_VALUE_TEXTS_H_
#define TOOLS_QDX_STORE_INPUT_VALUE_TEXTS_H_

#include <qdxcore/datetime.h>
#include <qdxcore/reference.h>
#include <qdxcore/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace NVORNQDX20::NStore {

/// Returns the instant in microseconds since 1970-01-01T00:00:00Z, in whole seconds; none for null
/// and intervals.
std::optional<std::int64_t> InstantOf(const TCIMDateTime& dateTime);

/// The names of keys and the texts of their values.
using TKeyTexts = std::vector<std::pair<std::string, std::string>>;

/// Makes the texts of one namespace.
class TValueTexts {
 public:
  /// `machine` is the name of the host; empty if it is unknown.
  TValueTexts(std::string ownNamespace, std::string machine);

  /// Returns the text of a value, which is not null. The elements of a bag are sorted.
  std::string TextOf(const TCIMValue& value, bool isBag = false) const;
  /// Returns the name of an object with these keys.
  std::string NameOf(const std::string& className, TKeyTexts keys) const;
  /// Returns whether the key only repeats the name of the class or of the host.
  bool IsSilent(const std::string& className, const std::string& key,
                const std::string& text) const;

 private:
  std::string TextOfScalar(const TCIMValue& value, int depth) const;
  std::string TextOfReference(const TCIMReference& reference, int depth) const;

  const std::string fNamespace;
  const std::string fMachine;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_VALUE_TEXTS_H_
