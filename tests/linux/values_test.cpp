// SPDX-License-Identifier: Apache-2.0
// What becomes of the texts that firmware and system files hold, and of files that are not right.
#include "linux/machine.h"

#include <array>
#include <cerrno>
#include <iostream>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

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
  machine.Write("proc/sys/kernel/ostype", "GNU/kFreeBSD\n");
  EXPECT_EQ(machine.Reasons()["OSType"], "the kernel is 'GNU/kFreeBSD', not Linux");
}

TEST(LinuxHostName, IsTheKernelsElseTheConfiguredOne) {
  const TMachine machine;
  machine.Write("etc/hostname", "# the name\n\n  configured  \nsecond\n");
  for (const auto& [kernel, name] : TRows{{"(none)\n", "configured"}, {"running\n", "running"}}) {
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
    fMachine.Write("etc/os-release", "");
    fs::remove(fMachine.Path() / "etc/os-release");
    fs::create_symlink(target, fMachine.Path() / "etc/os-release");
  }

  const TMachine fMachine;
  const TTempDir fFolder;
  const std::string fOutside = fFolder.Write("os-release", "NAME=outside");
  const fs::path fSerial = fMachine.Path() / "sys/class/dmi/id/product_serial";
};

TEST_F(LinuxFiles, NoLinkLeadsOutOfTheTree) {
  fMachine.Write("share/release", "NAME=inside");
  for (const auto& [target, name] : TRows{{fOutside, ""},
                                          {"../../../../../../../.." + fOutside, ""},
                                          {"/share/release", "inside"},
                                          {"../../../share/release", "inside"}}) {
    Link(target);
    EXPECT_EQ(fMachine.OS("Name"), name) << target;
  }
}

/// Makes the kernel answer ENOSYS to openat2, for the rest of the process.
bool ForbidOpenat2() {
  sock_filter filter[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                          BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program{std::size(filter), filter};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST_F(LinuxFiles, WithoutOpenat2NoLinkIsFollowed) {
  fMachine.Write("usr/lib/os-release", "NAME=inside");
  Link(fOutside);
  const auto describe = [this] {
    if (!ForbidOpenat2()) ::_exit(9);
    std::cerr << fMachine.OS("Name") << fMachine.System("SerialNumber");
    ::_exit(0);
  };
  EXPECT_EXIT(describe(), ::testing::ExitedWithCode(0), "^inside1234567$");
}

TEST_F(LinuxFiles, AreReadIfTheyAreRegularAndMayBeRead) {
  const std::string path = "/sys/class/dmi/id/product_serial: ";
  const uid_t user = ::geteuid();
  fs::permissions(fSerial, fs::perms::none);
  for (fs::path above = fSerial; above != fMachine.Path();) {
    above = above.parent_path();
    fs::permissions(above, fs::perms::all);
  }
  fMachine.Namespace();  // loads the provider, which may lie where only root can enter
  if (::seteuid(user == 0 ? 65534 : user) != 0) GTEST_SKIP() << "root may read anything";
  const std::string reason = fMachine.Reasons()["SerialNumber"];
  ASSERT_EQ(::seteuid(user), 0);
  EXPECT_EQ(reason, path + "Permission denied");
  fs::remove(fSerial);
  ASSERT_EQ(::mkfifo(fSerial.c_str(), 0600), 0);
  ::alarm(30);  // opening it could wait for ever
  EXPECT_EQ(fMachine.Reasons()["SerialNumber"], path + "not a regular file");
  ::alarm(0);
}

}  // namespace
}  // namespace NVORNQDX20
