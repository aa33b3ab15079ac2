// SPDX-License-Identifier: Apache-2.0
/// Canonical texts of values: equal for values that count as equal in a comparison.
#ifndef LIB_COMPARE_CANONICAL_H_
#define LIB_COMPARE_CANONICAL_H_

#include <qdxcore/reference.h>
#include <qdxcore/value.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qdxcompare/compare.h>

namespace NVORNQDX20 {

/// What decides which values of a property are equal.
struct TPropertyKind {
  bool fIsBag = false;       ///< An array whose order means nothing.
  bool fIsEmbedded = false;  ///< A text that contains an object.
};

/// The key of an instance: the lower-case name of the property and the canonical text.
using TCanonicalKeys = std::vector<std::pair<std::string, std::string>>;

/// Writes the canonical texts of one side. Refers to what it is made from.
class TCanonical {
 public:
  /// `machine` is the machine's name, which is a placeholder in every text; empty for none.
  TCanonical(const std::string& ownNamespace, const std::string& machine, const TLeftOut& leftOut);

  /// Lets a key with this text count as empty: the other side does not know it.
  void HideInKeys(const std::string& text) { fHidden.push_back(text); }
  bool HidesAny() const { return !fHidden.empty(); }
  bool HasMachine() const { return !fMachines.empty(); }
  /// Returns a copy in whose texts the name of the other side's machine is a placeholder as well.
  /// MayBeEqual() compares such texts.
  TCanonical WithOtherMachine(const std::string& machine) const;

  std::string TextOf(const TCIMValue& value, const TPropertyKind& kind) const;
  std::string TextOfKey(const TCIMValue& value) const;
  std::string TextOfPath(const TCIMReference& path) const;
  /// Returns the text of a path to an instance of this namespace. Sorts the keys.
  std::string IdentityOf(const std::string& className, TCanonicalKeys& keys) const;
  /// Returns whether the value is a reference to a class that is not compared.
  bool LeadsToLeftOut(const TCIMValue& value) const;

 private:
  static std::string TextOfInstance(const std::string& className, TCanonicalKeys& keys);
  void AppendScalar(const TCIMValue& value, const TPropertyKind& kind, std::string& text) const;
  void AppendArray(const TCIMValue& value, const TPropertyKind& kind, std::string& text) const;
  std::string WithoutMachine(std::string text) const;

  std::string fNamespace;              // in lower case
  std::vector<std::string> fMachines;  // names of the machine, the longest first
  std::vector<std::string> fOthers;    // and of the other side's
  std::vector<std::string> fHidden;
  const TLeftOut& fLeftOut;
};

/// Returns whether the values are the same in any case, so that no canonical text is needed.
bool AreIdentical(const TCIMValue& a, const TCIMValue& b);

/// Returns a text by which those that MayBeEqual() finds equal can be sorted.
std::string WithoutPlaceholders(std::string text);
/// Returns whether texts with both names are equal where each name either is the same on both
/// sides, or that of its own machine on both.
bool MayBeEqual(const std::string& a, const std::string& b);

}  // namespace NVORNQDX20

#endif  // LIB_COMPARE_CANONICAL_H_
