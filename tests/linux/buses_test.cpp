// SPDX-License-Identifier: Apache-2.0
// What is on the buses of a made-up machine.
#include "linux/machine.h"
#include "linux/smbios_builder.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

const std::string kPCI = "sys/bus/pci/devices/";

/// A function with all files, one of an older kernel, a bridge, one of which only what modules are
/// found by was copied, one whose numbers nobody can read, and one in a wide domain.
const char* const kFunctions = R"(
sys/bus/pci/devices/0000:3b:00.1: vendor=0x8086; device=0x1572; class=0x020002; revision=0x02
sys/bus/pci/devices/0000:3b:00.1: subsystem_vendor=0x15d9; subsystem_device=0x0001; irq=77
sys/bus/pci/devices/0000:3b:00.1: numa_node=1; current_link_speed=8.0 GT/s PCIe
sys/bus/pci/devices/0000:3b:00.1: current_link_width=4; max_link_speed=2.5 GT/s; max_link_width=255
sys/bus/pci/devices/0000:00:02.0: vendor=0x8086; device=0x1572; class=0x03ff00
sys/bus/pci/devices/0000:00:02.0: subsystem_vendor=0x8086; subsystem_device=0x1572; irq=0
sys/bus/pci/devices/0000:00:02.0: current_link_speed=Unknown speed; uevent=DRIVER=old
sys/bus/pci/devices/0000:00:03.0: irq=1
sys/bus/pci/devices/0000:00:04.0: irq=1
sys/bus/pci/devices/0000:00:05.0: modalias=pci:v00008086d00001572sv000015D9sd00000009bc02sc00i00
sys/bus/pci/devices/10000:0a:1f.7: vendor=0x1af4; device=0x1041; class=0xff0000; revision=0
sys/bus/pci/devices/10000:0a:1f.7: subsystem_vendor=0x0; subsystem_device=0x0; uevent=A=1
sys/bus/pci/slots/4: address=0000:3b:00
sys/bus/pci/slots/5: address=10000:0a
)";

const char* const kPCINames =
    "# 8086  a comment\n\n0001  Other\n\t1572  Not this one\nno name\n\t1572  nor this one\n"
    "15d9  Card Maker\n"
    "8086  Chip Maker\n\t1571  Other\n\t\t15d9 0001  Other\n\t1572  10 GbE  SFP+ \n"
    "\t\t15d9 0001  Card\xff 7\n\t\t\t15d9 0001  too deep\n"
    "8086  The same again\n\nC 02  Network\n\t00  Ethernet\nC 03  Display\n";

const char* const kPCIValues = R"(
0000:3b:00.1: Name=8086:1572; VendorName=Chip Maker; DeviceName=10 GbE  SFP+; SubsystemName=Card 7
0000:3b:00.1: SubsystemVendorName=Card Maker; ClassDescription=Ethernet; ProgrammingInterface=2
0000:3b:00.1: PhysicalSlot=4; Driver=i40e; DriverModule=i40e_module; IOMMUGroup=12; Interrupt=77
0000:3b:00.1: CurrentLinkSpeed=8000000000; MaxLinkSpeed=2500000000; CurrentLinkWidth=4
0000:3b:00.1: MaxLinkWidth=/sys/bus/pci/devices/0000:3b:00.1/max_link_width: not known
0000:3b:00.1: DomainNumber=0; BusNumber=59; DeviceNumber=0; FunctionNumber=1; NUMANode=1
0000:00:02.0: RevisionID=7; SubsystemName=10 GbE  SFP+; ClassDescription=Display; Driver=old
0000:00:02.0: CurrentLinkSpeed=/sys/bus/pci/devices/0000:00:02.0/current_link_speed: not known
0000:00:02.0: PhysicalSlot=in no slot that is known; Interrupt=has none; IOMMUGroup=is in none
0000:00:03.0: VendorID=32902; ClassCode=2; SubclassCode=0; ProgrammingInterface=16; RevisionID=3
0000:00:03.0: SubsystemID=a bridge; SubsystemName=a bridge; ClassDescription=Ethernet
0000:00:04.0: Name=/sys/bus/pci/devices/0000:00:04.0/config: the function does not answer
0000:00:05.0: VendorID=32902; PCIDeviceID=5490; SubsystemVendorID=5593; SubsystemID=9
0000:00:05.0: SubsystemName=/usr/share/hwdata/pci.ids: has no '8086 1572 15d9 0009'
0000:00:05.0: RevisionID=/sys/bus/pci/devices/0000:00:05.0/revision: No such file or directory
10000:0a:1f.7: DomainNumber=65536; BusNumber=10; DeviceNumber=31; FunctionNumber=7; PhysicalSlot=5
10000:0a:1f.7: SubsystemID=0; SubsystemVendorName=is in no subsystem; DriverModule=no driver is bound to it
)";

