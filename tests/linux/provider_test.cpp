// SPDX-License-Identifier: Apache-2.0
#include "linux/machine.h"
#include "support/log_capture.h"
#include "support/provider_suite.h"

#include <algorithm>
#include <array>

namespace NVORNQDX20 {
namespace {

std::ptrdiff_t CountEmptyClasses(const ICIMNamespace& ns) {
  std::ptrdiff_t count = 0;
  std::vector<boost::shared_ptr<ICIMClass>> roots;
  ns.EnumerateClasses(TAddToVectorCallback(roots), {});
  for (const auto& root : roots) {
    for (const auto& each : NModel::WithSubclasses(root)) {
      count += !each->IsAbstract({}) && NModel::InstancesOf(*each).empty() ? 1 : 0;
    }
  }
  return count;
}

TEST(LinuxProvider, SaysOnceWhyAValueOrAClassIsMissing) {
  const TMachine machine;
  machine.Write("proc/sys/kernel/ostype", "Linux\n");
  const TLogCapture log;
  const auto ns = machine.Namespace();
  const auto reasons = ReasonsOf(*ns);
  const std::string noFile = ": No such file or directory";
  EXPECT_EQ(reasons.at("CSName"), "/etc/hostname" + noFile);
  EXPECT_EQ(reasons.at("Manufacturer"), "no DMI table: /sys/class/dmi/id does not exist");
  EXPECT_EQ(reasons.at("Version"),
            "no VERSION_ID in os-release, and /proc/sys/kernel/osrelease" + noFile);
  const auto messages = log.Messages();
  const auto missing = InstancesOf(*ns, "VORNSG_UnavailableValue");
  EXPECT_EQ(messages.size(), missing.size());
  const std::string last = "1 linux: VORNSG_OperatingSystem.Version: " + reasons.at("Version");
  EXPECT_EQ(std::count(messages.begin(), messages.end(), last), 1);
  const auto ofClass = [](const auto& one) { return TextOf(*one, "PropertyName").empty(); };
  EXPECT_EQ(std::count_if(missing.begin(), missing.end(), ofClass), CountEmptyClasses(*ns));
  EXPECT_EQ(machine.Value("VORNSG_ComputerSystem", "Name"), "");  // a key, which is never null
}

TEST(LinuxProvider, SaysWhichDevicesItLeavesOut) {
  const TMachine machine;
  for (const char* name : {".hid0", "eth0", "e\x01th1"}) {
    machine.Write(std::string("sys/class/net/") + name + "/type", "1\n");
  }
  machine.Write("sys/class/net/bonding_masters", "bond0\n");
  std::filesystem::create_directories(machine.Path() / "sys/block");
  create_symlink("nowhere", machine.Path() / "sys/class/net/eth9");
  create_symlink("nowhere", machine.Path() / "sys/block/sdz");
  machine.Write("sys/block/nvme0c0n1/hidden/no_file", "");
  machine.Write("sys/block/nvme0c0n1/size", "8\n");
  machine.Write("sys/block/sda/removable/no_file", "");
  machine.Write("sys/block/sda/size", "8\n");
  machine.Write("sys/devices/system/cpu/present", "\n");
  machine.Write("sys/devices/system/cpu/online", "0\n");
  const auto ns = machine.Namespace();
  auto reasons = ReasonsOf(*ns);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_EthernetPort").size(), 2U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_DiskDrive").size(), 1U);
  const std::string ports =
      "/sys/class/net/eth1: the name is not printable; /sys/class/net/eth9: a link that leads "
      "nowhere";
  const std::string disks =
      "/sys/block/nvme0c0n1/hidden: not a regular file; /sys/block/sdz: a link that leads nowhere";
  EXPECT_EQ(reasons["VORNSG_EthernetPort"], ports);
  EXPECT_EQ(reasons["VORNSG_DiskDrive"], disks);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, disks, reasons["VORNSG_SystemDevice"]);
  EXPECT_EQ(reasons["/dev/sdaMaxMediaSize"], "/sys/block/sda/removable: not a regular file");
  EXPECT_EQ(reasons["OfflineProcessors"], "/sys/devices/system/cpu/present: no list of processors");
}

