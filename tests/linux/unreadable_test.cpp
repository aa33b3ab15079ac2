// SPDX-License-Identifier: Apache-2.0
// Where something may not be read, no value looks as if it had been.
#include "linux/machine.h"
#include "linux/smbios_builder.h"

namespace NVORNQDX20 {
namespace {

const char* const kFiles = R"(
.: boot/vmlinuz-6.1.0=; lib/modules/6.1.0/x=; usr/lib/sysimage/rpm/x=; run/systemd/container=lxc
usr/lib/systemd/system: a.service=[Unit]; a.service.d/1.conf=[Service]; x.target.wants/y=
etc: systemd/system/c.service.d/1.conf=[Service]; init.d/old=; rc3.d/K01old=
proc/1: cgroup=0::/in; stat=1; environ=
proc: cpuinfo=processor : 0; bus/pci/devices=0000 80861237 0; net/vlan/config=; net/route=
sys/fs/cgroup: cgroup.controllers=cpu; cpuset.cpus.effective=0; in/cpuset.cpus.effective=0
sys/class: dmi/id/product_name=Machine; power_supply/BAT0/type=Battery; hwmon/x=
sys/class: power_supply/BAT0/status=Charging; power_supply/BAT0/capacity_level=Low
sys/class/net: bond0/type=1; bond0/bonding/slaves=eth0; br0/type=1; br0/brif/eth1/x=
sys/class/net/eth0: type=1; ifalias=uplink; device/uevent=DRIVER=d
sys/block/sda: dev=8:0; size=8; removable=0; sda1/partition=1; sda1/size=2; queue/rotational=0
sys/block/sda/device: model=M; vpd_pg89=; vpd_pg83=; vpd_pgb1=
run/udev/data: b8:0=E:ID_SERIAL=S
sys/block: dm-0/dev=253:0; dm-0/size=8; dm-0/slaves/sda/x=; dm-0/dm/uuid=CRYPT-u
etc/lvm/backup: vg=vg { }
sys/class/scsi_tape: st0/dev=9:0
sys/class/scsi_generic/sg0/device: block/sda/x=; scsi_tape/st0/x=
sys/block: md5/dev=9:5; md5/size=8; md5/md/level=raid1; md5/md/dev-sdx/state=in_sync
sys/class: nvme/nvme0/nvme0n1/x=; net/br0/uevent=DEVTYPE=bridge; net/bond0/uevent=DEVTYPE=bond
sys/devices/pci0/nvme/nvme0/hwmon/hwmon6: name=nvme; temp1_input=43850; temp1_fault=0
sys/devices/pci0/nvme/nvme0/hwmon/hwmon6: power1_input=5; power1_label=pout1
sys/class/thermal/thermal_zone0: type=acpitz; trip_point_0_type=hot; trip_point_0_temp=90000
sys/class/thermal/thermal_zone0: trip_point_1_type=passive; trip_point_1_temp=80000
sys/devices: cpu_core/cpus=1-2; system/node/node0/cpulist=0
sys/devices/system/edac/mc: mc0/dimm0/size=8; mc1/dimm0/size=8
sys/devices/system/cpu: present=0; online=0; cpu0/topology/physical_package_id=0
sys/devices/system/cpu: cpu0/topology/core_id=0; cpu0/topology/core_cpus_list=0
)";

TEST(LinuxUnreadable, IsNotTakenForSomethingElse) {
  const TMachine machine;
  machine.WriteFiles(kFiles);
  std::filesystem::create_symlink("../../devices/pci0/nvme/nvme0/hwmon/hwmon6",
                                  machine.Path() / "sys/class/hwmon/hwmon6");
  ExpectDenied(machine, R"(
.: boot=6.1.0Image,6.1.0InitialFiles,VORNSG_InstalledKernel; lib/modules=6.1.0Modules
usr/lib: sysimage=VORNSG_SoftwareIdentity
usr/lib/systemd/system: a.service=a.serviceStartProgram,a.serviceRunsAs
usr/lib/systemd/system: a.service.d=VORNSG_Service; a.service.d/1.conf=VORNSG_Service
usr/lib/systemd/system: x.target.wants=a.serviceUnitFileState
etc: systemd/system=VORNSG_TimerService; rc3.d=oldStartMode
etc: lvm/backup=VORNSG_StoragePool,VORNSG_PhysicalVolume; lvm/backup/vg=VORNSG_StoragePool
sys/class: scsi_tape=VORNSG_TapeDrive
sys/class/scsi_generic/sg0/device: block=VORNSG_ConcreteIdentity; scsi_tape=VORNSG_ConcreteIdentity
etc: init.d=VORNSG_Service; init.d/old=oldDescription
proc: 1/cgroup=MemoryLimit; bus/pci/devices=VirtualMachine; net/vlan=VORNSG_VLANEndpoint
sys/fs/cgroup: in/cpuset.cpus.effective=ProcessorSet
run: systemd/container=Container; udev/data/b8:0=/dev/sdaOtherIdentifyingInfo
sys/class: dmi/id/product_name=VirtualMachine; nvme/nvme0=VORNSG_ControlledBy
sys/class/net: bond0/bonding/slaves=bond0Members,VORNSG_MemberOfPortGroup
sys/class/net: br0/brif=br0Members,VORNSG_MemberOfPortGroup
sys/class/net/eth0: ifalias=eth0ElementName; device/uevent=eth0Driver
sys/block: sda=VORNSG_DiskPartition; sda/sda1=VORNSG_DiskPartition
sys/block/dm-0: slaves=/dev/dm-0Members,VORNSG_BasedOn; dm/uuid=/dev/dm-0Kind
sys/block/md5: md=/dev/md5Members; md/dev-sdx/state=/dev/md5FailedMembers
sys/block/sda/device: vpd_pg89=/dev/sdaElementName,/dev/sdaInterconnectSpeed
sys/block/sda/device: vpd_pg83=/dev/sdaWWN; vpd_pgb1=/dev/sdaRPM
sys/class/hwmon/hwmon6: temp1_fault=pci0/nvme/nvme0/nvme/temp1CurrentReading
sys/class/hwmon/hwmon6: power1_label=pci0/nvme/nvme0/nvme/power1SensorType
sys/class/thermal/thermal_zone0: trip_point_0_type=thermal/acpitzUpperThresholdNonCritical
sys/class/thermal/thermal_zone0: trip_point_1_temp=thermal/acpitzUpperThresholdNonCritical
sys/class/power_supply/BAT0: capacity_level=BAT0BatteryStatus
sys/devices: cpu_core/cpus=VORNSG:CPU0-0CoreType; system/edac/mc/mc0=VORNSG_MemoryErrorCount
sys/devices/system/node/node0: cpulist=VORNSG:cpu0NUMANode
sys/devices/system: cpu=VORNSG_Processor,VORNSG_HardwareThread
sys/devices/system/cpu: present=VORNSG_HardwareThread; online=VORNSG_HardwareThread
sys/devices/system/cpu/cpu0/topology: core_cpus_list=VORNSG_ProcessorCore
)");
}

/// Where other sources are missing, these are the only ones.
TEST(LinuxUnreadable, IsNotLeftOutWhereOtherSourcesAreMissing) {
  const TMachine machine;
  machine.WriteFiles(R"(
.: proc/partitions=; proc/net/dev=; etc/os-release=VERSION_ID=1
sys/hypervisor: type=xen; version/major=4; version/minor=17; version/extra=.1
sys/firmware/dmi/entries: 16-0/raw=
)");
  machine.Write("sys/firmware/dmi/entries/1-0/raw", SMBIOSStructure(1, 0x1, ""));
  ExpectDenied(machine, R"(
proc: partitions=VORNSG_DiskDrive; net/dev=VORNSG_NetworkPort
sys/hypervisor/version: extra=Version
sys/firmware/dmi/entries/16-0: raw=VORNSG_MemoryArray
)");
}

}  // namespace
}  // namespace NVORNQDX20
