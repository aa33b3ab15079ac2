// SPDX-License-Identifier: Apache-2.0
/// What a document could see of its host.
#ifndef TOOLS_QDX_STORE_STORAGE_SIGHT_H_
#define TOOLS_QDX_STORE_STORAGE_SIGHT_H_

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "input/document_facts.h"
#include "timeline.h"

namespace NVORNQDX20::NStore {

/// The names of a key.
struct TKeyNames {
  std::string fNamespace;
  std::string fClass;
  std::string fParts;                  ///< Of the provider, with blanks between them.
  std::optional<std::string> fObject;  ///< None for all objects of the class.
  std::string fProperty;
};

/// Kept in the store for each document: a document that is added later, between two others, ends
/// what it does not show where the next one that could have seen it shows it again.
class TSight {
 public:
  enum EKind {
    kFacts,
    kMissing  ///< Reasons of missing values. One that a document lacks is known to be gone, unless
              ///< the document lacks the whole part or namespace.
  };

  explicit TSight(const TDocumentFacts& facts);
  /// What ToText() returned. Throws a TDatabaseError for another text.
  explicit TSight(const std::string& text);

  /// Returns whether the document could have seen the key. It may show it even if not.
  bool Covers(EKind kind, const TKeyNames& names) const;

  /// The document shows this key although it is not covered.
  void AddShown(EKind kind, const TKey& key) { fShown[kind].insert(key); }
  /// Returns whether the document knows if the key has a value, and which.
  bool Knows(EKind kind, const TKey& key, const TKeyNames& names) const;

  /// Equal for documents that saw the same.
  std::string ToText() const;

 private:
  /// Namespace, class, part, object and property.
  using TNamesOfScope = std::array<std::string, 5>;
  /// Which of them a scope names: bit i is for element i.
  using TShape = unsigned;

  void Add(const TUnknown& unknown);
  bool Has(TShape shape, const TKeyNames& names) const;

  std::set<std::string> fNamespaces;
  std::set<
      std::tuple<std::string, std::string, std::string, std::optional<std::string>, std::string>>
      fUnknown;
  /// The same for look-ups: a document may have many. What a scope does not name is empty.
  std::map<TShape, std::set<TNamesOfScope>> fScopes;
  /// Those that name a part, without it.
  std::map<TShape, std::set<TNamesOfScope>> fScopesOfAnyPart;
  std::set<TKey> fShown[2];
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_SIGHT_H_
