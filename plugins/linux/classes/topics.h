// SPDX-License-Identifier: Apache-2.0
/// What the provider describes: one function, and one source file, for each class.
#ifndef PLUGINS_LINUX_CLASSES_TOPICS_H_
#define PLUGINS_LINUX_CLASSES_TOPICS_H_

#include "machine/host.h"
#include "namespace_builder.h"

namespace NVORNQDX20 {

/// Declares a class and adds the instances that the host has of it. A value that cannot be had is
/// no failure: it is noted as missing.
using TTopic = void(TNamespaceBuilder& builder, const THost& host);

TTopic AddComputerSystem;
TTopic AddOperatingSystem;
TTopic AddQDXProduct;
TTopic AddSCSIDevices;
TTopic AddFileSystems;
TTopic AddLogicalDevices;  // before those below, which are some
TTopic AddProcessors;
TTopic AddDiskDrives;
TTopic AddEthernetPorts;
TTopic AddPCIDevices;

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_TOPICS_H_
