// SPDX-License-Identifier: Apache-2.0
#include "facts_reader.h"

#include <qdxcompare/compare.h>
#include <qdxcore/status.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <numeric>
#include <string_view>
#include <tuple>
#include <utility>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <qdxsnapshot/record.h>

#include "class_facts.h"
#include "value_texts.h"

namespace NVORNQDX20::NStore {
namespace {

using TNamespaces = std::vector<boost::shared_ptr<ICIMNamespace>>;
using TClass = boost::shared_ptr<ICIMClass>;

/// Sorts the elements, and lets the indexes of them follow. Equal ones become one.
class TOrder {
 public:
  /// `less` compares two indexes.
  template <typename TLess>
  TOrder(std::size_t count, const TLess& less) : fOld(count), fNew(count) {
    std::iota(fOld.begin(), fOld.end(), std::uint32_t{0});
    std::sort(fOld.begin(), fOld.end(), less);
    for (std::uint32_t i = 0; i < count; ++i) fNew[fOld[i]] = i;
  }

  std::uint32_t NewOf(std::uint32_t old) const { return fNew[old]; }

  template <typename T>
  void Apply(std::vector<T>& elements) const {
    std::vector<T> ordered;
    ordered.reserve(elements.size());
    for (const std::uint32_t old : fOld) ordered.push_back(std::move(elements[old]));
    elements = std::move(ordered);
  }

 private:
  std::vector<std::uint32_t> fOld;
  std::vector<std::uint32_t> fNew;
};

void Sort(TDocumentFacts& facts) {
  const auto& objects = facts.fObjects;
  const TOrder order(objects.size(), [&objects](std::uint32_t a, std::uint32_t b) {
    return std::tie(objects[a].fClass, objects[a].fName) <
           std::tie(objects[b].fClass, objects[b].fName);
  });
  order.Apply(facts.fObjects);
  for (auto& fact : facts.fFacts) fact.fObject = order.NewOf(fact.fObject);
  std::sort(facts.fFacts.begin(), facts.fFacts.end(), [](const auto& a, const auto& b) {
    return std::tie(a.fObject, a.fProperty) < std::tie(b.fObject, b.fProperty);
  });
}

/// Finds what names the host among the facts of the machine's classes.
class TIdentityFinder {
 public:
  explicit TIdentityFinder(const TDocumentFacts& facts) : fFacts(facts) {}

  THostIdentity Find() const {
    THostIdentity host;
    for (const auto& fact : fFacts.fFacts) {
      const auto& property = fFacts.fProperties[fact.fProperty];
      std::string* const part =
          PartFor(fFacts.fClasses[property.fClass].fName, property.fName, host);
      if (part == nullptr || !part->empty()) continue;
      *part = boost::algorithm::trim_copy_if(fact.fValue, [](char c) { return c == ' '; });
    }
    host.fUUID = NModel::Folded(host.fUUID);
    host.fMachineID = NModel::Folded(host.fMachineID);
    return host;
  }

 private:
  static std::string* PartFor(std::string_view className, std::string_view property,
                              THostIdentity& host) {
    struct TPlace {
      std::string_view fClass;
      std::string_view fProperty;
      std::string THostIdentity::*fPart;
    };
    static constexpr TPlace kPlaces[] = {
        {"VORNSG_ComputerSystem", "UUID", &THostIdentity::fUUID},
        {"VORNSG_ComputerSystem", "SerialNumber", &THostIdentity::fSerialNumber},
        {"VORNSG_ComputerSystem", "Manufacturer", &THostIdentity::fMaker},
        {"VORNSG_ComputerSystem", "ProductName", &THostIdentity::fModel},
        {"VORNSG_ComputerSystem", "Name", &THostIdentity::fName},
        {"VORNSG_OperatingSystem", "MachineID", &THostIdentity::fMachineID}};
    for (const TPlace& place : kPlaces) {
      if (NModel::EqualIgnoringCase(place.fClass, className) &&
          NModel::EqualIgnoringCase(place.fProperty, property)) {
        return &(host.*place.fPart);
      }
    }
    return nullptr;
  }

  const TDocumentFacts& fFacts;
};

bool IsKnown(const THostIdentity& host) {
  return !host.fUUID.empty() || !host.fMachineID.empty() || !host.fSerialNumber.empty() ||
         !host.fName.empty();
}

void AddRecord(const ICIMNamespace& ns, TDocumentFacts& facts, TCIMDateTime& time,
               std::string& hostName) {
  TCollectionRecord record = ReadRecord(ns);
  time = record.fTime;
  hostName = record.fHostName;
  facts.fToolVersion = record.fToolVersion;
  facts.fPartsLeftOut = std::move(record.fPartsLeftOut);
  for (auto& failure : record.fFailures) {
    // A failure without a namespace took all that the provider has, which the document lacks.
    if (!failure.fNamespace.empty()) {
      facts.fUnknown.push_back({failure.fNamespace, "", "", std::nullopt, ""});
    }
    facts.fFailures.push_back({std::move(failure.fProvider), std::move(failure.fNamespace),
                               std::move(failure.fOperation), std::move(failure.fReason)});
  }
  for (const std::string& part : facts.fPartsLeftOut) {
    facts.fUnknown.push_back({"", "", part, std::nullopt, ""});
  }
}

std::string MachineNameOf(const TNamespaces& namespaces) {
  std::vector<TComparedNamespace> described;
  for (const auto& ns : namespaces) {
    if (!IsRecordNamespace(*ns)) described.push_back({ns, {}});
  }
  return FindMachineName(described);
}

void AddNamespace(const ICIMNamespace& ns, const std::string& machine, TFactsLimit& limit,
                  TDocumentFacts& facts) {
  facts.fNamespaces.push_back(ns.GetName({}));
  TNamespaceFacts reader(ns, machine, limit, facts);
  ns.EnumerateClasses(
      [&reader](const TClass& root) {
        for (const TClass& each : NModel::WithSubclasses(root)) reader.AddClass(each);
        return true;
      },
      {});
  reader.AddReasons();
}

[[noreturn]] void Refuse(const std::string& why) {
  throw TExplainedException(kQDXStatusInvalidDataCollectionDocument, why);
}

}  // namespace

TDocumentFacts ReadFacts(const TFactsSource& source) {
  TDocumentFacts facts;
  TCIMDateTime time;
  std::string recordedName;
  facts.fHasAllPermissions = true;
  facts.fWarnings = source.fWarnings;
  TFactsLimit limit(source.fMostFacts);
  const std::string machine = MachineNameOf(source.fNamespaces);
  for (const auto& ns : source.fNamespaces) {
    IsRecordNamespace(*ns) ? AddRecord(*ns, facts, time, recordedName)
                           : AddNamespace(*ns, machine, limit, facts);
  }
  Sort(facts);
  facts.fHost = TIdentityFinder(facts).Find();
  if (facts.fHost.fName.empty()) facts.fHost.fName = machine.empty() ? recordedName : machine;
  if (!IsKnown(facts.fHost)) Refuse("it names no host: no UUID, machine ID, serial number or name");
  const auto instant = InstantOf(time);
  if (!instant && !source.fTimeOfOthers) Refuse("it does not say when it was collected");
  facts.fTime = instant ? *instant : *source.fTimeOfOthers;
  facts.fIsComplete = facts.fFailures.empty() && facts.fWarnings.empty();
  if (!facts.fWarnings.empty()) facts.fUnknown.emplace_back();
  return facts;
}

}  // namespace NVORNQDX20::NStore
