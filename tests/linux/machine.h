// SPDX-License-Identifier: Apache-2.0
/// A made-up machine: a tree of files, described by the provider under test.
#ifndef TESTS_LINUX_MACHINE_H_
#define TESTS_LINUX_MACHINE_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

namespace NVORNQDX20 {

inline boost::shared_ptr<ICIMNamespace> Describe(const TOptionsMap& options) {
  TOSSpecific::LoadNSPLibrary("linux");
  return TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider("linux")->GetNamespace(
      "ROOT/CIMv2", options);
}

inline std::vector<boost::shared_ptr<ICIMInstance>> InstancesOf(const ICIMNamespace& ns,
                                                                const std::string& className) {
  std::vector<boost::shared_ptr<ICIMInstance>> instances;
  ns.GetClass(className, {})->EnumerateInstances(TAddToVectorCallback(instances), false, {});
  return instances;
}

/// "(null)" for a null value.
inline std::string TextOf(const ICIMInstance& instance, const std::string& property) {
  const TCIMValue& value = instance.GetProperty(property, {})->GetValue();
  return value.IsNull() ? "(null)" : value.ToString(10);
}

/// Why values are null, by instance and property; why a class has no instances, by its name.
inline std::map<std::string, std::string> ReasonsOf(const ICIMNamespace& ns) {
  std::map<std::string, std::string> reasons;
  for (const auto& missing : InstancesOf(ns, "VORNSG_UnavailableValue")) {
    const std::string name = TextOf(*missing, "Instance") + TextOf(*missing, "PropertyName");
    reasons[name.empty() ? TextOf(*missing, "ClassName") : name] = TextOf(*missing, "Reason");
  }
  return reasons;
}

/// A machine of files, which are read again whenever something is asked about it.
class TMachine : public TTempDir {
 public:
  boost::shared_ptr<ICIMNamespace> Namespace() const {
    return Describe({{"root", Path().string()}});
  }
  /// Of the only instance of the class.
  std::string Value(const std::string& className, const std::string& property) const {
    return TextOf(*InstancesOf(*Namespace(), className).at(0), property);
  }
};

}  // namespace NVORNQDX20

#endif  // TESTS_LINUX_MACHINE_H_
