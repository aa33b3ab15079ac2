// SPDX-License-Identifier: Apache-2.0
// What tells a sick server from a healthy one, on a made-up server and on this machine.
#include "linux/machine.h"

#include <algorithm>
#include <array>

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kClasses = {"OperatingSystem", "FileSystem",   "Processor",
                                           "DiskDrive",       "EthernetPort", "PCIDevice"};

std::string Processor(int number, int socket) {
  return "processor\t: " + std::to_string(number) +
         "\nvendor_id\t: GenuineIntel\nmodel name\t: Xeon 8\nstepping\t: 7\n" +
         "microcode\t: 0x5003\ncpu MHz\t\t: 2100.500\nphysical id\t: " + std::to_string(socket) +
         "\ncpu cores\t: 2\nflags\t\t: " + std::string(1500, 'f') + "\n\n";
}

/// The files of a server whose values are all there, by their folders.
const char* const kServer = R"(
sys/block/sda: device/model=PM893  ; device/state=running; size=937703088; removable=0; ro=1
sys/block/sda: queue/rotational=0
sys/block/cciss!c0d0: device/model=RAID; device/serial=N7; device/state=offline; size=2
sys/block/cciss!c0d0: queue/rotational=1; removable=0; ro=0
sys/block/nvme0c0n1: device/model=a second path; hidden=1
sys/block/loop0: size=8
sys/class/net/eth0: type=1; address=52:54:00:12:ab:ef; addr_assign_type=0; operstate=up; mtu=9000
sys/class/net/eth0: speed=25000; duplex=full; carrier_changes=7
sys/class/net/eth0/statistics: rx_errors=18446744073709551615; rx_dropped=2; rx_bytes=4
sys/class/net/eth0/statistics: rx_packets=6; tx_errors=1; tx_dropped=3; tx_bytes=5; tx_packets=8
sys/class/net/lo: type=772
sys/bus/pci/devices/0000:3b:00.0: vendor=0x8086; device=0x0572; class=0x020100; revision=0x02
sys/bus/pci/devices/0000:3b:00.0: subsystem_vendor=0x15d9; subsystem_device=0x1; uevent=DRIVER=i40e
sys/devices/system/cpu: present=0-3,6,8; online=0-1,6; cpu0/cpufreq/cpuinfo_max_freq=3900000
sys/devices/system/cpu: cpu1/cpufreq/cpuinfo_max_freq=3000000
sys/class/dmi/id: sys_vendor=V; product_name=P; product_serial=S
proc: stat=btime 1079361000; loadavg=0.50 12.25 3.00 2/149 28102; 1/stat=1; 77/stat=77; mounts=
proc: uptime=90061.99 1.00
proc/sys/kernel: tainted=512; ostype=Linux; osrelease=6.1.0; hostname=srv1
)";

/// What it is like. What stands before the colon is the instance.
const char* const kValues = R"(
: TotalVisibleMemorySize=64; FreePhysicalMemory=16; AvailablePhysicalMemory=48; KernelTaint=512
: SizeStoredInPagingFiles=32; FreeSpaceInPagingFiles=0; NumberOfProcesses=2; OfflineProcessors=2-3,8
: LoadAverage1=0.5; LoadAverage5=12.25; LoadAverage15=3; KernelRelease=6.1.0
: LastBootUpTime=20040315143000.000000+000; SystemUpTime=90061
CPU0: Name=Xeon 8; Manufacturer=GenuineIntel; Stepping=7; Microcode=0x5003
CPU0: MaxClockSpeed=3900; CurrentClockSpeed=2100; NumberOfEnabledCores=2
CPU0: NumberOfLogicalProcessors=2
CPU1: MaxClockSpeed=3000; NumberOfLogicalProcessors=1
/dev/sda: SystemName=srv1; Name=sda; Model=PM893; SerialNumber=S1234; State=running
/dev/sda: MaxMediaSize=480103981; Removable=false; Rotational=false; ReadOnly=true
/dev/cciss/c0d0: SerialNumber=N7; State=offline; MaxMediaSize=1; Rotational=true
eth0: PermanentAddress=52540012ABEF; CurrentAddress=52540012ABEF; LinkState=up
eth0: Speed=25000000000; FullDuplex=true; ActiveMaximumTransmissionUnit=9000
eth0: ReceiveErrors=18446744073709551615; ReceiveDrops=2; BytesReceived=4
eth0: TransmitErrors=1; TransmitDrops=3; CarrierChanges=7
0000:3b:00.0: Name=8086:0572; PCIDeviceID=1394; ClassCode=2; SubclassCode=1; Driver=i40e
)";