TEST(LinuxProvider, GivesTypeAndModelOnlyWhereTheMakerDoes) {
  // Name, vendor and SKU; then the product name.
  const std::array<std::string, 4> rows[] = {
      {"Loftnode", "VORN", "47111AB", "Loftnode -[47111AB]-"},
      {"Loftnode", "Vorn Corp.", "4711 AB", "Loftnode -[4711 AB]-"},
      {"Loftnode -[8888222]-", "VORN", "47111AB", "Loftnode -[8888222]-"},
      {"8888222", "VORN", "47111AB", "8888222"},
      {"Loftnode", "VORN", "4711-AB", "Loftnode"},
      {"Loftnode", "Someone else", "47111AB", "Loftnode"},
      {"None", "VORN", "47111AB", "(null)"}};
  const TMachine machine;
  for (const auto& [name, vendor, sku, productName] : rows) {
    machine.Write("sys/class/dmi/id/product_name", name);
    machine.Write("sys/class/dmi/id/sys_vendor", vendor);
    machine.Write("sys/class/dmi/id/product_sku", sku);
    EXPECT_EQ(machine.Value("VORNSG_ComputerSystem", "ProductName"), productName) << sku;
  }
  for (const std::string part : {"product_sku", "sys_vendor"}) {  // that cannot be read
    machine.Write("sys/class/dmi/id/product_name", "Loftnode");
    std::filesystem::remove(machine.Path() / "sys/class/dmi/id" / part);
    std::filesystem::create_directory(machine.Path() / "sys/class/dmi/id" / part);
    EXPECT_EQ(ReasonsOf(*machine.Namespace()).at("ProductName"),
              "/sys/class/dmi/id/" + part + ": not a regular file");
  }
}

TEST(LinuxProvider, NamesTheSystemAsTheDistributionElseAsTheKernelDoes) {
  const TMachine machine;
  const std::array<std::string, 3> rows[] = {
      {"proc/sys/kernel/ostype", "Linux\n", "Linux"},
      {"usr/lib/os-release", "NAME=Shipped\nVERSION_ID=8", "Shipped"},
      {"etc/os-release", "NAME=\"\"\nVERSION_ID=9\n", "Linux"}};
  for (const auto& [file, text, name] : rows) {
    machine.Write(file, text);
    EXPECT_EQ(machine.Value("VORNSG_OperatingSystem", "Name"), name);
  }
  EXPECT_EQ(machine.Value("VORNSG_OperatingSystem", "Version"), "9");
}

boost::shared_ptr<ICIMNamespace> DescribeThisMachine() { return Describe({}); }

boost::shared_ptr<ICIMNamespace> DescribeSomeMachine() {
  const TMachine machine;
  const std::string folder = "sys/class/scsi_generic/";
  machine.Write("etc/hostname", "srv \"1\"\n");
  machine.Write(folder + "sg0/device/type", "0\n");
  machine.Write(folder + "sg0/device/model", "Flash Disk      \n");
  machine.Write(folder + "sg1/device/type", "31\n");
  machine.Write(folder + "sg1/device/vendor", "        \n");
  return machine.Namespace();
}

TEST(LinuxProvider, DescribesSCSIDevices) {
  std::string texts;
  for (const auto& device : InstancesOf(*DescribeSomeMachine(), "VORNSG_SCSIDevice")) {
    for (const char* property : {"DeviceID", "DeviceType", "VendorID", "ProductID"}) {
      texts += TextOf(*device, property) + ";";
    }
  }
  EXPECT_EQ(texts,
            "/dev/sg0;Direct Access Device;(null);Flash Disk;"
            "/dev/sg1;Device Type 31;;(null);");  // blank on the device is not missing
}

INSTANTIATE_TEST_SUITE_P(Linux, ProvidedNamespace,
                         ::testing::Values(&DescribeSomeMachine, &DescribeThisMachine));

}  // namespace
}  // namespace NVORNQDX20
