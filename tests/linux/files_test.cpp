// SPDX-License-Identifier: Apache-2.0
// Files that are not what they should be.
#include "linux/machine.h"

#include <cerrno>
#include <cstddef>
#include <iostream>
#include <utility>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

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

/// Makes the kernel answer ENOSYS to openat2, for the rest of the process.
bool ForbidOpenat2() {
  sock_filter filter[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                          BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program{static_cast<unsigned short>(std::size(filter)), filter};
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
  EXPECT_EXIT(describe(), ::testing::ExitedWithCode(0), "inside1234567");
}

TEST_F(LinuxFiles, OnlyRegularFilesOfReasonableSizeAreRead) {
  const std::string path = "/sys/class/dmi/id/product_serial: ";
  fMachine.WriteDMI("product_serial", std::string(64 * 1024, 'A'));
  EXPECT_EQ(fMachine.Reasons()["SerialNumber"], path + "more than 64 KiB");
  fs::remove(fSerial);
  ASSERT_EQ(::mkfifo(fSerial.c_str(), 0600), 0);
  ::alarm(30);  // opening it could wait for ever
  EXPECT_EQ(fMachine.Reasons()["SerialNumber"], path + "not a regular file");
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
