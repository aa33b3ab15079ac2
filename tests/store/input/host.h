// SPDX-License-Identifier: Apache-2.0
/// A made-up host: its namespace, and the record of its collection.
#ifndef TESTS_STORE_INPUT_HOST_H_
#define TESTS_STORE_INPUT_HOST_H_

#include <qdxcore/datetime.h>
#include <qdxdescribe/missing_values.h>
#include <qdxsnapshot/record.h>

#include <string>
#include <vector>

#include "support/class_builder.h"

namespace NVORNQDX20 {

constexpr const char* kNoon = "20261123120000.000000+060";
/// kNoon in microseconds.
constexpr std::int64_t kNoonTime = 1795431600000000;

struct TTestHost {
  std::string fName = "web1";
  std::string fTime = kNoon;
  std::vector<std::string> fPartsLeftOut = {};
  std::vector<std::string> fFailures = {};  ///< Names of namespaces.
};

inline TCIMValue Number(int number) { return static_cast<unsigned int>(number); }
inline const TCIMValue kNoNumber(TCIMValue::TCIMType::kCIMTypeUint32, 0);
inline const TCIMValue kNoTime(TCIMValue::TCIMType::kCIMTypeDateTime, 0);
inline const TCIMValue kNoTexts(TCIMValue::TCIMType::kCIMTypeString |
                                    TCIMValue::TCIMType::kCIMTypeArray,
                                0U);

inline TCIMValue Texts(const std::vector<std::string>& texts) {
  std::vector<TCIMValue> values;
  for (const std::string& text : texts) values.emplace_back(text);
  return {TCIMValue::TCIMType::kCIMTypeString, 0, values};
}

/// With the machine itself, which has these values besides its name.
inline TNamespace MakeHost(const TTestHost& host, const TProperties& values = {}) {
  const TNamespace ns = MakeRepositoryNamespace("root/cimv2");
  TProperties all = {{"CreationClassName", "VORNSG_ComputerSystem"}, {"Name", host.fName}};
  all.insert(all.end(), values.begin(), values.end());
  AddClass(ns, "VORNSG_ComputerSystem", {{"CreationClassName", kNoText}, {"Name", kNoText}},
           {{"UUID", kNoText}, {"SerialNumber", kNoText}, {"ProductName", kNoText}});
  AddInstance(ns, "VORNSG_ComputerSystem", all);
  return ns;
}

/// Of disks with a part, a secret and a value that changes by itself.
inline void DeclareDisks(const TNamespace& ns) {
  NDescribe::TClassDeclaration disks{"VORNSG_DiskDrive", "", {}};
  for (const char* const key : {"SystemName", "DeviceID"}) {
    disks.fProperties.emplace_back(key, kNoText);
    disks.fProperties.back().fIsKey = true;
  }
  disks.fProperties.emplace_back("Model", kNoText);
  disks.fProperties.emplace_back("WWN", kNoText);
  disks.fProperties.back().fSecret = NDescribe::ESecret::kSerial;
  disks.fProperties.emplace_back("Hours", kNoNumber);
  disks.fProperties.back().fIsVolatile = true;
  disks.fPart.fName = "disks";
  NDescribe::DeclareClass(*ns, disks);
}

inline void AddDisk(const TNamespace& ns, const std::string& host, const std::string& id,
                    TProperties values) {
  values.insert(values.begin(), {{"SystemName", host}, {"DeviceID", id}});
  AddInstance(ns, "VORNSG_DiskDrive", values);
}

inline TNamespace MakeRecord(const TTestHost& host) {
  const TNamespace ns = MakeRepositoryNamespace(kRecordNamespaceName);
  AddClass(ns, kRecordClass, {{"InstanceID", kNoText}},
           {{"HostName", kNoText}, {kCollectionTime, kNoTime}, {kPartsLeftOut, kNoTexts}});
  TProperties values = {{"InstanceID", "VORNSG:Collection"},
                        {"HostName", host.fName},
                        {kPartsLeftOut, Texts(host.fPartsLeftOut)}};
  if (!host.fTime.empty()) values.emplace_back(kCollectionTime, TCIMDateTime(host.fTime));
  AddInstance(ns, kRecordClass, values);
  AddClass(ns, kFailureClass, {{"Provider", kNoText}, {"Namespace", kNoText}},
           {{"Operation", kNoText}, {"Reason", kNoText}});
  for (const std::string& failed : host.fFailures) {
    AddInstance(ns, kFailureClass,
                {{"Provider", "p"}, {"Namespace", failed}, {"Reason", "it crashed"}});
  }
  return ns;
}

}  // namespace NVORNQDX20

#endif  // TESTS_STORE_INPUT_HOST_H_
