// SPDX-License-Identifier: Apache-2.0
// What the machine and its operating system are called.
#include "linux/machine.h"

#include <array>

namespace NVORNQDX20 {
namespace {

TEST(LinuxProductName, HasTypeAndModelOnlyWhereTheMakerGivesThem) {
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
    machine.WriteDMI("product_name", name);
    machine.WriteDMI("sys_vendor", vendor);
    machine.WriteDMI("product_sku", sku);
    EXPECT_EQ(machine.System("ProductName"), productName) << sku;
  }
}

TEST(LinuxOperatingSystem, IsNamedByTheDistributionElseByTheKernel) {
  const TMachine machine;
  machine.Write("proc/sys/kernel/ostype", "Linux\n");
  EXPECT_EQ(machine.OS("Name"), "Linux");
  machine.Write("usr/lib/os-release", "NAME=Shipped");
  EXPECT_EQ(machine.OS("Name"), "Shipped");
  machine.Write("etc/os-release", "NAME=\"\"\nVERSION_ID=9\n");
  EXPECT_EQ(machine.OS("Name") + machine.OS("Version"), "Linux9");
}

TEST(LinuxOperatingSystem, IsOfTheTypeThatTheKernelSays) {
  const TMachine machine;
  machine.Write("proc/sys/kernel/ostype", "GNU/kFreeBSD\n");
  EXPECT_EQ(machine.Reasons()["OSType"], "the kernel is 'GNU/kFreeBSD', not Linux");
}

}  // namespace
}  // namespace NVORNQDX20
