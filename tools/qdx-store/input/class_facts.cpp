// SPDX-License-Identifier: Apache-2.0
#include "class_facts.h"

#include <qdxcore/status.h>
#include <qdxdescribe/declaration.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <string_view>
#include <utility>

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20::NStore {
namespace {

using NDescribe::TReason;
using NModel::Folded;

bool DeclaresArrayTypes(const ICIMNamespace& ns) {
  bool declares = false;
  (void)TryUnlessOutOfMemory([&] { declares = ns.GetQualifierDecl("ArrayType", {}) != nullptr; });
  return declares;
}

/// Returns a name for a text that is the same in each process, unlike std::hash.
std::string HashNameOf(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  std::array<char, 24> digits{};
  std::snprintf(digits.data(), digits.size(), "#%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

bool IsOfPart(const TReason& reason) {
  return boost::algorithm::starts_with(reason, "part ") &&
         boost::algorithm::ends_with(reason, " is left out");
}

bool IsRefusal(const TReason& reason) {
  return reason.IsError() && (boost::algorithm::contains(reason, "Permission denied") ||
                              boost::algorithm::contains(reason, "Operation not permitted"));
}

}  // namespace

void TFactsLimit::Count() {
  if (++fCount <= fMost) return;
  throw TExplainedException(kQDXStatusInvalidDataCollectionDocument,
                            "it has more than " + std::to_string(fMost) + " facts");
}

struct TNamespaceFacts::TReader {
  struct TColumn {
    std::size_t fPosition;  // in the reader
    bool fIsBag;
    std::uint32_t fProperty = kNone;  // in the facts, once it is known to have values
  };
  static constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

  /// A value that is read, or an empty key.
  struct TValue {
    std::size_t fColumn;
    std::string fText;
  };

  TReader(const ICIMNamespace& ns, const boost::shared_ptr<ICIMClass>& cimClass, bool hasArrayTypes,
          TClass& its)
      : fClass(cimClass), fReader(*cimClass), fIts(its) {
    std::vector<TClassSnapshot> classes;
    TSnapshotReader(ns, kValues, classes).ReadInstances(cimClass, {});
    fDeclared = std::move(classes.front());
    for (const TPropertySnapshot& each : fDeclared.fProperties) {
      fColumns.push_back(
          {fReader.PositionOf(each.fName), hasArrayTypes && each.fArrayType == EArrayType::kBag});
      fHasKeys = fHasKeys || each.fIsKey;
    }
  }

  const boost::shared_ptr<ICIMClass> fClass;
  NModel::TPropertyReader fReader;
  TClass& fIts;
  TClassSnapshot fDeclared;
  std::vector<TColumn> fColumns;  // by the properties of fDeclared
  bool fHasKeys = false;
  std::set<std::string> fNames;
};

TNamespaceFacts::TNamespaceFacts(const ICIMNamespace& ns, const std::string& machine,
                                 TFactsLimit& limit, TDocumentFacts& facts)
    : fNamespace(ns),
      fName(ns.GetName({})),
      fHasArrayTypes(DeclaresArrayTypes(ns)),
      fReasons(NDescribe::ReadMissingReasons(ns)),
      fTexts(fName, machine),
      fLimit(limit),
      fFacts(facts) {
  for (const auto& [place, reason] : fReasons) fExplained.insert(Folded(std::get<0>(place)));
}

TNamespaceFacts::TClass& TNamespaceFacts::ClassNamed(const std::string& name) {
  const auto found = fClasses.find(name);
  if (found != fClasses.end()) return found->second;
  fLimit.Count();
  fFacts.fClasses.push_back({fName, name});
  const auto index = static_cast<std::uint32_t>(fFacts.fClasses.size() - 1);
  return fClasses.emplace(name, TClass{index}).first->second;
}

const std::string& TNamespaceFacts::PartOf(const std::string& className) {
  const auto [known, isNew] = fParts.try_emplace(className);
  if (isNew) {
    (void)TryUnlessOutOfMemory([&, &part = known->second] {
      const auto cimClass = fNamespace.GetClass(className, {});
      const auto qualifier = cimClass->GetQualifier(NDescribe::kPartQualifier);
      const std::string* const name = qualifier ? qualifier->GetValue().FindString() : nullptr;
      if (name != nullptr) part = *name;
    });
  }
  return known->second;
}

void TNamespaceFacts::AddClass(const boost::shared_ptr<ICIMClass>& cimClass) {
  if (NModel::EqualIgnoringCase(cimClass->GetName({}), NDescribe::kMissingValueClass)) return;
  std::optional<TReader> reader;
  NModel::ForEachInstance(*cimClass, [&](const ICIMInstance& instance) {
    // Most classes of a document have no instances, and what a reader needs is not quickly read.
    if (!reader) {
      reader.emplace(fNamespace, cimClass, fHasArrayTypes, ClassNamed(cimClass->GetName({})));
    }
    AddInstance(instance, *reader);
  });
}

std::uint32_t TNamespaceFacts::AddObject(TReader& reader, const std::string& name,
                                         std::set<std::string> parts) {
  fLimit.Count();
  std::string unique = name;
  // What is one object on other hosts can be several here.
  for (int number = 2; !reader.fNames.insert(unique).second; ++number) {
    unique = name + " (" + std::to_string(number) + ")";
  }
  parts.insert(reader.fDeclared.fPart);
  parts.erase("");
  fFacts.fObjects.push_back({reader.fIts.fIndex, unique, boost::algorithm::join(parts, " ")});
  ++reader.fIts.fInstances;
  return static_cast<std::uint32_t>(fFacts.fObjects.size() - 1);
}

void TNamespaceFacts::AddInstance(const ICIMInstance& instance, TReader& reader) {
  reader.fReader.Begin(instance);
  const std::string& className = reader.fDeclared.fName;
  std::vector<TReader::TValue> values;
  TKeyTexts keys;
  std::set<std::string> parts;
  std::string all;  // by which an instance without keys is known
  for (std::size_t i = 0; i < reader.fColumns.size(); ++i) {
    const TPropertySnapshot& property = reader.fDeclared.fProperties[i];
    reader.fReader.Read(reader.fColumns[i].fPosition, [&](const TCIMValue& value) {
      std::string text = value.IsNull() ? "" : fTexts.TextOf(value, reader.fColumns[i].fIsBag);
      if (property.fIsKey) {
        if (const auto* const reference = value.FindReference()) {
          parts.insert(PartOf(reference->GetClassName()));
        }
        keys.emplace_back(property.fName, text);
        // An empty key means that the value is missing.
        if (text.empty() || (fTexts.IsSilent(className, property.fName, text) &&
                             !NModel::EqualIgnoringCase(property.fName, "Name"))) {
          return;
        }
      } else if (value.IsNull()) {
        return;
      }
      if (!property.fIsVolatile) all.append(property.fName).append("=").append(text) += '\n';
      values.push_back({i, std::move(text)});
    });
  }
  const std::string name = reader.fHasKeys ? fTexts.NameOf(className, keys) : HashNameOf(all);
  const std::uint32_t object = AddObject(reader, name, std::move(parts));
  if (fExplained.count(Folded(className)) != 0) {
    const std::string& unique = fFacts.fObjects[object].fName;
    reader.fIts.fObjects.push_back(unique);
    for (const auto& [key, text] : keys) {
      if (!text.empty()) reader.fIts.fByKey.emplace(text, unique);
    }
  }
  for (auto& [column, text] : values) {
    fLimit.Count();
    std::uint32_t& property = reader.fColumns[column].fProperty;
    if (property == TReader::kNone) {
      const TPropertySnapshot& declared = reader.fDeclared.fProperties[column];
      property = static_cast<std::uint32_t>(fFacts.fProperties.size());
      fFacts.fProperties.push_back({reader.fIts.fIndex, declared.fName, declared.fType,
                                    declared.fSecret, declared.fIsVolatile, declared.fIsKey});
    }
    fFacts.fFacts.push_back({property, object, std::move(text)});
  }
}

void TNamespaceFacts::AddReason(TClass& its, const std::string& className, const std::string& key,
                                const std::string& property, const TReason& reason) {
  const auto add = [&](std::optional<std::string> object) {
    fLimit.Count();
    // A class that lacks instances can lack any, whatever the reason, if it has some.
    const bool isLoss = property.empty() && its.fInstances != 0;
    if (reason.IsError() || isLoss || IsOfPart(reason)) {
      fFacts.fUnknown.push_back({fName, className, "", object, property});
    }
    fFacts.fMissing.push_back({its.fIndex, std::move(object), property, reason, reason.IsError()});
  };
  if (property.empty()) return add(std::nullopt);
  if (key.empty()) {
    return its.fInstances == 1 ? add(its.fObjects.front()) : add(std::nullopt);
  }
  const auto [begin, end] = its.fByKey.equal_range(key);
  if (begin == end) return add(key);
  std::set<std::string> objects;
  std::transform(begin, end, std::inserter(objects, objects.end()),
                 [](const auto& each) { return each.second; });
  for (const std::string& object : objects) add(object);
}

void TNamespaceFacts::AddReasons() {
  for (const auto& [place, reason] : fReasons) {
    const auto& [className, key, property] = place;
    TClass& its = ClassNamed(className);
    AddReason(its, fFacts.fClasses[its.fIndex].fName, key, property, reason);
    if (IsRefusal(reason)) fFacts.fHasAllPermissions = false;
  }
}

}  // namespace NVORNQDX20::NStore
