// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

#include <array>
#include <cstdarg>
#include <cstring>
#include <map>
#include <set>

#include <dlfcn.h>
#include <fcntl.h>

namespace {

using TAddress = std::array<int, 4>;  // host, channel, target, logical unit

std::map<std::string, TAddress> gDevices;  // that can be opened
std::vector<std::string> gOpened;          // all that was tried
std::string gUSBList;                      // the file that stands for the kernel's
std::vector<std::string> gCommands;
std::set<std::string> gGoodCommands;

}  // namespace

extern "C" QDXCORE_EXPORT int open(const char* path, int flags, ...) {
  static const auto next =
      reinterpret_cast<int (*)(const char*, int, ...)>(::dlsym(RTLD_NEXT, "open"));
  if (std::strcmp(path, "/proc/bus/usb/devices") == 0) return next(gUSBList.c_str(), flags);
  if (std::strncmp(path, "/dev/s", 6) != 0) return next(path, flags, 0600);
  gOpened.push_back(path);
  return gDevices.count(path) != 0 ? next("/dev/null", flags) : -1;
}

extern "C" QDXCORE_EXPORT int ioctl(int, unsigned long request, ...) {
  va_list arguments;
  va_start(arguments, request);
  int* const answer = va_arg(arguments, int*);
  va_end(arguments);
  const auto [host, channel, target, unit] = gDevices.at(gOpened.back());
  if (host < 0) return -1;
  if (request == 0x2276) std::memcpy(answer, &gDevices.at(gOpened.back()), sizeof(TAddress));
  if (request == 0x5382)
    answer[0] = target | unit << 8 | channel << 16 | host << 24, answer[1] = -1;
  if (request == 0x5386) *answer = host;
  return 0;
}

extern "C" QDXCORE_EXPORT int mkdir(const char* path, mode_t) {
  gCommands.push_back(std::string("mkdir ") + path);
  return -1;
}

extern "C" QDXCORE_EXPORT int system(const char* command) {
  gCommands.push_back(command);
  return gGoodCommands.count(command) != 0 ? 0 : 256;
}

namespace NVORNQDX20 {
namespace {

using TOS = TOSSpecific;
using TWords = std::vector<std::string>;

TEST(SCSIGenericDevice, IsMappedByItsWholeAddress) {
  const auto before = TOS::ListDir("/proc/self/fd").size();
  gDevices = {{"/dev/sg1", {6, 1, 2, 3}}, {"/dev/sda", {7, 1, 2, 3}}, {"/dev/sdb", {6, 2, 2, 3}},
              {"/dev/sdc", {6, 1, 3, 3}}, {"/dev/sdd", {6, 1, 2, 4}}, {"/dev/sde", {-1, 0, 0, 0}},
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

TEST(RemovableMedia, AreUSBStorageAndOneFloppy) {
  const TTempDir dir;
  gUSBList = dir.Write("devices", "S:  Product=Flash Drive\nS:  Product=Pen");
  gDevices = {{"/dev/sg1", {1, 0, 0, 0}}, {"/dev/sdc", {1, 0, 0, 0}}};
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "VORNSG_SCSIDevice", {{"DeviceID", ""}},
           {{"DeviceType", ""}, {"VendorID", ""}, {"ProductID", ""}});
  const char* const disk = "Direct Access Device";
  for (const auto& [device, type, vendor, product] :
       std::vector<std::array<const char*, 4>>{{"/dev/sdb", disk, "A\tB", "Flash Disk"},
                                               {"/dev/sg1", disk, "C", "Pen\r"},
                                               {"/dev/sg2", disk, "D", "Internal"},
                                               {"/dev/sg3", "CD-ROM Device", "E", "Pen"},
                                               {"/dev/s", disk, "", "Pen"}}) {
    AddInstance(
        ns, "VORNSG_SCSIDevice",
        {{"DeviceID", device}, {"DeviceType", type}, {"VendorID", vendor}, {"ProductID", product}});
  }
  TOS::TRemovableMedia media = {
      {"/dev/sdb", "A - Flash"}, {"/dev/sdc", "C - Pen"}, {"/dev/s", " - Pen"}};
  EXPECT_EQ(TOS::EnumerateRemovableMedia(ns), media);
  media.emplace_back("/dev/fd0", "Built-in Floppy Drive");
  gGoodCommands = {"mount /dev/fd01 /mnt/floppy 2>/dev/null"};
  gCommands.clear();
  EXPECT_EQ(TOS::EnumerateRemovableMedia(ns), media);
  const std::string search = "mount | grep \"/mnt/floppy type\" >/dev/null";
  EXPECT_EQ(gCommands,
            (TWords{"mkdir /mnt/floppy", search, "mount /dev/floppy /mnt/floppy 2>/dev/null",
                    "mount /dev/floppy1 /mnt/floppy 2>/dev/null", search,
                    "mount /dev/fd0 /mnt/floppy 2>/dev/null",
                    "mount /dev/fd01 /mnt/floppy 2>/dev/null"}));
  gUSBList = "/none";
  EXPECT_QDX_STATUS(TOS::EnumerateRemovableMedia(ns), kQDXStatusFileNotFound);
}

TEST(RemovableMedia, AreMountedAndUnmountedByCommands) {
  const std::string search = "mount | grep \"/mnt/key type\" >/dev/null";
  gGoodCommands = {search, "umount /mnt/a 2> /dev/null"};
  gCommands.clear();
  EXPECT_EQ(TOS::MountDevice("/dev/sdb"), "/mnt/key");
  EXPECT_EQ(gCommands, TWords{search});  // something is mounted there already
  TOS::UnmountDevice("/dev/sdb", "/mnt/a");
  EXPECT_QDX_STATUS(TOS::UnmountDevice("/dev/sdb", "/mnt/b"), kQDXStatusFileSystemError);
  gGoodCommands.clear();
  EXPECT_QDX_STATUS(TOS::MountDevice("/dev/sdb"), kQDXStatusFileSystemError);
}

}  // namespace
}  // namespace NVORNQDX20
