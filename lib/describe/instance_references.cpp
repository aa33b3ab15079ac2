// SPDX-License-Identifier: Apache-2.0
#include "instance_references.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxmodel/classes.h>

#include <utility>

namespace NVORNQDX20::NDescribe {

TReading<boost::shared_ptr<ICIMInstance>> TInstanceReferences::Find(const TInstanceName& name,
                                                                    const std::string& required) {
  const auto& instances = InstancesOf(name.fClass);
  const auto found = instances.find(name.fKey);
  if (found == instances.end()) {
    const bool hasClass = ClassOf(name.fClass) != nullptr;
    return Missing("there is no " +
                   (hasClass ? name.fClass + " " + name.fKey : "class " + name.fClass));
  }
  const boost::shared_ptr<ICIMInstance>& instance = found->second;
  if (!instance) return Missing("there are several " + name.fClass + " " + name.fKey);
  if (!IsA(instance->GetClass({}), required)) {
    return Missing(name.fClass + " " + name.fKey + " is no " + required);
  }
  return instance;
}

bool TInstanceReferences::IsA(boost::shared_ptr<ICIMClass> cimClass, const std::string& name) {
  while (cimClass && !NModel::EqualIgnoringCase(cimClass->GetName({}), name)) {
    cimClass = NModel::SuperclassOf(*cimClass);
  }
  return cimClass != nullptr;
}

void TInstanceReferences::Add(const boost::shared_ptr<ICIMInstance>& instance) {
  if (fInstances.empty()) return;
  const auto cimClass = instance->GetClass({});
  for (TInstancesByKey* const instances : InstancesWith(cimClass)) {
    AddByKey(instance, KeysOf(*cimClass), *instances);
  }
}

const std::vector<TInstanceReferences::TInstancesByKey*>& TInstanceReferences::InstancesWith(
    const boost::shared_ptr<ICIMClass>& cimClass) {
  if (cimClass != fAddedClass) {
    fAddedClass = cimClass;
    fWithAddedClass.clear();
    for (auto& [className, instances] : fInstances) {
      if (IsA(cimClass, className)) fWithAddedClass.push_back(&instances);
    }
  }
  return fWithAddedClass;
}

TInstanceReferences::TKeys::TKeys(const ICIMClass& cimClass) : fReader(cimClass) {
  const auto& properties = fReader.GetProperties();
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (properties[i].fIsKey) fPositions.push_back(i);
  }
}

const TInstanceReferences::TInstancesByKey& TInstanceReferences::InstancesOf(
    const std::string& className) {
  const auto [place, isNew] = fInstances.try_emplace(className);
  if (isNew) {
    fAddedClass.reset();
    Read(className, place->second);
  }
  return place->second;
}

boost::shared_ptr<ICIMClass> TInstanceReferences::ClassOf(const std::string& name) const {
  try {
    return fNamespace->GetClass(name, {});
  } catch (const TQDXException&) {
    return nullptr;
  }
}

void TInstanceReferences::Read(const std::string& className, TInstancesByKey& instances) {
  const auto cimClass = ClassOf(className);
  if (!cimClass) return;
  for (const auto& each : NModel::WithSubclasses(cimClass)) {
    TKeys& keys = KeysOf(*each);
    for (const auto& instance : NModel::InstancesOf(*each)) AddByKey(instance, keys, instances);
  }
}

void TInstanceReferences::AddByKey(const boost::shared_ptr<ICIMInstance>& instance, TKeys& keys,
                                   TInstancesByKey& instances) {
  keys.fReader.Begin(*instance);
  std::string key;
  keys.fReader.Read(keys.fPositions.back(),
                    [&key](const TCIMValue& value) { key = value.ToString(10); });
  const auto [place, isNew] = instances.emplace(std::move(key), instance);
  if (!isNew) place->second = nullptr;
}

TInstanceReferences::TKeys& TInstanceReferences::KeysOf(const ICIMClass& cimClass) {
  return fKeys.try_emplace(cimClass.GetName({}), cimClass).first->second;
}

TCIMValue TInstanceReferences::ReferenceTo(const ICIMInstance& instance) {
  const auto cimClass = instance.GetClass({});
  TKeys& keys = KeysOf(*cimClass);
  keys.fReader.Begin(instance);
  TCIMReference reference(fNamespace, {});
  reference.SetClass(cimClass);
  for (const std::size_t key : keys.fPositions) {
    const std::string& name = keys.fReader.GetProperties()[key].fName;
    keys.fReader.Read(key, [&](const TCIMValue& value) { reference.AddKeyValue(name, value); });
  }
  return TCIMValue(reference);
}

}  // namespace NVORNQDX20::NDescribe
