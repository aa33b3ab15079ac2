// SPDX-License-Identifier: Apache-2.0
/// Resolves names of instances to references.
#ifndef LIB_DESCRIBE_INSTANCE_REFERENCES_H_
#define LIB_DESCRIBE_INSTANCE_REFERENCES_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/reading.h>
#include <qdxdescribe/row.h>
#include <qdxmodel/names.h>
#include <qdxmodel/property_reader.h>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace NVORNQDX20::NDescribe {

class TInstanceReferences {
 public:
  explicit TInstanceReferences(boost::shared_ptr<ICIMNamespace> ns) : fNamespace(std::move(ns)) {}

  /// Finds an instance of the class `required` or of a subclass.
  TReading<boost::shared_ptr<ICIMInstance>> Find(const TInstanceName& name,
                                                 const std::string& required);
  TCIMValue ReferenceTo(const ICIMInstance& instance);
  /// Returns whether it is this class or a subclass; false for none.
  static bool IsA(boost::shared_ptr<ICIMClass> cimClass, const std::string& name);
  /// Adds a new instance to what was read of its class and superclasses before.
  void Add(const boost::shared_ptr<ICIMInstance>& instance);

 private:
  /// By the last key; null if several instances have the same.
  using TInstancesByKey = std::unordered_map<std::string, boost::shared_ptr<ICIMInstance>>;

  struct TKeys {
    explicit TKeys(const ICIMClass& cimClass);

    NModel::TPropertyReader fReader;
    std::vector<std::size_t> fPositions;
  };

  /// Reads the instances once, when the first reference asks for one of them.
  const TInstancesByKey& InstancesOf(const std::string& className);
  /// Returns null for a class that is not wanted or not known.
  boost::shared_ptr<ICIMClass> ClassOf(const std::string& name) const;
  void Read(const std::string& className, TInstancesByKey& instances);
  static void AddByKey(const boost::shared_ptr<ICIMInstance>& instance, TKeys& keys,
                       TInstancesByKey& instances);
  TKeys& KeysOf(const ICIMClass& cimClass);
  /// Returns what was read before that a new instance of the class belongs to.
  const std::vector<TInstancesByKey*>& InstancesWith(const boost::shared_ptr<ICIMClass>& cimClass);

  const boost::shared_ptr<ICIMNamespace> fNamespace;
  NModel::TNameMap<TInstancesByKey> fInstances;
  NModel::TNameMap<TKeys> fKeys;  // by class
  // The last result of InstancesWith(): instances are added class by class.
  boost::shared_ptr<ICIMClass> fAddedClass;
  std::vector<TInstancesByKey*> fWithAddedClass;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // LIB_DESCRIBE_INSTANCE_REFERENCES_H_
