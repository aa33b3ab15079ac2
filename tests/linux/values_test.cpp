// SPDX-License-Identifier: Apache-2.0
// What becomes of the texts that firmware and system files hold.
#include "linux/machine.h"

#include <array>
#include <utility>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TRows = std::vector<std::pair<std::string, std::string>>;

TEST(LinuxDMI, TakesPlaceholdersForMissing) {
  const TMachine machine;
  for (const std::string text : {"To be filled by O.E.M.", "SYSTEM SERIAL NUMBER", " None ", "n/a",
                                 "0123456789", "0000000", "00000000-0000", "......"}) {
    machine.WriteDMI("product_serial", text);
    EXPECT_EQ(machine.System("SerialNumber"), "(null)") << text;
    EXPECT_NE(machine.Reasons()["SerialNumber"].find("placeholder text '"), std::string::npos);
  }
  machine.WriteDMI("product_serial", " \t ");
  EXPECT_EQ(machine.Reasons()["SerialNumber"], "/sys/class/dmi/id/product_serial: empty");
}

TEST(LinuxDMI, KeepsWhatCanBePrintedAndIsNoPlaceholder) {
  const TRows rows = {
      {"Z\x1b[31mZ\x07", "Z[31mZ"},   {"\xff\xfeZ\xc3", "Z"},     {"\xed\xa0\x80Z", "Z"},
      {"Z\xc2\x9bZ", "ZZ"},           {"\xc3(Z", "(Z"},           {std::string("Z\0Z", 3), "ZZ"},
      {"caf\xc3\xa9", "caf\xc3\xa9"}, {"Z\nsecond line", "Z"},    {"00000001", "00000001"},
      {"0000A00", "0000A00"},         {"Default A", "Default A"}, {"\xc3\xa9", "\xc3\xa9"}};
  const TMachine machine;
  for (const auto& [raw, kept] : rows) {
    machine.WriteDMI("product_serial", raw);
    EXPECT_EQ(machine.System("SerialNumber"), kept);
  }
}

TEST(LinuxDMI, AddsTypeAndModelOnlyWhereTheMakerGivesThem) {
  // Name, vendor and SKU; then the product name.
  const std::array<std::string, 4> rows[] = {
      {"Loftnode", "VORN", "47111AB", "Loftnode -[47111AB]-"},
      {"Loftnode", "Vorn Corp.", "4711 AB", "Loftnode -[4711 AB]-"},
      {"Loftnode -[8888222]-", "VORN", "47111AB", "Loftnode -[8888222]-"},
      {"8888222", "VORN", "47111AB", "8888222"},
      {"Loftnode", "VORN", "4711-AB", "Loftnode"},
      {"Loftnode", "VORN", "47111ABC", "Loftnode"},
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

TEST(LinuxOperatingSystem, IsReadAsAShellReadsIt) {
  const TRows rows = {{"NAME=\"Two words\"\r", "Two words"},
                      {"NAME='Single \\$x \"'", "Single \\$x \""},
                      {R"(NAME="a \"b\" \$c \`d \\ \n")", R"(a "b" $c `d \ \n)"},
                      {"NAME=a\\ b", "a b"},
                      {"  NAME=Two words", "Two"},
                      {"#NAME=Comment\nXNAME=Other\nNAME=Right", "Right"},
                      {"NAME=First\nNAME=Last\nNAME=\"Unterminated", "Last"},
                      {"NAME=\"\"\n=x\n\nno assignment", "Linux"}};
  const TMachine machine;
  machine.Write("proc/sys/kernel/ostype", "Linux\n");
  for (const auto& [text, name] : rows) {
    machine.Write("etc/os-release", text);
    EXPECT_EQ(machine.OS("Name"), name) << text;
  }
}

TEST(LinuxOperatingSystem, IsOfTheTypeThatTheKernelSays) {
  const TMachine machine;
  machine.Write("usr/lib/os-release", "NAME=Debian\n");
  machine.Write("proc/sys/kernel/ostype", "GNU/kFreeBSD\n");
  EXPECT_EQ(machine.OS("Name") + machine.OS("OSType"), "Debian(null)");
  EXPECT_EQ(machine.Reasons()["OSType"], "the kernel is 'GNU/kFreeBSD', not Linux");
}

TEST(LinuxHostName, IsTheKernelsElseTheConfiguredOne) {
  const TMachine machine;
  machine.Write("etc/hostname", "# the name\n\n  configured  \nsecond\n");
  for (const auto& [kernel, name] : TRows{{"(none)\n", "configured"}, {"running\n", "running"}}) {
    EXPECT_EQ(machine.System("Name"), "configured");
    machine.Write("proc/sys/kernel/hostname", kernel);
    EXPECT_EQ(machine.System("Name"), name);
  }
}

}  // namespace
}  // namespace NVORNQDX20
