// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/record.h>

#include <qdxdescribe/missing_values.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <set>

namespace NVORNQDX20 {
namespace {

/// Returns null for a property that the class lacks.
TCIMValue ValueOf(const ICIMInstance& instance, const char* property) {
  TCIMValue value;
  (void)TryUnlessOutOfMemory([&] { value = instance.GetProperty(property, {})->GetValue(); });
  return value;
}

/// Returns an empty text for null, and for what is no text.
std::string TextIn(const TCIMValue& value) {
  const std::string* const text = value.FindString();
  return text == nullptr ? "" : *text;
}

std::vector<std::string> TextsIn(const TCIMValue& value) {
  std::vector<std::string> texts;
  if (value.IsNull() || !value.IsArray()) return texts;
  const std::vector<TCIMValue>& elements = value;
  for (const TCIMValue& element : elements) {
    if (const std::string* const text = element.FindString()) texts.push_back(*text);
  }
  return texts;
}

TCIMDateTime TimeOf(const TCIMValue& value) {
  if (value.IsNull() || value.GetType() != TCIMValue::TCIMType::kCIMTypeDateTime) return {};
  return value;
}

template <typename TVisit>
void ForEachInstance(const ICIMNamespace& ns, const char* className, const TVisit& visit) {
  (void)TryUnlessOutOfMemory([&] { NModel::ForEachInstance(*ns.GetClass(className, {}), visit); });
}

}  // namespace

bool IsRecordNamespace(const ICIMNamespace& ns) {
  return NModel::EqualIgnoringCase(ns.GetName({}), kRecordNamespaceName);
}

TCollectionRecord ReadRecord(const ICIMNamespace& ns) {
  TCollectionRecord record;
  ForEachInstance(ns, kRecordClass, [&record](const ICIMInstance& instance) {
    record.fHostName = TextIn(ValueOf(instance, "HostName"));
    record.fTime = TimeOf(ValueOf(instance, kCollectionTime));
    record.fToolVersion = TextIn(ValueOf(instance, "ToolVersion"));
    for (std::string& part : TextsIn(ValueOf(instance, kPartsLeftOut))) {
      record.fPartsLeftOut.push_back(std::move(part));
    }
  });
  ForEachInstance(ns, kFailureClass, [&record](const ICIMInstance& instance) {
    record.fFailures.push_back(
        {TextIn(ValueOf(instance, "Provider")), TextIn(ValueOf(instance, "Namespace")),
         TextIn(ValueOf(instance, "Operation")), TextIn(ValueOf(instance, "Reason"))});
  });
  return record;
}

TCollectionRecord FindRecord(const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces) {
  for (const auto& ns : namespaces) {
    if (IsRecordNamespace(*ns)) return ReadRecord(*ns);
  }
  return {};
}

std::vector<std::string> FindPartsExcluded(
    const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces) {
  std::vector<std::string> parts = FindRecord(namespaces).fPartsLeftOut;
  if (parts.empty()) return parts;
  std::set<std::string> reasons;
  for (const auto& ns : namespaces) {
    for (const auto& [place, reason] : NDescribe::ReadMissingReasons(*ns)) reasons.insert(reason);
  }
  const auto isUntilAskedFor = [&reasons](const std::string& part) {
    return reasons.count(NDescribe::ReasonUntilAskedFor(part)) != 0;
  };
  parts.erase(std::remove_if(parts.begin(), parts.end(), isUntilAskedFor), parts.end());
  return parts;
}

}  // namespace NVORNQDX20
