// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/compare.h>

#include <algorithm>
#include <utility>

namespace NVORNQDX20 {
namespace {

/// Visits two sorted sequences side by side: each key with the elements that have it, null where a
/// sequence does not have the key.
template <typename T, typename TKey, typename TVisit>
void Merge(const std::vector<T>& a, const std::vector<T>& b, TKey key, TVisit visit) {
  auto inA = a.begin();
  auto inB = b.begin();
  while (inA != a.end() || inB != b.end()) {
    const bool takesA = inB == b.end() || (inA != a.end() && !(key(*inB) < key(*inA)));
    const bool takesB = inA == a.end() || (inB != b.end() && !(key(*inA) < key(*inB)));
    visit(key(takesA ? *inA : *inB), takesA ? &*inA : nullptr, takesB ? &*inB : nullptr);
    inA += takesA ? 1 : 0;
    inB += takesB ? 1 : 0;
  }
}

std::string Dump(const TJSON& value) {
  return value.dump(-1, ' ', false, TJSON::error_handler_t::replace);
}

const auto kByName = [](const auto& element) -> const std::string& { return element.fName; };

/// Returns "TYPE", "TYPE key" or "TYPE = DEFAULT"; null for a null property.
TJSON DeclarationText(const TPropertySnapshot* property) {
  if (property == nullptr) return nullptr;
  std::string text = property->fType + (property->fIsKey ? " key" : "");
  if (!property->fDefault.is_null()) text += " = " + Dump(property->fDefault);
  return text;
}

/// An instance with the text that identifies it in its class.
using TIdentified = std::pair<std::string, const TInstanceSnapshot*>;

class TComparison {
 public:
  explicit TComparison(bool all) : fAll(all) {}

  // One of `a` and `b` may be null.
  void CompareNamespaces(const std::string& name, const TNamespaceSnapshot* a,
                         const TNamespaceSnapshot* b);

  std::vector<TDifference>& GetDifferences() { return fDifferences; }

 private:
  /// The positions of a property on both sides.
  struct TColumn {
    const std::string* fName;
    std::size_t fInA;
    std::size_t fInB;
  };

  /// Adds a difference if only one side has the element.
  template <typename T>
  void AddIfMissing(TDifference::EElement element, const std::string& owner, const T* a,
                    const T* b) {
    if (a != nullptr && b != nullptr) return;
    const auto change = a != nullptr ? TDifference::kRemoved : TDifference::kAdded;
    fDifferences.push_back({element, change, fNamespace, owner, "", nullptr, nullptr});
  }

  bool IsCompared(const TPropertySnapshot& property) const { return fAll || !property.fIsVolatile; }

  void CompareClasses(const std::string& name, const TClassSnapshot* a, const TClassSnapshot* b);
  void CompareDeclarations(const TClassSnapshot& a, const TClassSnapshot& b);
  std::vector<TIdentified> Identify(const TClassSnapshot& cimClass) const;
  std::vector<TColumn> ColumnsOf(const TClassSnapshot& a, const TClassSnapshot& b) const;
  void CompareValues(const TIdentified& a, const TIdentified& b,
                     const std::vector<TColumn>& columns);