class LinuxServer : public ::testing::Test {
 protected:
  void SetUp() override {
    fMachine.WriteFiles(kServer);
    fMachine.Write("proc/cpuinfo", Processor(0, 0) + Processor(1, 1) + Processor(2, 0));
    fMachine.Write("proc/meminfo",
                   "MemTotal:   64 kB\nMemFree:  16 kB\nMemAvailable: 48 kB\n"
                   "SwapTotal: 32 kB\nSwapFree: 0 kB\nMemTotal: 1 kB\n");
    fMachine.Write("sys/class/net/\xff/type", "1");
    fMachine.Write("sys/block/sda/device/vpd_pg80", {"\0\x80\0AS1234", 9});
  }
  TTexts Values() const { return ValuesOf(*fMachine.Namespace(), kClasses); }

  const TMachine fMachine{};
};

TEST_F(LinuxServer, IsDescribed) {
  const TTexts reasons = ReasonsOf(*fMachine.Namespace());
  EXPECT_EQ(reasons.at("VORNSG_SCSIDevice"), "/sys/class/scsi_generic: No such file or directory");
  EXPECT_EQ(reasons.at("VORNSG_FileSystem"), "none was found");
  ExpectValues(Values(), kValues);
  const auto drive = fMachine.Namespace()->GetClass("VORNSG_DiskDrive", {});
  const auto unit = drive->GetPropertyDecl("MaxMediaSize", {})->GetQualifier("PUnit");
  EXPECT_EQ(unit->GetValue(), TCIMValue("byte * 10^3"));
}

TEST_F(LinuxServer, IsTiedToItsDevices) {
  const auto ns = fMachine.Namespace();
  std::vector<boost::shared_ptr<ICIMInstance>> devices;
  const auto device = ns->GetClass("VORNSG_LogicalDevice", {});
  device->EnumerateInstances(TAddToVectorCallback(devices), true, {});
  EXPECT_TRUE(device->IsAbstract({}));
  EXPECT_TRUE(ns->GetClass("VORNSG_SystemDevice", {})->IsAssociation({}));
  const auto ties = InstancesOf(*ns, "VORNSG_SystemDevice");
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_DiskDrive").size(), 2U);     // not loop0 and the second path
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_EthernetPort").size(), 1U);  // not lo and what is no text
  ASSERT_EQ(ties.size(), devices.size());
  for (const auto& tie : ties) {
    const auto end = [&tie](const char* name) {
      const TCIMReference reference = tie->GetProperty(name, {})->GetValue();
      return boost::dynamic_pointer_cast<ICIMInstance>(reference.GetCIMElement());
    };
    EXPECT_EQ(std::count(devices.begin(), devices.end(), end("PartComponent")), 1);
    EXPECT_EQ(end("GroupComponent"), InstancesOf(*ns, "VORNSG_ComputerSystem").at(0));
  }
}

TEST_F(LinuxServer, HasNullsForWhatItsFilesDoNotTell) {
  const std::string eth = "sys/class/net/eth0/";
  const std::string pci = "sys/bus/pci/devices/0000:3b:00.0/";
  // File, its text, what is null, why.
  const std::vector<std::array<std::string, 4>> rows = {
      {"proc/meminfo", "MemTotal: 64 MB", "TotalVisibleMemorySize", "not in kB"},
      {"proc/meminfo", std::string(70000, 'x'), "FreePhysicalMemory", "more than 64 KiB"},
      {"proc/stat", "btime 253402300800", "LastBootUpTime", "no valid date"},
      {"proc/uptime", "-1.00 2.00", "SystemUpTime", "no number of seconds"},
      {"proc/sys/kernel/ostype", "GNU/kFreeBSD", "OSType", "the kernel is 'GNU/kFreeBSD', not"},
      {"proc/loadavg", "0.5 -1.0 2", "LoadAverage5", "not three numbers"},
      {"sys/block/sda/removable", "1", "/dev/sdaMaxMediaSize", "on the medium"},
      {"sys/block/sda/size", "36893488147419103", "/dev/sdaMaxMediaSize", "range"},
      {"sys/block/sda/ro", "2", "/dev/sdaReadOnly", "neither 0 nor 1"},
      {eth + "addr_assign_type", "3", "eth0PermanentAddress", "was assigned"},
      {eth + "address", "00:11", "eth0CurrentAddress", "no Ethernet address"},
      {eth + "speed", "-1", "eth0Speed", "not known to the driver"},
      {eth + "duplex", "unknown", "eth0FullDuplex", "not known to the driver"},
      {pci + "vendor", "0x18086", "0000:3b:00.0Name", "'0x18086' is out of range"},
      {pci + "uevent", "PCI_ID=8086:1572", "0000:3b:00.0Driver", "no driver is bound"}};
  for (const auto& [file, text, name, reason] : rows) {
    SetUp();
    fMachine.Write(file, text);
    const std::string told = Values()[name];
    EXPECT_NE(told.find(reason), std::string::npos) << name << ": " << told;
  }
}

