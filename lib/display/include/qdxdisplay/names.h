// SPDX-License-Identifier: Apache-2.0
/// Short names of classes and instances, and how people ask for them.
#ifndef QDXDISPLAY_NAMES_H_
#define QDXDISPLAY_NAMES_H_

#include <string>
#include <vector>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

/// Returns the name without the schema that it begins with: "DiskDrive" for "VORNSG_DiskDrive".
std::string ShortClassName(const std::string& name);

struct TClassMatch {
  std::vector<std::string> fNames;  ///< What the typed name can mean: one, several or none.
  std::string fNearest;  ///< If none: a name or word that is spelled similarly, or empty.
};

/// Finds a class by what a person typed, in any case. The first of these that matches counts: the
/// name, the name without its schema, a common word such as "disk" or "cpu", the plural of one of
/// these, and how a short name, or one of its words, begins.
TClassMatch FindClassFor(const std::string& typed, const std::vector<std::string>& names);

/// Returns whether the key only repeats the class or the machine: CreationClassName, SystemName.
bool IsSilentKey(const std::string& name);

/// Returns a short name of the instance at an object path: "DiskDrive sda". It has the keys that
/// are not silent, without their names; of a reference the short name of its instance. A text that
/// is no object path comes back unchanged.
std::string InstanceLabel(const std::string& path);

/// The same without the name of the class: "sda". Empty if the class has no keys.
std::string KeyLabel(const std::string& path);

/// Returns maker and product of a device on PCI or USB, if its values have a name: "Intel
/// Corporation Ethernet Controller X710". REQUIRES: the instance has values.
std::string DeviceNameOf(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance);

}  // namespace NVORNQDX20

#endif  // QDXDISPLAY_NAMES_H_
