// SPDX-License-Identifier: Apache-2.0
/// The classes of a provider, each of which is made when a caller first needs it.
///
///   std::vector<NDescribe::TCatalogueEntry<TMachine>> entries = {
///       {"Example_Fan", "", {"cooling"}, [] { return TClassOf<TMachine>(Fans()); }}};
#ifndef QDXDESCRIBE_CATALOGUE_H_
#define QDXDESCRIBE_CATALOGUE_H_

#include <qdxdescribe/table.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace NVORNQDX20::NDescribe {

/// What is known of a class before it is made.
struct TLineage {
  std::string fName;
  std::string fSuperclass;  ///< Empty for a root class.
};

/// Returns for each class whether option "classes" names it, or whether a named one needs it: as a
/// superclass, as a subclass, or as what it refers to, at any distance. Without the option all are
/// wanted. Asks for the declarations of no other class.
std::vector<bool> WantedClasses(
    const std::vector<TLineage>& classes, const TOptionsMap& options,
    const std::function<const TClassDeclaration&(std::size_t)>& declarationOf);

/// Throws a TExplainedException with kQDXStatusInvalidClass if the declaration has another name or
/// superclass.
void CheckLineage(const TLineage& lineage, const TClassDeclaration& declaration);

/// A class that is not made yet: to make all takes longer than to describe a few.
template <typename THost = TRequest>
struct TCatalogueEntry {
  const char* fName;
  const char* fSuperclass;  ///< Empty for a root class.
  TPart fPart;
  TClassOf<THost> (*fMake)();
};

template <typename THost>
class TCatalogue {
 public:
  TCatalogue(std::vector<TClassOf<THost>> classes) {
    fEntries.reserve(classes.size());
    for (TClassOf<THost>& each : classes) {
      TEntry& entry = fEntries.emplace_back();
      entry.fLineage = {each.fDeclaration.fName, each.fDeclaration.fSuperclass};
      entry.fPart = each.fDeclaration.fPart;
      entry.fMade = std::move(each);
    }
  }
  TCatalogue(const std::vector<TCatalogueEntry<THost>>& entries) {
    fEntries.reserve(entries.size());
    for (const TCatalogueEntry<THost>& each : entries) {
      fEntries.push_back({{each.fName, each.fSuperclass}, each.fPart, each.fMake, {}});
    }
  }

  /// Makes all classes. Throws a TExplainedException with kQDXStatusInvalidClass if one is not what
  /// its entry says, and what CheckDeclarations throws.
  void Check() {
    std::vector<const TClassDeclaration*> declarations;
    declarations.reserve(fEntries.size());
    for (TEntry& each : fEntries) {
      declarations.push_back(&Made(each).fDeclaration);
      CheckLineage(each.fLineage, *declarations.back());
    }
    CheckDeclarations(declarations);
  }

  /// Returns the classes that the option "classes" selects, in their order. They are valid as long
  /// as this object.
  std::vector<const TClassOf<THost>*> Wanted(const TOptionsMap& options) {
    std::vector<TLineage> lineages;
    lineages.reserve(fEntries.size());
    for (const TEntry& each : fEntries) lineages.push_back(each.fLineage);
    const std::vector<bool> isWanted =
        WantedClasses(lineages, options, [this](std::size_t number) -> const TClassDeclaration& {
          return Made(fEntries[number]).fDeclaration;
        });
    std::vector<const TClassOf<THost>*> wanted;
    wanted.reserve(fEntries.size());
    for (std::size_t i = 0; i < fEntries.size(); ++i) {
      if (isWanted[i]) wanted.push_back(&Made(fEntries[i]));
    }
    return wanted;
  }

  /// Returns the parts that have a name, in the order of the classes.
  std::vector<TPart> Parts() const {
    std::vector<TPart> parts;
    std::set<std::string> known = {""};
    for (const TEntry& each : fEntries) {
      if (known.insert(each.fPart.fName).second) parts.push_back(each.fPart);
    }
    return parts;
  }

 private:
  struct TEntry {
    TLineage fLineage;
    TPart fPart;
    TClassOf<THost> (*fMake)() = nullptr;
    std::optional<TClassOf<THost>> fMade;
  };

  static const TClassOf<THost>& Made(TEntry& entry) {
    if (!entry.fMade) entry.fMade = entry.fMake().InPart(entry.fPart);
    return *entry.fMade;
  }

  std::vector<TEntry> fEntries;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_CATALOGUE_H_
