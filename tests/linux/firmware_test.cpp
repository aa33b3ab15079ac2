// SPDX-License-Identifier: Apache-2.0
// What the firmware says of the machine, on made-up machines.
#include "linux/machine.h"
#include "linux/smbios_builder.h"

namespace NVORNQDX20 {
namespace {

const std::string kFolder = "sys/firmware/dmi/tables/";
const std::vector<std::string> kClasses = {
    "ComputerSystem", "Chassis",        "Card",   "BIOSElement",      "MemoryArray",
    "MemorySlot",     "PhysicalMemory", "Memory", "MemoryErrorCount", "MappedMemory"};

std::string Zeros(int count) { return std::string(static_cast<std::size_t>(count) * 2, '0'); }

/// Type 17: size, its extension, and what tells modules from each other.
std::string Module(std::uint16_t handle, const std::string& size, const std::string& extended,
                   const std::vector<std::string>& strings) {
  return SMBIOSStructure(17, handle,
                         "0010 FEFF 4800 4000" + size + "0900 01 02 1A 8000 600A 03 04 05 06 02" +
                             extended + "600A B004 0000 B004",
                         strings);
}

/// Two chassis, two boards, one array of five sockets.
std::string Table() {
  const std::string uuid = "00112233445566778899AABBCCDDEEFF";
  return SMBIOSStructure(0, 0, "01 02 00F0 03 FF" + Zeros(10) + "050E FFFF 2040",
                         {"Maker", "F4", "10/04/2018"}) +
         SMBIOSStructure(1, 1, "01 02 00 03" + uuid + "06 04 05",
                         {"Vendor", "Box", "System SN", "SKU-1", "Boxes"}) +
         SMBIOSStructure(2, 2, "01 02 00 03 00 09 04 0400 0A 00",
                         {"Vendor", "Main", "M1", "MIDDLE"}) +
         SMBIOSStructure(2, 3, "01 00 00 00", {"Old"}) +
         SMBIOSStructure(3, 4, "01 97 02 00 00 03030303 00000000 02 01 01 03 000000 03",
                         {"Case", "v7", "SKU-C"}) +
         SMBIOSStructure(3, 5, "00 01 00 00 00") +
         SMBIOSStructure(16, 0x1000, "03 03 06 00000080 FEFF 0500 0000000000010000") +
         Module(0x1100, "0040", "00000000", {"DIMM 0", "A", "Acme", "S1", "Dimm0_AssetTag", "P1"}) +
         Module(0x1101, "FF7F", "00000200", {"DIMM 0", "B", "Acme", "SerNum1", "T2", "P2"}) +
         Module(0x1102, "0082", "00000000", {"DIMM 2"}) +
         Module(0x1103, "0000", "00000000", {"DIMM 3"}) +
         Module(0x1104, "FFFF", "00000000", {"DIMM 3"}) +
         SMBIOSStructure(20, 0x1200, "00000000 FFFFFF00 0011 0000 FF 02 01") +
         SMBIOSStructure(19, 0x1300, "00000000 FFFFFF00 0010 02") +
         SMBIOSStructure(19, 0x1301,
                         "FFFFFFFF FFFFFFFF 0010 01 0000000001000000 FFFFFFFF01000000") +
         SMBIOSStructure(19, 0x1302, "01000000 00000000 0110 01") + SMBIOSStructure(127, 0x7F, "");
}

/// What stands before the colon is the instance.
const char* const kValues = R"(
srv1: Manufacturer=Vendor; ProductName=Box; Family=Boxes; SKUNumber=SKU-1
srv1: UUID=33221100-5544-7766-8899-aabbccddeeff
Chassis: Manufacturer=Case; Version=v7; SKU=SKU-C; ChassisPackageType=23; RackMountable=1
Chassis: ChassisTypeDescription=Rack Mount Chassis; LockPresent=true; Height=3.5
Chassis: NumberOfPowerCords=1
Chassis 2: ChassisTypeDescription=Other; LockPresent=false
Board: Manufacturer=Vendor; Model=Main; SerialNumber=M1; HostingBoard=true; Removable=false
Board: Replaceable=true; Location=MIDDLE; BoardType=10
Board 2: Manufacturer=Old
BIOS: Version=F4; ReleaseDate=20181004000000.000000+000; SystemRelease=5.14; ROMSize=34359738368
BIOS: SMBIOSVersion=3.2
BIOS: UEFI=/sys/firmware/efi: No such file or directory
Memory Array: Use=3; ErrorCorrection=6; MaximumMemoryCapacity=1099511627776; NumberOfSlots=5
A DIMM 0: Capacity=17179869184; Manufacturer=Acme; SerialNumber=S1; PartNumber=P1; MemoryType=26
A DIMM 0: FormFactor=8; MaxMemorySpeed=2656; Ranks=2; ConfiguredVoltage=1200; TotalWidth=72
A DIMM 0: InterleavePosition=2; MemoryTypeDescription=DDR4; Populated=true
B DIMM 0: Capacity=137438953472; DeviceLocator=DIMM 0; BankLabel=B
Memory Array Mapped Address: StartingAddress=0; EndingAddress=17179869183; Size=17179869184
Memory Array Mapped Address: PartitionWidth=2; MemoryArray=Memory Array
Memory Array Mapped Address 2: StartingAddress=4294967296; EndingAddress=8589934591
Memory Array Mapped Address 2: Size=4294967296
DIMM 2: Capacity=524288; MemoryArray=Memory Array
Memory 4: Populated=false; DeviceLocator=DIMM 3
Memory 5: Populated=true
)";

TEST(Firmware, DescribesTheMachine) {
  const TMachine machine;
  machine.WriteFiles("proc/sys/kernel: hostname=srv1");
  machine.Write(kFolder + "smbios_entry_point", SMBIOS3EntryPoint(3, 2));
  machine.Write(kFolder + "DMI", Table());
  const auto ns = machine.Namespace();
  ExpectValues(ValuesOf(*ns, kClasses), kValues);
  const std::string structure = "SMBIOS structure of type ";
  const std::map<std::string, std::string> reasons = {
      {"SerialNumber", "1: placeholder text 'System SN'"},
      {"ChassisUserTracking", "3: not specified"},
      {"BIOSControllerRelease", "0: has no release"},
      {"Board 2BoardType", "2: has 8 bytes, none at offset 13"},
      {"A DIMM 0PositionInRow", "20: unknown"},
      {"B DIMM 0SerialNumber", "17: placeholder text 'SerNum1'"},
      {"Memory Array Mapped Address 3Size", "19: ends before it begins"},
      {"Memory Array Mapped Address 3MemoryArray", "19: names no array of the table"},
      {"Memory 5Capacity", "17: the size is unknown"}};
  const TTexts values = ValuesOf(*ns, kClasses);
  for (const auto& [name, reason] : reasons) {
    const auto found = values.find(name);
    EXPECT_EQ(found == values.end() ? "(none)" : found->second, structure + reason) << name;
  }
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_PhysicalMemory").size(), 4U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_MemorySlot").size(), 5U);
  const std::map<std::string, std::size_t> ties = {{"ComputerSystemPackage", 2},
                                                   {"SystemBIOS", 1},
                                                   {"Container", 6},
                                                   {"ElementInConnector", 4},
                                                   {"Realizes", 0}};  // the sum is not known
  for (const auto& [name, count] : ties) {
    std::size_t whole = 0;
    for (const auto& tie : InstancesOf(*ns, "VORNSG_" + name)) {
      bool isWhole = true;
      for (const auto& property : NModel::PropertiesOf(*ns->GetClass("VORNSG_" + name, {}))) {
        const TCIMReference end = tie->GetProperty(property.fDecl->GetName(), {})->GetValue();
        isWhole = isWhole && end.GetCIMElement() != nullptr;
      }
      whole += isWhole ? 1 : 0;
    }
    EXPECT_EQ(whole, count) << name;
  }
}

