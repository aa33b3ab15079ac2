// SPDX-License-Identifier: Apache-2.0
#include <machine/host_files.h>

#include <machine/host.h>

#include <array>
#include <cerrno>
#include <iostream>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

/// What is read, or why it is not.
std::string TextOf(const TText& reading) { return reading ? *reading : reading.GetReason(); }

/// A tree that stands in for a machine.
class HostFiles : public ::testing::Test {
 protected:
  std::string Line(const std::string& path) const { return TextOf(fFiles.ReadLine(path)); }
  void Link(const std::string& target, const std::string& name) const {
    fs::create_symlink(target, fTree.Path() / name);
  }

  const TTempDir fTree;
  const TTempDir fOutside;
  const std::string fSecret = fOutside.Write("secret", "outside").string();
  const THostFiles fFiles = THostFiles(fTree.Path().string());
};

TEST_F(HostFiles, AreReadUpToASizeOrByTheirFirstLine) {
  const std::string text = " \x1b[a \n" + std::string(1018, 'x');
  fTree.Write("f", text);
  EXPECT_EQ(Line("/f"), "[a");
  EXPECT_EQ(TextOf(fFiles.Read("/f", 1024)), text);
  EXPECT_EQ(TextOf(fFiles.Read("/f", 1023)), "/f: more than 0 KiB");
  fTree.Write("f", " \x01\n" + std::string(65534, 'x'));
  EXPECT_EQ(Line("/f"), "/f: more than 64 KiB");
  fTree.Write("f", " \x01\nx");
  EXPECT_EQ(Line("/f"), "/f: empty");
}

TEST_F(HostFiles, AreListedInOrder) {
  for (const char* name : {"d/b", "d/a/x", "d/.c", "d/B"}) fTree.Write(name, "");
  EXPECT_EQ(*fFiles.List("/d"), (std::vector<std::string>{"B", "a", "b"}));
  EXPECT_EQ(fFiles.List("/d/b").GetReason(), "/d/b: Not a directory");
  EXPECT_FALSE(fFiles.IsAbsent("/d/a"));
  EXPECT_TRUE(fFiles.IsAbsent("/d/b/c"));
}

TEST_F(HostFiles, NoLinkLeadsOutOfTheTree) {
  fTree.Write("share/release", "inside");
  Link(fSecret, "absolute");
  Link("../../../../../../../.." + fSecret, "share/relative");
  Link(fOutside.Path().string(), "folder");
  Link("/share/release", "below");
  Link("../share/release", "share/up");
  for (const std::string path : {"/absolute", "/share/relative", "/folder/secret"}) {
    EXPECT_EQ(Line(path), path + ": No such file or directory");
  }
  EXPECT_EQ(Line("/../.." + fSecret), "/../.." + fSecret + ": No such file or directory");
  EXPECT_EQ(Line("/below") + Line("/share/up"), "insideinside");
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

TEST_F(HostFiles, WithoutOpenat2NoLinkIsFollowed) {
  fTree.Write("share/release", "inside");
  Link(fSecret, "absolute");
  Link("share", "folder");
  const auto read = [this] {
    if (!ForbidOpenat2()) ::_exit(9);
    std::cerr << Line("/share/release") << ";" << Line("/absolute") << ";"
              << Line("/folder/release");
    ::_exit(0);
  };
  EXPECT_EXIT(read(), ::testing::ExitedWithCode(0),
              "^inside;/absolute: not a regular file;"
              "/folder/release: Not a directory$");
}

TEST_F(HostFiles, AreReadIfTheyAreRegularAndMayBeRead) {
  const fs::path file = fTree.Write("f", "text");
  fs::permissions(fTree.Path(), fs::perms::all);
  fs::permissions(file, fs::perms::none);
  const uid_t user = ::geteuid();
  if (::seteuid(user == 0 ? 65534 : user) != 0) GTEST_SKIP() << "root may read anything";
  EXPECT_EQ(Line("/f"), "/f: Permission denied");
  ASSERT_EQ(::seteuid(user), 0);
  fs::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  ::alarm(30);  // opening it could wait for ever
  EXPECT_EQ(Line("/f"), "/f: not a regular file");
  ::alarm(0);
  EXPECT_EQ(Line("/"), "/: not a regular file");
}

TEST_F(HostFiles, AreThisMachinesBelowItsRoot) {
  Link("/", "root");
  const THostFiles here((fTree.Path() / "root").string());
  EXPECT_TRUE(here.IsThisMachine());
  EXPECT_EQ(TextOf(here.ReadLine(fSecret)), "outside");
  EXPECT_FALSE(fFiles.IsThisMachine());
  EXPECT_QDX_STATUS(THostFiles(fSecret), kQDXStatusFileNotFound);
}

TEST_F(HostFiles, HaveSpaceWhereTheyAreMounted) {
  const THostFiles here("/");
  // Not in a chroot, whose "/" is a folder like any other.
  const bool mounted = ReadWholeFile("/proc/self/mounts").find(" / ") != std::string::npos;
  const auto space = here.ReadSpace("/");
  EXPECT_EQ(space.GetReason(), mounted ? "" : "hidden below another mount");
  EXPECT_EQ(space ? space->fSize : 0, mounted ? fs::space("/").capacity : 0);
  EXPECT_EQ(here.ReadSpace(fOutside.Path().string()).GetReason(), "hidden below another mount");
  EXPECT_EQ(here.ReadSpace(fSecret + "2").GetReason(), fSecret + "2: No such file or directory");
  EXPECT_EQ(fFiles.ReadSpace("/").GetReason(), "not asked: not mounted on this machine");
}

TEST_F(HostFiles, GiveTheNameOfTheHost) {
  const std::string none = "/etc/hostname: holds no name";
  const std::array<std::string, 3> rows[] = {{"running\n", "configured", "running"},
                                             {"(none)\n", "# it\n\n  configured \nb", "configured"},
                                             {"\n", "# it\n \n", none}};
  for (const auto& [kernel, configured, name] : rows) {
    fTree.Write("proc/sys/kernel/hostname", kernel);
    fTree.Write("etc/hostname", configured);
    EXPECT_EQ(TextOf(THost({fTree.Path().string(), {}}).fName), name);
  }
}

TEST_F(HostFiles, HaveDMIStringsThatAreNoPlaceholders) {
  const THost host({fTree.Path().string(), {}});
  EXPECT_EQ(TextOf(host.ReadDMIString("serial")), "no DMI table: /sys/class/dmi/id does not exist");
  const auto read = [&](const std::string& text) {
    fTree.Write("sys/class/dmi/id/serial", text + "\n");
    return TextOf(host.ReadDMIString("serial"));
  };
  for (const std::string text : {"To be filled by O.E.M.", "SYSTEM SERIAL NUMBER", " None ", "n/a",
                                 "0123456789", "0000000", "00000000-0000", "......"}) {
    EXPECT_NE(read(text).find("/serial: placeholder text '"), std::string::npos) << text;
  }
  for (const std::string text : {"00000001", "9", "0000A00", "z", "Default A", "\xc3\xa9"}) {
    EXPECT_EQ(read(text), text);
  }
}

}  // namespace
}  // namespace NVORNQDX20
