// SPDX-License-Identifier: Apache-2.0
// What becomes of the texts that firmware and system files hold, and of files that are not right.
#include "linux/machine.h"

#include <array>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;
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

/// Files that are not what they should be.
class LinuxFiles : public ::testing::Test {
 protected:
  LinuxFiles() { fMachine.WriteDMI("product_serial", "1234567"); }
  /// Puts a symbolic link in the place of os-release.
  void Link(const std::string& target) const {
    const fs::path link = fMachine.Root() / "etc/os-release";
    fs::create_directories(link.parent_path());
    fs::remove(link);
    fs::create_symlink(target, link);
  }

  const TMachine fMachine;
  const TTempDir fFolder;
  const std::string fOutside = fFolder.Write("os-release", "NAME=outside");
  const fs::path fSerial = fMachine.Root() / "sys/class/dmi/id/product_serial";
};

TEST_F(LinuxFiles, NoLinkLeadsOutOfTheTree) {
  fMachine.Write("share/release", "NAME=inside");
  for (const auto& target : {fOutside, "../../../../../../../.." + fOutside}) {
    Link(target);
    EXPECT_EQ(fMachine.OS("Name"), "") << target;
  }
  for (const char* target : {"/share/release", "../../../share/release"}) {
    Link(target);
    EXPECT_EQ(fMachine.OS("Name"), "inside") << target;
  }
}

TEST_F(LinuxFiles, OnlyRegularFilesAreRead) {
  fs::remove(fSerial);
  ASSERT_EQ(::mkfifo(fSerial.c_str(), 0600), 0);
  ::alarm(30);  // opening it could wait for ever
  EXPECT_EQ(fMachine.Reasons()["SerialNumber"],
            "/sys/class/dmi/id/product_serial: not a regular file");
  ::alarm(0);
}

TEST_F(LinuxFiles, AMissingPermissionIsNamed) {
  const uid_t user = ::geteuid();
  fs::permissions(fMachine.Root(), fs::perms::all);
  fs::permissions(fSerial, fs::perms::none);
  ASSERT_EQ(::seteuid(user == 0 ? 65534 : user), 0);  // root may read anything
  const std::string reason = fMachine.Reasons()["SerialNumber"];
  ASSERT_EQ(::seteuid(user), 0);
  EXPECT_EQ(reason, "/sys/class/dmi/id/product_serial: Permission denied");
}

}  // namespace
}  // namespace NVORNQDX20
