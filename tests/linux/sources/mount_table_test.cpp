// SPDX-License-Identifier: Apache-2.0
#include <sources/mount_table.h>
#include <sources/storage/credentials.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// One line a mount: "key: device path type", with "ro" and "ask" where they hold.
std::string TextOf(const std::map<std::string, TMount>& mounts) {
  std::string text;
  for (const auto& [key, mount] : mounts) {
    text += key + ": " + mount.fDevice + " " + mount.fPath + " " + mount.fType;
    text += std::string(mount.fReadOnly ? " ro" : "") + (mount.fCanBeAsked ? " ask\n" : "\n");
  }
  return text;
}

TEST(MountTable, GivesTheMounts) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"nothing", "", ""},
      {"words between any blanks", "\t/dev/a  /\text4 rw,errors=remount-ro 0 0",
       "/: /dev/a / ext4 ask\n"},
      {"what is no mount", "# /old ext4 sw 0 0\na none swap sw 0 0\na /b xfs\n\n  \n", ""},
      {"an option among others", "a /b xfs rw,ro,x 0 0\na /c xfs ro\na /d xfs rw,roo\n",
       "/b: a /b xfs ro ask\n/c: a /c xfs ro ask\n/d: a /d xfs ask\n"},
      {"escaped characters", "a\\134040 /b\\040\\0119 xfs rw\n", "/b 9: a\\040 /b \t9 xfs ask\n"},
      {"what is no escape", "a\\04 /b\\0480\\ xfs rw\n", "/b\\0480\\: a\\04 /b\\0480\\ xfs ask\n"},
      {"an unprintable path", "a /b\\033\xff xfs rw\n", "/b: a /b\033\xff xfs ask\n"},
      {"interfaces of the kernel", "proc /proc proc rw\nsysfs /sys sysfs rw\n", ""},
      {"the last on a path", "a /b xfs rw\nc /b ext4 ro\n", "/b: c /b ext4 ro ask\n"},
      {"a server, and what is below it",
       "a /m/b nfs4 rw\nb /m/b/c/d xfs rw\nc /m/bb xfs rw\nd /m xfs rw\n",
       "/m: d /m xfs ask\n/m/b: a /m/b nfs4\n/m/b/c/d: b /m/b/c/d xfs\n/m/bb: c /m/bb xfs ask\n"},
      {"a server that is hidden", "a /b fuse.x rw\nb /b tmpfs rw\n", "/b: b /b tmpfs\n"},
      {"a server at the root", "a / nfs rw\nb /c xfs rw\n", "/: a / nfs\n/c: b /c xfs\n"}};
  for (const auto& [name, text, mounts] : rows) {
    EXPECT_EQ(TextOf(ParseMounts(text)), mounts) << name;
  }
}

TEST(MountTable, ParsesMountInfo) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"tags, or none",
       "1 2 8:1 / /a rw shared:1 master:2 - xfs /d rw\n1 2 8:1 / /b rw - xfs /d rw",
       "/a: /d /a xfs ask\n/b: /d /b xfs ask\n"},
      {"read-only by one of two", "1 2 8:1 / /a ro - xfs /d rw\n1 2 8:1 / /b rw,x - xfs /d ro,y",
       "/a: /d /a xfs ro ask\n/b: /d /b xfs ro ask\n"},
      {"no device", "1 2 0:5 / /a rw - tmpfs  rw,size=1k", "/a:  /a tmpfs ask\n"},
      {"cut off", "1 2 8:1 / /a rw\n1 2 8:1 / /a rw -\n1 2 8:1 / /a rw - xfs\n1 2 - - / rw", ""},
      {"an option twice", "1 2 8:1 / /a rw,x,x - xfs /d rw,x,y,,", "/a: /d /a xfs ask\n"}};
  for (const auto& [name, text, mounts] : rows) {
    EXPECT_EQ(TextOf(ParseMountInfo(text)), mounts) << name;
  }
  EXPECT_EQ(ParseMountInfo(std::get<1>(rows[4])).at("/a").fOptions, "rw,x,y");
}

TEST(MountTable, GivesAwayNoCredentials) {
  const std::pair<const char*, const char*> devices[] = {
      {"https://me:a/b@c?d@srv/x", "https://[removed]@srv/x"},
      {"https://srv/x?token=s", "https://srv/x?[removed]"},
      {"me@srv:x@y", "[removed]@srv:x@y"},
      {"me:a/b@c@srv:/x", "[removed]@srv:/x"},
      {"curlftpfs#me:a@srv", "[removed]@srv"},
      {"//me:a@b@srv/x", "//[removed]@srv/x"},
      {"//me:a/b@srv/x", "//[removed]@srv/x"},
      {"//srv/x@y", "//srv/x@y"},
      {"me@srv:/a://b", "[removed]@srv:/a://b"},
      {"admin@1-2.fs=/", "[removed]@1-2.fs=/"},
      {"pool@snap", "pool@snap"},
      {"/dev/a@b:c", "/dev/a@b:c"},
      {"srv:/x@y", "srv:/x@y"}};
  for (const auto& [device, kept] : devices) EXPECT_EQ(WithoutCredentials(device), kept);
  const std::pair<const char*, const char*> options[] = {
      {"rw,user,uid=0", "rw,user,uid=0"},
      {"a,,USER=me,b", "a,,USER=[removed],b"},
      {"password2=a,,b,,c,d", "password2=[removed],d"},
      {"x_token=,secretfile=/s", "x_token=[removed],secretfile=[removed]"}};
  for (const auto& [text, kept] : options) EXPECT_EQ(OptionsWithoutCredentials(text), kept);
}

}  // namespace
}  // namespace NVORNQDX20