TEST(Firmware, IsTakenFromElsewhereWithoutItsTable) {
  const TMachine machine;
  machine.WriteFiles(R"(
proc/sys/kernel: hostname=srv1
proc/device-tree: model=Board 7; compatible=maker,board7; serial-number=S9
sys/devices/system/memory: block_size_bytes=8000000; memory0/state=online; memory7/state=offline
sys/devices/system/memory: probe=0
sys/devices/system/edac/mc/mc0: mc_name=driver; dimm0/dimm_label=SLOT A; dimm0/size=4096
sys/devices/system/edac/mc/mc0: dimm0/dimm_ce_count=3; dimm0/dimm_ue_count=1; dimm1/size=0
sys/devices/system/edac/mc/mc0: dimm0/dimm_mem_type=Registered-DDR4; csrow0/size_mb=4096
sys/devices/system/edac/mc/mc1: csrow0/size_mb=512; csrow0/ce_count=5; csrow0/mem_type=DDR3
)");
  const TTexts values = ValuesOf(*machine.Namespace(), kClasses);
  ExpectValues(values, R"(
srv1: ProductName=Board 7; Manufacturer=maker; SerialNumber=S9
Memory: BlockSize=134217728; NumberOfBlocks=2; ConsumableBlocks=1; OnlineSize=134217728
Memory: InstalledSize=4831838208
SLOT A: Capacity=4294967296; MemoryTypeDescription=Registered-DDR4
mc0/dimm0: CorrectableErrors=3; UncorrectableErrors=1; ElementName=SLOT A; Controller=driver
mc0/dimm1: Capacity=0
mc1/csrow0: CorrectableErrors=5; Capacity=536870912; MemoryType=DDR3
)");
  EXPECT_EQ(values.count("mc0/csrow0Capacity"), 0U);
  EXPECT_EQ(values.count("mc0/dimm1Manufacturer"), 0U);
  machine.WriteFiles(R"(
sys/class/dmi/id: sys_vendor=V; chassis_type=23; chassis_serial=C1; board_name=B; bios_version=1
sys/class/dmi/id: bios_date=01/02/99; product_uuid=008844D0-2214-DF11-B89F-F50F715B14E8
)");
  ExpectValues(ValuesOf(*machine.Namespace(), kClasses), R"(
srv1: Manufacturer=V
: ProductName=/sys/class/dmi/id/product_name: No such file or directory
srv1: UUID=008844d0-2214-df11-b89f-f50f715b14e8
Chassis: SerialNumber=C1; RackMountable=1
Board: Model=B
BIOS: Version=1; ReleaseDate=19990102000000.000000+000
)");
}

TEST(Firmware, HasUUIDsInTheOrderOfItsVersion) {
  const TMachine machine;
  const auto read = [&](const std::string& entryPoint, const std::string& bytes) {
    machine.Write(kFolder + "smbios_entry_point", entryPoint);
    machine.Write(kFolder + "DMI", SMBIOSStructure(1, 1, "00 00 00 00" + bytes));
    return machine.Value("VORNSG_ComputerSystem", "UUID");
  };
  const std::string bytes = "00112233445566778899AABBCCDDEEFF";
  EXPECT_EQ(read(SMBIOS2EntryPoint(5, 1), bytes), "00112233-4455-6677-8899-aabbccddeeff");
  EXPECT_EQ(read(SMBIOS2EntryPoint(6, 1), bytes), "33221100-5544-7766-8899-aabbccddeeff");
  EXPECT_EQ(read("", bytes), "33221100-5544-7766-8899-aabbccddeeff");
  EXPECT_EQ(read("", Zeros(16)), "(null)");
  EXPECT_EQ(read("", std::string(32, 'F')), "(null)");
}

}  // namespace
}  // namespace NVORNQDX20
