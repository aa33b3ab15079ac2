// SPDX-License-Identifier: Apache-2.0
/// Finds which differences belong to one device, and which only follow from others.
#ifndef LIB_COMPARE_DEVICES_H_
#define LIB_COMPARE_DEVICES_H_

#include <vector>

#include "class_comparison.h"

namespace NVORNQDX20 {

/// Sets fDevice and fFollows of the differences of instances and values.
///
/// A device is an instance with the instances that are tied to it alone: an association class
/// refers to each of the two only once, such as to a drive and its medium. What is made of or on
/// something belongs to it as well, whatever their number: partitions, file systems, addresses of
/// ports, sensors, caches and cores. The machine itself, to which everything is tied, is no part of
/// that.
///
/// Reads the associations of all sides once, and again if the path of a device is not known.
void FindDevices(const std::vector<const TSide*>& sides, TFindings& findings);

}  // namespace NVORNQDX20

#endif  // LIB_COMPARE_DEVICES_H_
