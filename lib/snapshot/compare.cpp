// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/compare.h>

#include <qdxsnapshot/missing.h>

#include <algorithm>
#include <set>
#include <utility>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

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

/// A class on one side.
struct TSide {
  const TClassSnapshot& fClass;
  const NDescribe::TMissingReasons& fReasons;
};

/// Returns the text that all instances have as the value of the property; null if they differ.
const std::string* CommonText(const TClassSnapshot& cimClass, std::size_t property) {
  const std::string* common = nullptr;
  for (const TInstanceSnapshot& instance : cimClass.fInstances) {
    const TJSON& value = instance.fValues[property];
    if (!value.is_string()) return nullptr;
    const auto& text = value.get_ref<const std::string&>();
    if (common != nullptr && text != *common) return nullptr;
    common = &text;
  }
  return common;
}

/// Keys that one side does not know, by an error: then all its instances, of all classes, have an
/// empty text for it. Without them, both sides have the same object paths.
class TUnknownKeys {
 public:
  /// Adds those of a class that `unknown` lacks and that `known` has.
  void Add(const TSide& unknown, const TSide& known) {
    for (std::size_t i = 0; i < unknown.fClass.fProperties.size(); ++i) {
      const TPropertySnapshot& property = unknown.fClass.fProperties[i];
      const auto& others = known.fClass.fProperties;
      if (!property.fIsKey || i >= others.size() || others[i].fName != property.fName) continue;
      const std::string* const empty = CommonText(unknown.fClass, i);
      const std::string* const text = CommonText(known.fClass, i);
      if (empty == nullptr || !empty->empty() || text == nullptr || text->empty()) continue;
      fKeys.insert({property.fName, *text});
      const auto* const reason =
          TInstanceReasons(unknown.fReasons, unknown.fClass, unknown.fClass.fInstances[0]).Find(i);
      if (reason != nullptr && reason->IsError()) fTexts.insert(*text);
    }
  }

  /// Returns the object path, which can contain others, without the unknown values.
  std::string Without(std::string path) const {
    for (const auto& [name, text] : fKeys) {
      if (fTexts.count(text) == 0) continue;
      boost::algorithm::replace_all(path, name + "=\"" + text + '"', name + "=\"\"");
    }
    return path;
  }

 private:
  std::set<std::pair<std::string, std::string>> fKeys;  // with the values of the other side
  std::set<std::string> fTexts;                         // those values that an error hides
};

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

  /// Adds a difference if only one side has the element. `loss` says why the other may lack it.
  template <typename T>
  void AddIfMissing(TDifference::EElement element, const std::string& owner, const T* a, const T* b,
                    const NDescribe::TReason* loss = nullptr) {
    if (a != nullptr && b != nullptr) return;
    const auto change = loss != nullptr ? TDifference::kUnknown
                        : a != nullptr  ? TDifference::kRemoved
                                        : TDifference::kAdded;
    fDifferences.push_back({element, change, fNamespace, owner, "", nullptr, nullptr,
                            loss != nullptr ? std::string(*loss) : ""});
  }

  bool IsCompared(const TPropertySnapshot& property) const { return fAll || !property.fIsVolatile; }

  void CompareClasses(const std::string& name, const TClassSnapshot* a, const TClassSnapshot* b);
  void CompareDeclarations(const TClassSnapshot& a, const TClassSnapshot& b);
  std::vector<TIdentified> Identify(const TClassSnapshot& cimClass) const;
  std::vector<TColumn> ColumnsOf(const TClassSnapshot& a, const TClassSnapshot& b) const;
  void CompareValues(const TIdentified& a, const TIdentified& b, const TSide& sideA,
                     const TSide& sideB, const std::vector<TColumn>& columns);
  bool AreEqual(const TJSON& a, const TJSON& b, const TPropertySnapshot& property) const;

  const bool fAll;
  std::string fNamespace;  // the current one
  const NDescribe::TMissingReasons* fReasonsOfA = nullptr;
  const NDescribe::TMissingReasons* fReasonsOfB = nullptr;
  TUnknownKeys fUnknownKeys;  // of the current namespace
  std::vector<TDifference> fDifferences;
};

void TComparison::CompareNamespaces(const std::string& name, const TNamespaceSnapshot* a,
                                    const TNamespaceSnapshot* b) {
  static const TNamespaceSnapshot none;
  fNamespace = name;
  AddIfMissing(TDifference::kNamespace, "", a, b);
  const TNamespaceSnapshot& before = a != nullptr ? *a : none;
  const TNamespaceSnapshot& after = b != nullptr ? *b : none;
  fReasonsOfA = &before.fReasons;
  fReasonsOfB = &after.fReasons;
  fUnknownKeys = {};
  Merge(before.fClasses, after.fClasses, kByName,
        [this](const auto&, const TClassSnapshot* inA, const TClassSnapshot* inB) {
          if (inA == nullptr || inB == nullptr) return;
          fUnknownKeys.Add({*inA, *fReasonsOfA}, {*inB, *fReasonsOfB});
          fUnknownKeys.Add({*inB, *fReasonsOfB}, {*inA, *fReasonsOfA});
        });
  Merge(before.fClasses, after.fClasses, kByName,
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
  const auto* const lossOfA = FindLoss(before, *fReasonsOfA);
  const auto* const lossOfB = FindLoss(after, *fReasonsOfB);
  Merge(
      Identify(before), Identify(after),
      [](const TIdentified& one) -> const std::string& { return one.first; },
      [&](const std::string& identity, const TIdentified* inA, const TIdentified* inB) {
        AddIfMissing(TDifference::kInstance, identity, inA, inB,
                     inA != nullptr ? lossOfB : lossOfA);
        if (inA == nullptr || inB == nullptr) return;
        CompareValues(*inA, *inB, {before, *fReasonsOfA}, {after, *fReasonsOfB}, columns);
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
    std::string identity = fUnknownKeys.Without(instance.fPath);
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

/// Adds the differences of values; one that a side lacks by an error is unknown.
void TComparison::CompareValues(const TIdentified& a, const TIdentified& b, const TSide& sideA,
                                const TSide& sideB, const std::vector<TColumn>& columns) {
  for (const TColumn& column : columns) {
    const TJSON& before = a.second->fValues[column.fInA];
    const TJSON& after = b.second->fValues[column.fInB];
    const TPropertySnapshot& property = sideA.fClass.fProperties[column.fInA];
    if (AreEqual(before, after, property)) continue;
    const auto* reason =
        TInstanceReasons(sideA.fReasons, sideA.fClass, *a.second).Find(column.fInA);
    if (reason == nullptr) {
      reason = TInstanceReasons(sideB.fReasons, sideB.fClass, *b.second).Find(column.fInB);
    }
    const bool isUnknown = reason != nullptr && reason->IsError();
    // Another class explains why the name of the machine is missing.
    if (property.fIsKey && !isUnknown) continue;
    fDifferences.push_back(
        {TDifference::kValue, isUnknown ? TDifference::kUnknown : TDifference::kChanged, fNamespace,
         a.first, *column.fName, before, after, isUnknown ? std::string(*reason) : ""});
  }
}

bool TComparison::AreEqual(const TJSON& a, const TJSON& b,
                           const TPropertySnapshot& property) const {
  if (a == b) return true;
  const bool refers = boost::algorithm::starts_with(property.fType, "reference");
  return refers && a.is_string() && b.is_string() &&
         fUnknownKeys.Without(a.get<std::string>()) == fUnknownKeys.Without(b.get<std::string>());
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