TEST(LinuxBuses, HavePCIFunctions) {
  const TMachine machine;
  machine.WriteFiles(kFunctions);
  machine.Write("usr/share/hwdata/pci.ids", kPCINames);
  const auto bytes = [](std::string first) { return first + std::string(64 - first.size(), '\0'); };
  machine.Write(kPCI + "0000:00:02.0/config", bytes({"\x01\x02\x03\x04\0\0\0\0\x07", 9}));
  machine.Write(kPCI + "0000:00:03.0/config",
                bytes({"\x86\x80\x72\x15\0\0\0\0\x03\x10\0\x02\0\0\x81", 15}));
  machine.Write(kPCI + "0000:00:04.0/config", std::string(64, '\xff'));
  const fs::path driver = machine.Path() / "sys/bus/pci/drivers/i40e";
  fs::create_directories(driver);
  fs::create_symlink("../../../../module/i40e_module", driver / "module");
  const fs::path function = machine.Path() / (kPCI + "0000:3b:00.1");
  fs::create_symlink("../../../../bus/pci/drivers/i40e", function / "driver");
  fs::create_directories(machine.Path() / "sys/module/i40e_module");
  fs::create_symlink("../../../../kernel/iommu_groups/12", function / "iommu_group");
  const auto values = [&machine] { return ValuesOf(*machine.Namespace(), {"PCIDevice"}); };
  ExpectValues(values(), kPCIValues);

  fs::remove_all(machine.Path() / "usr");
  fs::remove_all(machine.Path() / "sys/bus/pci/slots");
  ExpectValues(values(),
               "0000:3b:00.1: VendorName=no list of names: /usr/share/misc/pci.ids does not exist\n"
               "0000:3b:00.1: PhysicalSlot=/sys/bus/pci/slots: No such file or directory");
}

/// A root hub, a hub behind it with a keyboard that has two interfaces, what has no class and no
/// interfaces, and what is only half there.
const char* const kUSBDevices = R"(
sys/bus/usb/devices/usb1: idVendor=1d6b; idProduct=0002; bDeviceClass=09; maxchild=16; speed=480
sys/bus/usb/devices/usb1: version= 2.00; bcdDevice=0601; bMaxPower=0mA; serial=0000:00:14.0
sys/bus/usb/devices/1-0:1.0: bInterfaceClass=09; uevent=DRIVER=hub
sys/bus/usb/devices/1-1: idVendor=046d; idProduct=0001; bDeviceClass=09; maxchild=4
sys/bus/usb/devices/1-1.4: idVendor=046d; idProduct=c31c; bDeviceClass=00; bDeviceSubClass=00
sys/bus/usb/devices/1-1.4: bDeviceProtocol=ff; speed=1.5; version= 1.10; bcdDevice=6402
sys/bus/usb/devices/1-1.4: bMaxPower= 98mA; bMaxPacketSize0=8; bNumConfigurations=1; busnum=1
sys/bus/usb/devices/1-1.4: bConfigurationValue=; devnum=17; manufacturer=Keys; serial=00000000
sys/bus/usb/devices/1-1.4:1.0: bInterfaceClass=03; uevent=DRIVER=usbhid
sys/bus/usb/devices/1-1.4:1.1: bInterfaceClass=03; uevent=DRIVER=usbhid
sys/bus/usb/devices/1-1.4:1.2: bInterfaceClass=0b; uevent=A=1
sys/bus/usb/devices/2-1: idVendor=xyz; bDeviceClass=00; speed=unknown
sys/bus/usb/devices/usb3: speed=20000; bMaxPacketSize0=9
sys/bus/usb/devices/9-9:1.0: bInterfaceClass=03
)";

