// SPDX-License-Identifier: Apache-2.0
#include "catalogue.h"

/// All classes, with the part that each belongs to: each after its superclass, and after the
/// classes that it refers to.
#define QDX_LINUX_CLASSES(CLASS)                   \
  CLASS(kAlways, ComputerSystemClass)              \
  CLASS(kAlways, OperatingSystemClass)             \
  CLASS(kAlways, RunningOSClass)                   \
  CLASS(kAlways, QDXProductClass)                  \
  CLASS(kDisks, SCSIDeviceClass)                   \
  CLASS(kAlways, LogicalDeviceClass)               \
  CLASS(kAlways, SystemDeviceClass)                \
  CLASS(kMachine, PhysicalElementClass)            \
  CLASS(kMachine, PhysicalPackageClass)            \
  CLASS(kMachine, ChassisClass)                    \
  CLASS(kMachine, CardClass)                       \
  CLASS(kMachine, BIOSElementClass)                \
  CLASS(kMemory, MemoryArrayClass)                 \
  CLASS(kMemory, MemorySlotClass)                  \
  CLASS(kMemory, PhysicalMemoryClass)              \
  CLASS(kMemory, MemoryClass)                      \
  CLASS(kMemory, MemoryErrorCountClass)            \
  CLASS(kMemory, MappedMemoryClass)                \
  CLASS(kMachine, ComputerSystemPackageClass)      \
  CLASS(kMachine, SystemBIOSClass)                 \
  CLASS(kMachine, ContainerClass)                  \
  CLASS(kMemory, ElementInConnectorClass)          \
  CLASS(kMemory, RealizesClass)                    \
  CLASS(kProcessors, ProcessorClass)               \
  CLASS(kProcessors, ProcessorCoreClass)           \
  CLASS(kProcessors, ProcessorCoreComponentClass)  \
  CLASS(kProcessors, HardwareThreadClass)          \
  CLASS(kProcessors, HardwareThreadComponentClass) \
  CLASS(kProcessors, CacheMemoryClass)             \
  CLASS(kProcessors, AssociatedCacheMemoryClass)   \
  CLASS(kProcessors, NUMANodeClass)                \
  CLASS(kProcessors, ProcessorVulnerabilityClass)  \
  CLASS(kProcessors, HypervisorClass)              \
  CLASS(kDisks, MediaAccessDeviceClass)            \
  CLASS(kDisks, DiskDriveClass)                    \
  CLASS(kDisks, CDROMDriveClass)                   \
  CLASS(kDisks, DVDDriveClass)                     \
  CLASS(kDisks, TapeDriveClass)                    \
  CLASS(kDisks, NVMeControllerClass)               \
  CLASS(kDisks, StorageExtentClass)                \
  CLASS(kDisks, DiskPartitionClass)                \
  CLASS(kDisks, LogicalDiskClass)                  \
  CLASS(kDisks, StorageVolumeClass)                \
  CLASS(kNetwork, NetworkPortClass)                \
  CLASS(kNetwork, EthernetPortClass)               \
  CLASS(kNetwork, WiFiPortClass)                   \
  CLASS(kNetwork, IBPortClass)                     \
  CLASS(kNetwork, FCPortClass)                     \
  CLASS(kNetwork, ServiceAccessPointClass)         \
  CLASS(kNetwork, ProtocolEndpointClass)           \
  CLASS(kNetwork, IPProtocolEndpointClass)         \
  CLASS(kNetwork, DNSProtocolEndpointClass)        \
  CLASS(kNetwork, RemoteServiceAccessPointClass)   \
  CLASS(kNetwork, NextHopIPRouteClass)             \
  CLASS(kNetwork, VLANEndpointClass)               \
  CLASS(kNetwork, LogicalPortGroupClass)           \
  CLASS(kNetwork, BondPortGroupClass)              \
  CLASS(kNetwork, BridgePortGroupClass)            \
  CLASS(kNetwork, PortImplementsEndpointClass)     \
  CLASS(kNetwork, MemberOfPortGroupClass)          \
  CLASS(kBuses, PCIDeviceClass)                    \
  CLASS(kSensors, SensorClass)                     \
  CLASS(kSensors, NumericSensorClass)              \
  CLASS(kSensors, ThermalZoneClass)                \
  CLASS(kSensors, FirmwareSensorClass)             \
  CLASS(kSensors, CoolingDeviceClass)              \
  CLASS(kSensors, FanClass)                        \
  CLASS(kSensors, FirmwareCoolingDeviceClass)      \
  CLASS(kSensors, ThermalCoolingDeviceClass)       \
  CLASS(kSensors, BatteryClass)                    \
  CLASS(kSensors, PowerSupplyClass)                \
  CLASS(kSensors, AssociatedSensorClass)           \
  CLASS(kBuses, SlotClass)                         \
  CLASS(kBuses, USBDeviceClass)                    \
  CLASS(kBuses, USBHubClass)                       \
  CLASS(kNetwork, DeviceIdentityClass)             \
  CLASS(kDisks, StoragePoolClass)                  \
  CLASS(kDisks, PhysicalVolumeClass)               \
  CLASS(kDisks, ConcreteComponentClass)            \
  CLASS(kDisks, AllocatedFromStoragePoolClass)     \
  CLASS(kDisks, MediaPresentClass)                 \
  CLASS(kDisks, BasedOnClass)                      \
  CLASS(kDisks, ControlledByClass)                 \
  CLASS(kDisks, ConcreteIdentityClass)             \
  CLASS(kFileSystems, FileSystemClass)             \
  CLASS(kFileSystems, HostedFileSystemClass)       \
  CLASS(kFileSystems, ResidesOnExtentClass)        \
  CLASS(kFileSystems, SwapSpaceClass)              \
  CLASS(kFileSystems, MountSettingClass)           \
  CLASS(kSystem, KernelModuleClass)                \
  CLASS(kSystem, InstalledKernelClass)             \
  CLASS(kServices, ServiceClass)                   \
  CLASS(kServices, TimerServiceClass)              \
  CLASS(kServices, SocketServiceClass)             \
  CLASS(kServices, HostedServiceClass)             \
  CLASS(kPackages, SoftwareIdentityClass)          \
  CLASS(kUsers, AccountClass)                      \
  CLASS(kUsers, GroupClass)                        \
  CLASS(kUsers, MemberOfCollectionClass)           \
  CLASS(kProcesses, UnixProcessClass)

