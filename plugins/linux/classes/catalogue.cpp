// SPDX-License-Identifier: Apache-2.0
#include "catalogue.h"

/// All classes, with the part that each belongs to, its name and its superclass: each after its
/// superclass, and after the classes that it refers to.
#define QDX_LINUX_CLASSES(CLASS)                                                                   \
  CLASS(kAlways, ComputerSystemClass, "VORNSG_ComputerSystem", "")                                 \
  CLASS(kAlways, OperatingSystemClass, "VORNSG_OperatingSystem", "")                               \
  CLASS(kAlways, RunningOSClass, "VORNSG_RunningOS", "")                                           \
  CLASS(kAlways, QDXProductClass, "VORNSG_QDXProduct", "")                                         \
  CLASS(kDisks, SCSIDeviceClass, "VORNSG_SCSIDevice", "")                                          \
  CLASS(kAlways, LogicalDeviceClass, "VORNSG_LogicalDevice", "")                                   \
  CLASS(kAlways, SystemDeviceClass, "VORNSG_SystemDevice", "")                                     \
  CLASS(kMachine, PhysicalElementClass, "VORNSG_PhysicalElement", "")                              \
  CLASS(kMachine, PhysicalPackageClass, "VORNSG_PhysicalPackage", "VORNSG_PhysicalElement")        \
  CLASS(kMachine, ChassisClass, "VORNSG_Chassis", "VORNSG_PhysicalPackage")                        \
  CLASS(kMachine, CardClass, "VORNSG_Card", "VORNSG_PhysicalPackage")                              \
  CLASS(kMachine, BIOSElementClass, "VORNSG_BIOSElement", "")                                      \
  CLASS(kMemory, MemoryArrayClass, "VORNSG_MemoryArray", "VORNSG_PhysicalPackage")                 \
  CLASS(kMemory, MemorySlotClass, "VORNSG_MemorySlot", "VORNSG_PhysicalElement")                   \
  CLASS(kMemory, PhysicalMemoryClass, "VORNSG_PhysicalMemory", "VORNSG_PhysicalElement")           \
  CLASS(kMemory, MemoryClass, "VORNSG_Memory", "VORNSG_LogicalDevice")                             \
  CLASS(kMemory, MemoryErrorCountClass, "VORNSG_MemoryErrorCount", "")                             \
  CLASS(kMemory, MappedMemoryClass, "VORNSG_MappedMemory", "VORNSG_LogicalDevice")                 \
  CLASS(kMachine, ComputerSystemPackageClass, "VORNSG_ComputerSystemPackage", "")                  \
  CLASS(kMachine, SystemBIOSClass, "VORNSG_SystemBIOS", "")                                        \
  CLASS(kMachine, ContainerClass, "VORNSG_Container", "")                                          \
  CLASS(kMemory, ElementInConnectorClass, "VORNSG_ElementInConnector", "")                         \
  CLASS(kMemory, RealizesClass, "VORNSG_Realizes", "")                                             \
  CLASS(kProcessors, ProcessorClass, "VORNSG_Processor", "VORNSG_LogicalDevice")                   \
  CLASS(kProcessors, ProcessorCoreClass, "VORNSG_ProcessorCore", "")                               \
  CLASS(kProcessors, ProcessorCoreComponentClass, "VORNSG_ProcessorComponent", "")                 \
  CLASS(kProcessors, HardwareThreadClass, "VORNSG_HardwareThread", "")                             \
  CLASS(kProcessors, HardwareThreadComponentClass, "VORNSG_ProcessorCoreComponent", "")            \
  CLASS(kProcessors, CacheMemoryClass, "VORNSG_CacheMemory", "VORNSG_LogicalDevice")               \
  CLASS(kProcessors, AssociatedCacheMemoryClass, "VORNSG_AssociatedCacheMemory", "")               \
  CLASS(kProcessors, NUMANodeClass, "VORNSG_NUMANode", "")                                         \
  CLASS(kProcessors, ProcessorVulnerabilityClass, "VORNSG_ProcessorVulnerability", "")             \
  CLASS(kProcessors, HypervisorClass, "VORNSG_Hypervisor", "")                                     \
  CLASS(kDisks, MediaAccessDeviceClass, "VORNSG_MediaAccessDevice", "VORNSG_LogicalDevice")        \
  CLASS(kDisks, DiskDriveClass, "VORNSG_DiskDrive", "VORNSG_MediaAccessDevice")                    \
  CLASS(kDisks, CDROMDriveClass, "VORNSG_CDROMDrive", "VORNSG_MediaAccessDevice")                  \
  CLASS(kDisks, DVDDriveClass, "VORNSG_DVDDrive", "VORNSG_MediaAccessDevice")                      \
  CLASS(kDisks, TapeDriveClass, "VORNSG_TapeDrive", "VORNSG_MediaAccessDevice")                    \
  CLASS(kDisks, NVMeControllerClass, "VORNSG_NVMeController", "VORNSG_LogicalDevice")              \
  CLASS(kDisks, StorageExtentClass, "VORNSG_StorageExtent", "VORNSG_LogicalDevice")                \
  CLASS(kDisks, DiskPartitionClass, "VORNSG_DiskPartition", "VORNSG_StorageExtent")                \
  CLASS(kDisks, LogicalDiskClass, "VORNSG_LogicalDisk", "VORNSG_StorageExtent")                    \
  CLASS(kDisks, StorageVolumeClass, "VORNSG_StorageVolume", "VORNSG_StorageExtent")                \
  CLASS(kNetwork, NetworkPortClass, "VORNSG_NetworkPort", "VORNSG_LogicalDevice")                  \
  CLASS(kNetwork, EthernetPortClass, "VORNSG_EthernetPort", "VORNSG_NetworkPort")                  \
  CLASS(kNetwork, WiFiPortClass, "VORNSG_WiFiPort", "VORNSG_NetworkPort")                          \
  CLASS(kNetwork, IBPortClass, "VORNSG_IBPort", "VORNSG_NetworkPort")                              \
  CLASS(kNetwork, FCPortClass, "VORNSG_FCPort", "VORNSG_NetworkPort")                              \
  CLASS(kNetwork, ServiceAccessPointClass, "VORNSG_ServiceAccessPoint", "")                        \
  CLASS(kNetwork, ProtocolEndpointClass, "VORNSG_ProtocolEndpoint", "VORNSG_ServiceAccessPoint")   \
  CLASS(kNetwork, IPProtocolEndpointClass, "VORNSG_IPProtocolEndpoint", "VORNSG_ProtocolEndpoint") \
  CLASS(kNetwork, DNSProtocolEndpointClass, "VORNSG_DNSProtocolEndpoint",                          \
        "VORNSG_ProtocolEndpoint")                                                                 \
  CLASS(kNetwork, RemoteServiceAccessPointClass, "VORNSG_RemoteServiceAccessPoint",                \
        "VORNSG_ServiceAccessPoint")                                                               \
  CLASS(kNetwork, NextHopIPRouteClass, "VORNSG_NextHopIPRoute", "")                                \
  CLASS(kNetwork, VLANEndpointClass, "VORNSG_VLANEndpoint", "VORNSG_ProtocolEndpoint")             \
  CLASS(kNetwork, LogicalPortGroupClass, "VORNSG_LogicalPortGroup", "")                            \
  CLASS(kNetwork, BondPortGroupClass, "VORNSG_BondPortGroup", "VORNSG_LogicalPortGroup")           \
  CLASS(kNetwork, BridgePortGroupClass, "VORNSG_BridgePortGroup", "VORNSG_LogicalPortGroup")       \
  CLASS(kNetwork, PortImplementsEndpointClass, "VORNSG_PortImplementsEndpoint", "")                \
  CLASS(kNetwork, MemberOfPortGroupClass, "VORNSG_MemberOfPortGroup", "")                          \
  CLASS(kBuses, PCIDeviceClass, "VORNSG_PCIDevice", "VORNSG_LogicalDevice")                        \
  CLASS(kSensors, SensorClass, "VORNSG_Sensor", "VORNSG_LogicalDevice")                            \
  CLASS(kSensors, NumericSensorClass, "VORNSG_NumericSensor", "VORNSG_Sensor")                     \
  CLASS(kSensors, ThermalZoneClass, "VORNSG_ThermalZone", "VORNSG_NumericSensor")                  \
  CLASS(kSensors, FirmwareSensorClass, "VORNSG_FirmwareSensor", "VORNSG_NumericSensor")            \
  CLASS(kSensors, CoolingDeviceClass, "VORNSG_CoolingDevice", "VORNSG_LogicalDevice")              \
  CLASS(kSensors, FanClass, "VORNSG_Fan", "VORNSG_CoolingDevice")                                  \
  CLASS(kSensors, FirmwareCoolingDeviceClass, "VORNSG_FirmwareCoolingDevice",                      \
        "VORNSG_CoolingDevice")                                                                    \
  CLASS(kSensors, ThermalCoolingDeviceClass, "VORNSG_ThermalCoolingDevice",                        \
        "VORNSG_CoolingDevice")                                                                    \
  CLASS(kSensors, BatteryClass, "VORNSG_Battery", "VORNSG_LogicalDevice")                          \
  CLASS(kSensors, PowerSupplyClass, "VORNSG_PowerSupply", "VORNSG_LogicalDevice")                  \
  CLASS(kSensors, AssociatedSensorClass, "VORNSG_AssociatedSensor", "")                            \
  CLASS(kBuses, SlotClass, "VORNSG_Slot", "VORNSG_PhysicalElement")                                \
  CLASS(kBuses, USBDeviceClass, "VORNSG_USBDevice", "VORNSG_LogicalDevice")                        \
  CLASS(kBuses, USBHubClass, "VORNSG_USBHub", "VORNSG_USBDevice")                                  \
  CLASS(kNetwork, DeviceIdentityClass, "VORNSG_DeviceIdentity", "")                                \
  CLASS(kDisks, StoragePoolClass, "VORNSG_StoragePool", "")                                        \
  CLASS(kDisks, PhysicalVolumeClass, "VORNSG_PhysicalVolume", "")                                  \
  CLASS(kDisks, ConcreteComponentClass, "VORNSG_ConcreteComponent", "")                            \
  CLASS(kDisks, AllocatedFromStoragePoolClass, "VORNSG_AllocatedFromStoragePool", "")              \
  CLASS(kDisks, MediaPresentClass, "VORNSG_MediaPresent", "")                                      \
  CLASS(kDisks, BasedOnClass, "VORNSG_BasedOn", "")                                                \
  CLASS(kDisks, ControlledByClass, "VORNSG_ControlledBy", "")                                      \
  CLASS(kDisks, ConcreteIdentityClass, "VORNSG_ConcreteIdentity", "")                              \
  CLASS(kFileSystems, FileSystemClass, "VORNSG_FileSystem", "")                                    \
  CLASS(kFileSystems, HostedFileSystemClass, "VORNSG_HostedFileSystem", "")                        \
  CLASS(kFileSystems, ResidesOnExtentClass, "VORNSG_ResidesOnExtent", "")                          \
  CLASS(kFileSystems, SwapSpaceClass, "VORNSG_SwapSpace", "")                                      \
  CLASS(kFileSystems, MountSettingClass, "VORNSG_MountSetting", "")                                \
  CLASS(kSystem, KernelModuleClass, "VORNSG_KernelModule", "")                                     \
  CLASS(kSystem, InstalledKernelClass, "VORNSG_InstalledKernel", "")                               \
  CLASS(kServices, ServiceClass, "VORNSG_Service", "")                                             \
  CLASS(kServices, TimerServiceClass, "VORNSG_TimerService", "VORNSG_Service")                     \
  CLASS(kServices, SocketServiceClass, "VORNSG_SocketService", "VORNSG_Service")                   \
  CLASS(kServices, HostedServiceClass, "VORNSG_HostedService", "")                                 \
  CLASS(kPackages, SoftwareIdentityClass, "VORNSG_SoftwareIdentity", "")                           \
  CLASS(kUsers, AccountClass, "VORNSG_Account", "")                                                \
  CLASS(kUsers, GroupClass, "VORNSG_Group", "")                                                    \
  CLASS(kUsers, MemberOfCollectionClass, "VORNSG_MemberOfCollection", "")                          \
  CLASS(kProcesses, UnixProcessClass, "VORNSG_UnixProcess", "")

namespace NVORNQDX20 {

#define QDX_DECLARE(PART, FUNCTION, NAME, SUPERCLASS) TClass FUNCTION();
QDX_LINUX_CLASSES(QDX_DECLARE)
#undef QDX_DECLARE

std::vector<TCatalogueEntry<THost>> AllClasses() {
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
#define QDX_ENTRY(PART, FUNCTION, NAME, SUPERCLASS) {NAME, SUPERCLASS, PART, FUNCTION},
  return {QDX_LINUX_CLASSES(QDX_ENTRY)};
#undef QDX_ENTRY
}

}  // namespace NVORNQDX20
