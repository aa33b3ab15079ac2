// SPDX-License-Identifier: Apache-2.0
/// What a document could see of its host.
#ifndef TOOLS_QDX_STORE_STORAGE_SIGHT_H_
#define TOOLS_QDX_STORE_STORAGE_SIGHT_H_

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

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
  /// What ToText() returned. Throws kQDXStatusCorruptedContainer for another text.
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
  void Add(const TUnknown& unknown);

  std::set<std::string> fNamespaces;
  /// By class; those of every class under the empty name.
  std::map<std::string, std::vector<TUnknown>> fUnknown;
  /// Those that name everything, which may be many: namespace, class, object, property.
  std::set<std::vector<std::string>> fUnknownKeys;
  std::set<TKey> fShown[2];
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_SIGHT_H_
