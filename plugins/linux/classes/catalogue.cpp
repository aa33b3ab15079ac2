// SPDX-License-Identifier: Apache-2.0
#include "catalogue.h"

/// All classes: each after its superclass, and after the classes that it refers to.
#define QDX_LINUX_CLASSES(CLASS) \
  CLASS(ComputerSystemClass)     \
  CLASS(OperatingSystemClass)    \
  CLASS(QDXProductClass)         \
  CLASS(SCSIDeviceClass)         \
  CLASS(LogicalDeviceClass)      \
  CLASS(SystemDeviceClass)       \
  CLASS(ProcessorClass)          \
  CLASS(DiskDriveClass)          \
  CLASS(EthernetPortClass)       \
  CLASS(PCIDeviceClass)          \
  CLASS(FileSystemClass)

namespace NVORNQDX20 {

#define QDX_DECLARE(FUNCTION) TClass FUNCTION();
QDX_LINUX_CLASSES(QDX_DECLARE)
#undef QDX_DECLARE

std::vector<TClass> AllClasses() {
#define QDX_CALL(FUNCTION) FUNCTION(),
  return {QDX_LINUX_CLASSES(QDX_CALL)};
#undef QDX_CALL
}

}  // namespace NVORNQDX20