TEST_F(LinuxServer, IsNotAnotherOneWhereItMayNotBeRead) {
  fMachine.Write("etc/hostname", "other");
  fMachine.Write("etc/os-release", "NAME=This");
  fMachine.Write("usr/lib/os-release", "NAME=Other");
  fMachine.Write("etc/fstab", "/dev/sda1 / ext4 defaults 0 0");
  fMachine.Write("sys/block/cciss!c0d0/serial", "other");
  fMachine.Write("sys/class/scsi_generic/sg0/device/type", "0");
  fMachine.Write("sys/devices/system/cpu/cpu0/cache/index0/level", "1");
  ExpectDenied(fMachine, R"(
.: proc=NumberOfProcesses
proc: mounts=VORNSG_FileSystem; sys/kernel/hostname=CSName
etc: os-release=Name
sys/class: scsi_generic=VORNSG_SCSIDevice; net=VORNSG_EthernetPort; dmi=Manufacturer
sys/class/net/eth0: type=VORNSG_EthernetPort
sys/block: cciss!c0d0/device/serial=/dev/cciss/c0d0SerialNumber
sys/devices/system/cpu/cpu0: cache=VORNSG_CacheMemory
)");
}

TEST_F(LinuxServer, MayHaveManyProcessorsAndFileSystems) {
  std::string processors, mounts;
  for (int i = 0; i < 1024; ++i) processors += Processor(i, i / 512);
  for (int i = 0; i < 5000; ++i) mounts += "x /" + std::to_string(i) + " ext4 rw 0 0\n";
  fMachine.Write("proc/cpuinfo", processors);
  fMachine.Write("proc/mounts", mounts);
  TTexts values = Values();
  EXPECT_EQ(values["CPU1NumberOfLogicalProcessors"], "512");
  EXPECT_EQ(InstancesOf(*fMachine.Namespace(), "VORNSG_FileSystem").size(), 5000U);
}

const char* const kMounts = R"(
/: FileSystemType=ext4; ReadOnly=false; AvailableSpace=not asked: not mounted on this machine
/: TotalInodes=not asked: not mounted on this machine
/mnt/my nfs: FileSystemType=nfs4; ReadOnly=true; AvailableSpace=not asked: may hang
/mnt/my nfs/deep: FileSystemType=xfs; FileSystemSize=not asked: may hang
/tmp: FileSystemType=fuse.x; FreeInodes=not asked: may hang
/dav: Device=https://[removed]@srv/x
)";

TEST_F(LinuxServer, HasFileSystems) {
  fMachine.Write("proc/mounts",
                 "/dev/sda1 / ext4 rw 0 0\nsrv:/x /mnt/my\\040nfs nfs4 ro,hard 0 0\n"
                 "/dev/sdb /mnt/my\\040nfs/deep xfs rw 0 0\nnone /tmp fuse.x rw 0 0\n"
                 "https://me:a/b@c@srv/x /dav fuse.davfs rw 0 0\n");
  ExpectValues(Values(), kMounts);
  EXPECT_EQ(InstancesOf(*fMachine.Namespace(), "VORNSG_FileSystem").size(), 5U);

  fs::remove(fMachine.Path() / "proc/mounts");
  fMachine.Write("etc/fstab", "UUID=1 / btrfs x 0 0\n");
  EXPECT_EQ(Values().at("/Device"), "UUID=1");
}

TEST(LinuxThisMachine, KnowsTheSpaceOfWhatIsMounted) {
  const std::string mounts = ReadWholeFile("/proc/self/mounts");
  if (mounts.find(" / ") == std::string::npos) GTEST_SKIP() << "nothing is mounted at /: a chroot";
  const std::string before = std::to_string(fs::space("/").capacity);
  const std::string size = ValuesOf(*Describe({}), kClasses)["/FileSystemSize"];
  if (size == "not asked: may hang") GTEST_SKIP() << "/ is of no kind that is local for sure";
  if (size == before) return;
  EXPECT_EQ(size, std::to_string(fs::space("/").capacity));  // it may have grown meanwhile
}

}  // namespace
}  // namespace NVORNQDX20
