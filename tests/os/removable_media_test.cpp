// SPDX-License-Identifier: Apache-2.0
// Devices and commands that this program stands for; tests/qdx has whole lists of media.
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"
#include "support/log_capture.h"

#include <array>
#include <cstdarg>
#include <cstring>
#include <set>

#include <dlfcn.h>

namespace {

using TAddress = std::array<int, 4>;  // host, channel, target, logical unit

std::map<std::string, TAddress> gDevices;  // host -1: cannot be asked
std::vector<std::string> gOpened;
std::vector<std::string> gCommands;
std::set<std::string> gGoodCommands;

}  // namespace

extern "C" {
QDXCORE_EXPORT int open(const char* path, int flags, ...) {
  static const auto next = reinterpret_cast<decltype(&open)>(::dlsym(RTLD_NEXT, "open"));
  if (std::strncmp(path, "/dev/s", 6) != 0) return next(path, flags, 0600);
  gOpened.push_back(path);
  return gDevices.count(path) != 0 ? next("/dev/null", flags) : -1;
}
QDXCORE_EXPORT int ioctl(int, unsigned long request, ...) {
  va_list arguments;
  va_start(arguments, request);
  int* const answer = va_arg(arguments, int*);
  va_end(arguments);
  const TAddress& address = gDevices.at(gOpened.back());
  const auto [host, channel, target, unit] = address;
  if (host < 0) return -1;
  if (request == 0x2276) std::memcpy(answer, &address, sizeof address);
  if (request == 0x5382) answer[0] = target | unit << 8 | channel << 16 | host << 24;
  if (request == 0x5382) answer[1] = -1;
  if (request == 0x5386) *answer = host;
  return 0;
}
QDXCORE_EXPORT int system(const char* command) {
  gCommands.push_back(command);
  return gGoodCommands.count(command) != 0 ? 0 : 256;
}
}

using namespace NVORNQDX20;

using TOS = TOSSpecific;
using TWords = std::vector<std::string>;

TEST(SCSIGenericDevice, IsMappedByItsWholeAddress) {
  const auto before = TOS::ListDir("/proc/self/fd").size();
  gDevices = {{"/dev/sg1", {6, 1, 2, 3}}, {"/dev/sda", {7, 1, 2, 3}}, {"/dev/sdb", {6, 2, 2, 3}},
              {"/dev/sdc", {6, 1, 3, 3}}, {"/dev/sdd", {6, 1, 2, 4}}, {"/dev/sde", {-1, 1, 2, 3}},
              {"/dev/sdab", {6, 1, 2, 3}}};
  EXPECT_EQ(MapSG2SD("/dev/sg1"), "/dev/sdab");
  gDevices.erase("/dev/sdab");
  gOpened.clear();
  const TLogCapture log;
  EXPECT_QDX_STATUS(MapSG2SD("/dev/sg1"), kQDXStatusFileSystemError);
  EXPECT_EQ(gOpened.size(), 129U);
  EXPECT_EQ(gOpened[26] + gOpened[27] + gOpened.back(), "/dev/sdz/dev/sdaa/dev/sddx");
  EXPECT_QDX_STATUS(MapSG2SD("/dev/sde"), kQDXStatusFileSystemError);
  EXPECT_QDX_STATUS(MapSG2SD("/dev/sgx"), kQDXStatusFileSystemError);
  EXPECT_EQ(log.Messages(), (TWords{"0 No mapping found for /dev/sg1", "0 Failed ioctl on /dev/sde",
                                    "0 Failed opening/dev/sgx"}));
  EXPECT_EQ(TOS::ListDir("/proc/self/fd").size(), before);
}

TEST(RemovableMedia, AreMountedAndUnmountedByCommands) {
  const TWords steps = {"mount | grep \"/mnt/key type\" >/dev/null",
                        "mount /dev/sdb /mnt/key 2>/dev/null",
                        "mount /dev/sdb1 /mnt/key 2>/dev/null"};
  for (auto last = steps.begin(); last != steps.end(); ++last) {  // the first that succeeds
    gGoodCommands = {*last};
    gCommands.clear();
    EXPECT_EQ(TOS::MountDevice("/dev/sdb"), "/mnt/key");
    EXPECT_EQ(gCommands, TWords(steps.begin(), last + 1));
  }
  gGoodCommands = {"mount /dev/fd1 /mnt/floppy 2>/dev/null", "umount /mnt/a 2> /dev/null"};
  EXPECT_EQ(TOS::MountDevice("/dev/fd1"), "/mnt/floppy");
  EXPECT_QDX_STATUS(TOS::MountDevice("/dev/sdb"), kQDXStatusFileSystemError);
  TOS::UnmountDevice("", "/mnt/a");
  EXPECT_QDX_STATUS(TOS::UnmountDevice("", "/mnt/b"), kQDXStatusFileSystemError);
}
