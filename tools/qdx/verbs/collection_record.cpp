// SPDX-License-Identifier: Apache-2.0
#include "collection_record.h"

#include <qdxcore/config.h>
#include <qdxcore/os_specific.h>
#include <qdxrepository/repository.h>

namespace NVORNQDX20 {

const char* const kRecordNamespaceName = "root/qdx";

namespace {

using TType = TCIMValue::TCIMType;

struct TPropertySpec {
  const char* fName;
  TType::ECIMType fType;
  bool fIsKey = false;
};

boost::shared_ptr<ICIMClass> AddClass(ICIMNamespace& ns, const char* name,
                                      const std::vector<TPropertySpec>& properties) {
  auto added = ns.CreateClass(name, nullptr, {});
  const auto key = ns.GetQualifierDecl("Key", {});
  for (const TPropertySpec& spec : properties) {
    const auto property =
        added->CreatePropertyDecl(spec.fName, TCIMValue(TType(spec.fType), 0), {});
    if (spec.fIsKey) property->AddQualifier(key, true)->Commit();
    property->Commit();
  }
  added->Commit({});
  return added;
}

void AddInstance(ICIMClass& cimClass, const std::map<std::string, TCIMValue>& values) {
  const auto instance = cimClass.CreateInstance({});
  for (const auto& [name, value] : values) {
    if (!value.IsNull()) instance->SetPropertyValue(name, value, {});
  }
  instance->Commit({});
}

TCIMValue TextOrNull(const std::string& text) {
  return text.empty() ? TCIMValue() : TCIMValue(text);
}

/// Null in the hour or so in which some time zones have no valid current time.
TCIMValue Now() {
  const TCIMDateTime now = TOSSpecific::GetLocalTime();
  return now.IsNull() ? TCIMValue() : TCIMValue(now);
}

void AddFailures(ICIMNamespace& ns, const std::vector<TProviderFailure>& failures) {
  const auto failureClass = AddClass(ns, "VORNSG_CollectionFailure",
                                     {{"Provider", TType::kCIMTypeString, true},
                                      {"Namespace", TType::kCIMTypeString, true},
                                      {"Operation", TType::kCIMTypeString, true},
                                      {"Status", TType::kCIMTypeString},
                                      {"Reason", TType::kCIMTypeString}});
  for (const auto& [origin, operation, failure] : failures) {
    AddInstance(*failureClass, {{"Provider", origin.fProvider},
                                {"Namespace", origin.fNamespace},
                                {"Operation", operation},
                                {"Status", failure.what()},
                                {"Reason", failure.GetReason()}});
  }
}

}  // namespace

boost::shared_ptr<ICIMNamespace> MakeCollectionRecord(const TProviderQuery& machine,
                                                      const std::string& hostName) {
  auto ns = MakeRepositoryNamespace(kRecordNamespaceName);
  ns->CreateQualifierDecl("Key", false, kScopeProperty | kScopeReference, kFlavorToSubclass, {})
      ->Commit();
  // The same key in every document, so that diff matches the instances.
  AddInstance(*AddClass(*ns, "VORNSG_Collection",
                        {{"InstanceID", TType::kCIMTypeString, true},
                         {"HostName", TType::kCIMTypeString},
                         {"RootFolder", TType::kCIMTypeString},
                         {"CollectionTime", TType::kCIMTypeDateTime},
                         {"ToolVersion", TType::kCIMTypeString}}),
              {{"InstanceID", "VORNSG:Collection"},
               {"HostName", TextOrNull(hostName)},
               {"RootFolder", machine.GetRoot()},
               {"CollectionTime", Now()},
               {"ToolVersion", QDXCORE_VERSION}});
  AddFailures(*ns, machine.GetFailures());
  return ns;
}

}  // namespace NVORNQDX20
