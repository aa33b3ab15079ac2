// SPDX-License-Identifier: Apache-2.0
#include <sources/host.h>

#include <sources/space.h>

#include <array>

#include <gtest/gtest.h>

#include "support/temp_dir.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

/// What is read, or why it is not.
std::string TextOf(const TText& reading) { return reading ? *reading : reading.GetReason(); }

TEST(MachineSpace, IsThatOfAMount) {
  const TTempDir tree;
  const TFiles here({"/", {}});
  // Not in a chroot, whose "/" is a folder like any other.
  const bool mounted = ReadWholeFile("/proc/self/mounts").find(" / ") != std::string::npos;
  const auto space = ReadSpace(here, "/");
  EXPECT_EQ(space.GetReason(), mounted ? "" : "hidden below another mount");
  EXPECT_EQ(space ? space->fSize : 0, mounted ? fs::space("/").capacity : 0);
  EXPECT_EQ(ReadSpace(here, tree.Path().string()).GetReason(), "hidden below another mount");
  EXPECT_EQ(ReadSpace(here, "/none").GetReason(), "/none: No such file or directory");
  EXPECT_EQ(ReadSpace(TFiles({tree.Path().string(), {}}), "/").GetReason(),
            "not asked: not mounted on this machine");
}

TEST(MachineHost, HasTheRunningNameElseTheConfigured) {
  const TTempDir tree;
  const std::string none = "/etc/hostname: holds no name";
  const std::array<std::string, 3> rows[] = {{"running\n", "configured", "running"},
                                             {"(none)\n", "# it\n\n  configured \nb", "configured"},
                                             {"\n", "# it\n \n", none}};
  for (const auto& [kernel, configured, name] : rows) {
    tree.Write("proc/sys/kernel/hostname", kernel);
    tree.Write("etc/hostname", configured);
    EXPECT_EQ(TextOf(THost({tree.Path().string(), {}}).fName), name);
  }
}

TEST(MachineHost, HasDMIStringsThatAreNoPlaceholders) {
  const TTempDir tree;
  const auto readAgain = [&tree] {
    return TextOf(THost({tree.Path().string(), {}}).ReadDMIString("serial"));
  };
  EXPECT_EQ(readAgain(), "no DMI table: /sys/class/dmi/id does not exist");
  const auto read = [&](const std::string& text) {
    tree.Write("sys/class/dmi/id/serial", text + "\n");
    return readAgain();
  };
  for (const std::string text :
       {"To be filled by O.E.M.", "SYSTEM SERIAL NUMBER", " None ", "n/a", "0123456789", "0000000",
        "00000000-0000", "......", "$(default_string)", "XXXXXXX", "SerNum", "System SN", "[Empty]",
        "A1_AssetTagNum0", "Array12_PartNumber3", "ModulePartNumber01", "To be filled by More",
        "Dimm2_AssetTag"}) {
    EXPECT_NE(read(text).find("/serial: placeholder text '"), std::string::npos) << text;
  }
  for (const std::string text :
       {"00000001", "9", "0000A00", "z", "Default A", "\xc3\xa9", "x", "A1_7",
        "BSN12345678901234567", "P1_SerNumber", "None A", "Unknown-1"}) {
    EXPECT_EQ(read(text), text);
  }
}

}  // namespace
}  // namespace NVORNQDX20
