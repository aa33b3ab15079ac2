// SPDX-License-Identifier: Apache-2.0
/// Parses the kernel's list of block devices, /proc/partitions.
#ifndef PLUGINS_LINUX_SOURCES_STORAGE_PARTITIONS_H_
#define PLUGINS_LINUX_SOURCES_STORAGE_PARTITIONS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace NVORNQDX20 {

struct TListedDevice {
  std::string fName;    ///< For example "sda1", "cciss/c0d0".
  std::string fNumber;  ///< For example "8:1".
  std::uint64_t fSize;  ///< In bytes, of whole KiB.
  std::string fDisk;    ///< Of a partition: the name of its disk.
};

/// Returns the devices in the order of the list, where a disk is before its partitions.
std::vector<TListedDevice> ParsePartitions(std::string_view list);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_STORAGE_PARTITIONS_H_