namespace NVORNQDX20 {

#define QDX_DECLARE(PART, FUNCTION) TClass FUNCTION();
QDX_LINUX_CLASSES(QDX_DECLARE)
#undef QDX_DECLARE

std::vector<TClass> AllClasses() {
  // Which machine it is, and what ties the parts together.
  const TPart kAlways;
  const TPart kMachine{"machine"};  // chassis, boards, firmware
  const TPart kMemory{"memory"};
  const TPart kProcessors{"processors"};
  const TPart kDisks{"disks"};
  const TPart kFileSystems{"filesystems"};
  const TPart kNetwork{"network"};
  const TPart kBuses{"buses"};
  const TPart kSensors{"sensors"};  // temperatures, fans, power
  const TPart kSystem{"system"};    // the kernel, its modules and limits
  const TPart kServices{"services"};
  const TPart kPackages{"packages"};
  const TPart kUsers{"users", true};
  const TPart kProcesses{"processes", true};
  std::vector<TClass> all;
#define QDX_COUNT(PART, FUNCTION) 0,
  all.reserve(std::initializer_list<int>{QDX_LINUX_CLASSES(QDX_COUNT)}.size());
#undef QDX_COUNT
  // Not by a list in braces, which would copy each class.
#define QDX_ADD(PART, FUNCTION) all.push_back(FUNCTION().InPart(PART));
  QDX_LINUX_CLASSES(QDX_ADD)
#undef QDX_ADD
  return all;
}

}  // namespace NVORNQDX20
