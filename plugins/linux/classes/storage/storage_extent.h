// SPDX-License-Identifier: Apache-2.0
/// Common parts of the classes of block devices that hold data.
#ifndef PLUGINS_LINUX_CLASSES_STORAGE_STORAGE_EXTENT_H_
#define PLUGINS_LINUX_CLASSES_STORAGE_STORAGE_EXTENT_H_

#include <functional>

#include "classes/logical_device.h"
#include "sources/storage/block_devices.h"

namespace NVORNQDX20 {

struct TExtent : TDevice, TBlockDevice {};

/// The superclass of all block devices that hold data. It has instances of its own.
THostTable<TExtent> StorageExtentTable();

/// Returns the function that lists the extents of one kind.
std::function<TInstances<TExtent>(const THost&)> ExtentsOf(EBlockKind kind);

/// Two instances that an association ties to each other.
struct TTie {
  TInstanceName fAntecedent;
  TInstanceName fDependent;
};

/// Returns whether the device has an instance of VORNSG_StorageExtent or a subclass.
bool IsExtent(const TBlockDevice& device);

/// Returns the name by which associations refer to the device.
TInstanceName ExtentName(const TBlockDevice& device);

/// Returns the reader of a property that udev found.
inline auto FromUdev(const char* name) {
  return [name](const TBlockDevice& device) { return device.fUdev.Get(name); };
}
inline auto DecodedFromUdev(const char* name) {
  return [name](const TBlockDevice& device) { return device.fUdev.GetDecoded(name); };
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_STORAGE_STORAGE_EXTENT_H_