const char* const kUSBNames =
    "046d  Keys, Inc.\n\tc31c  Keyboard\nAT 0100  Streaming\nC 00  (Defined at Interface level)\n"
    "C 03  Human Interface Device\n\t01  Boot\nC 09  Hub\nC 0b  Chip/SmartCard\n";

const char* const kUSBValues = R"(
usb1: CreationClassName=VORNSG_USBHub; NumberOfPorts=16; Speed=480000000; USBVersion=512
usb1: MaxPower=0; Drivers={ hub }; ClassDescription=Hub; SerialNumber=0000:00:14.0
usb1: VendorName=/usr/share/misc/usb.ids: has no '1d6b'
1-1: CreationClassName=VORNSG_USBHub; Drivers=no driver is bound to its interfaces
1-1.4: CreationClassName=VORNSG_USBDevice; Name=046d:c31c; VendorID=1133; ProductID=49948
1-1.4: VendorName=Keys, Inc.; ProductName=Keyboard; DeviceReleaseNumber=25602; Manufacturer=Keys
1-1.4: ClassCode=0; ProtocolCode=255; InterfaceClassCodes={ 3, 11 }; Drivers={ usbhid }
1-1.4: ClassDescription=Human Interface Device, Chip/SmartCard; Speed=1500000; USBVersion=272
1-1.4: MaxPower=98; MaxPacketSize=8; NumberOfConfigs=1; BusNumber=1; DeviceNumber=17
1-1.4: CurrentConfigValue=/sys/bus/usb/devices/1-1.4/bConfigurationValue: empty
1-1.4: SerialNumber=/sys/bus/usb/devices/1-1.4/serial: placeholder text '00000000'
2-1: VendorID=/sys/bus/usb/devices/2-1/idVendor: '0xxyz' is no valid number
2-1: Speed=/sys/bus/usb/devices/2-1/speed: not known; ClassDescription=(Defined at Interface level)
usb3: CreationClassName=VORNSG_USBHub; Speed=20000000000
usb3: MaxPacketSize=/sys/bus/usb/devices/usb3/bMaxPacketSize0: 512 bytes are out of range
)";

TEST(LinuxBuses, HaveUSBDevices) {
  const TMachine machine;
  machine.WriteFiles(kUSBDevices);
  machine.Write("usr/share/misc/usb.ids", kUSBNames);
  const auto ns = machine.Namespace();
  ExpectValues(ValuesOf(*ns, {"USBDevice", "USBHub"}), kUSBValues);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_USBDevice").size(), 2U);  // hubs and interfaces are none
}

const char* const kSlotValues = R"(
Slot: ElementName=PCI 1; Number=1; SlotTypeDescription=PCI; ConnectorLayout=16; MaxDataWidth=32
Slot: CurrentUsage=3; SupportsHotPlug=false; BusAddress=0000:02:1f.7
Slot: MaxLinkWidth=SMBIOS structure of type 9: has no such width
Slot 2: SlotTypeDescription=PCI Express 3 x16; ConnectorLayout=23; MaxLinkWidth=5; CurrentUsage=4
Slot 2: SupportsHotPlug=true; BusAddress=SMBIOS structure of type 9: bus is not told
Slot 2: MaxDataWidth=SMBIOS structure of type 9: has no such width
Slot 3: SlotTypeDescription=M.2 Socket 3; ConnectorLayout=7; MaxLinkWidth=4
Slot 3: BusAddress=SMBIOS structure of type 9: has 12 bytes, none at offset 16
Slot 4: SlotTypeDescription=SMBIOS has no text for type 183
)";

TEST(LinuxBuses, HaveSlots) {
  const TMachine machine;
  machine.Write("sys/firmware/dmi/tables/DMI",
                SMBIOSStructure(9, 9, "01 06 05 03 03 0100 02 01 0000 02 FF", {"PCI 1"}) +
                    SMBIOSStructure(9, 10, "01 B6 0B 04 04 0600 04 03 FFFF FF FF", {"Riser"}) +
                    SMBIOSStructure(9, 11, "01 17 0A 04 01 0700 04", {"M2"}) +
                    SMBIOSStructure(9, 12, "00 B7 0B"));
  ExpectValues(ValuesOf(*machine.Namespace(), {"Slot"}), kSlotValues);
}

}  // namespace
}  // namespace NVORNQDX20