  const bool fAll;
  std::string fNamespace;  // the current one
  std::vector<TDifference> fDifferences;
};

void TComparison::CompareNamespaces(const std::string& name, const TNamespaceSnapshot* a,
                                    const TNamespaceSnapshot* b) {
  static const std::vector<TClassSnapshot> none;
  fNamespace = name;
  AddIfMissing(TDifference::kNamespace, "", a, b);
  Merge(a != nullptr ? a->fClasses : none, b != nullptr ? b->fClasses : none, kByName,
        [this](const auto& className, const auto* inA, const auto* inB) {
          CompareClasses(className, inA, inB);
        });
}

void TComparison::CompareClasses(const std::string& name, const TClassSnapshot* a,
                                 const TClassSnapshot* b) {
  static const TClassSnapshot none;
  AddIfMissing(TDifference::kClass, name, a, b);
  const TClassSnapshot& before = a != nullptr ? *a : none;
  const TClassSnapshot& after = b != nullptr ? *b : none;
  if (a != nullptr && b != nullptr) CompareDeclarations(before, after);
  const std::vector<TColumn> columns = ColumnsOf(before, after);
  Merge(
      Identify(before), Identify(after),
      [](const TIdentified& one) -> const std::string& { return one.first; },
      [&](const std::string& identity, const TIdentified* inA, const TIdentified* inB) {
        AddIfMissing(TDifference::kInstance, identity, inA, inB);
        if (inA != nullptr && inB != nullptr) CompareValues(*inA, *inB, columns);
      });
}

void TComparison::CompareDeclarations(const TClassSnapshot& a, const TClassSnapshot& b) {
  if (a.fSuperclass != b.fSuperclass) {
    const auto name = [](const std::string& text) { return text.empty() ? TJSON() : TJSON(text); };
    fDifferences.push_back({TDifference::kSuperclass, TDifference::kChanged, fNamespace, a.fName,
                            "", name(a.fSuperclass), name(b.fSuperclass)});
  }
  Merge(a.fProperties, b.fProperties, kByName,
        [&](const auto& name, const auto* inA, const auto* inB) {
          const TJSON before = DeclarationText(inA);
          const TJSON after = DeclarationText(inB);
          if (before == after) return;
          const auto change = inA == nullptr   ? TDifference::kAdded
                              : inB == nullptr ? TDifference::kRemoved
                                               : TDifference::kChanged;
          fDifferences.push_back(
              {TDifference::kDeclaration, change, fNamespace, a.fName, name, before, after});
        });
}

/// In ascending order.
std::vector<TIdentified> TComparison::Identify(const TClassSnapshot& cimClass) const {
  const auto& properties = cimClass.fProperties;
  const bool hasKeys = std::any_of(properties.begin(), properties.end(),
                                   [](const TPropertySnapshot& one) { return one.fIsKey; });
  std::vector<TIdentified> identified;
  for (const TInstanceSnapshot& instance : cimClass.fInstances) {
    std::string identity = instance.fPath;
    for (std::size_t i = 0; i < properties.size() && !hasKeys; ++i) {
      if (!IsCompared(properties[i])) continue;
      identity += " " + properties[i].fName + "=" + Dump(instance.fValues[i]);
    }
    identified.emplace_back(identity, &instance);
  }
  std::stable_sort(identified.begin(), identified.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  return identified;
}

/// Returns the properties that both sides have and that are compared.
std::vector<TComparison::TColumn> TComparison::ColumnsOf(const TClassSnapshot& a,
                                                         const TClassSnapshot& b) const {
  std::vector<TColumn> columns;
  Merge(a.fProperties, b.fProperties, kByName, [&](const auto&, const auto* inA, const auto* inB) {
    if (inA == nullptr || inB == nullptr || !IsCompared(*inA) || !IsCompared(*inB)) return;
    columns.push_back({&inA->fName, static_cast<std::size_t>(inA - a.fProperties.data()),
                       static_cast<std::size_t>(inB - b.fProperties.data())});
  });
  return columns;
}

void TComparison::CompareValues(const TIdentified& a, const TIdentified& b,
                                const std::vector<TColumn>& columns) {
  for (const TColumn& column : columns) {
    const TJSON& before = a.second->fValues[column.fInA];
    const TJSON& after = b.second->fValues[column.fInB];
    if (before == after) continue;
    fDifferences.push_back({TDifference::kValue, TDifference::kChanged, fNamespace, a.first,
                            *column.fName, before, after});
  }
}

}  // namespace

std::vector<TDifference> Compare(std::vector<TNamespaceSnapshot> a,
                                 std::vector<TNamespaceSnapshot> b, bool all) {
  const auto less = [](const auto& one, const auto& other) { return one.fName < other.fName; };
  std::sort(a.begin(), a.end(), less);
  std::sort(b.begin(), b.end(), less);
  TComparison comparison(all);
  Merge(a, b, kByName, [&comparison](const auto& name, const auto* inA, const auto* inB) {
    comparison.CompareNamespaces(name, inA, inB);
  });
  return std::move(comparison.GetDifferences());
}

}  // namespace NVORNQDX20
