// SPDX-License-Identifier: Apache-2.0
// Finds, mounts and unmounts USB storage and floppies.
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/status.h>
#include <qdxsystem/descriptor.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>

#include <fcntl.h>
#include <scsi/scsi.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>

namespace NVORNQDX20 {
namespace {

constexpr char kUSBDeviceList[] = "/proc/bus/usb/devices";
constexpr char kKeyMountPoint[] = "/mnt/key";
constexpr char kFloppyMountPoint[] = "/mnt/floppy";
constexpr std::array kFloppyDevices = {"/dev/floppy", "/dev/fd0", "/dev/fd1"};
constexpr int kBlockDevices = 128;

/// The results of the two ioctl requests to a block device. fPacked holds the target in the
/// low byte, then the logical unit and the channel.
struct TBlockDeviceID {
  struct {
    unsigned fPacked;
    unsigned fUniqueHostID;  // unused, filled by the request
  } fAddress;
  int fBusNumber;
};

TDescriptor OpenDevice(const std::string& path) {
  return TDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
}

/// "/dev/sda" to "/dev/sdz", then "/dev/sdaa" and so on.
std::string BlockDeviceName(int index) {
  const auto letter = [](int number) { return static_cast<char>('a' + number); };
  std::string name = "/dev/sd";
  if (index >= 26) name += letter(index / 26 - 1);
  return name + letter(index % 26);
}

bool ReadBlockDeviceID(const std::string& path, TBlockDeviceID& id) {
  const TDescriptor device = OpenDevice(path);
  return device.IsOpen() && ::ioctl(device.Get(), SCSI_IOCTL_GET_IDLUN, &id.fAddress) == 0 &&
         ::ioctl(device.Get(), SCSI_IOCTL_GET_BUS_NUMBER, &id.fBusNumber) == 0;
}

bool IsSameDevice(const sg_scsi_id& generic, const TBlockDeviceID& block) {
  const auto byte = [&block](int place) {
    return static_cast<int>(block.fAddress.fPacked >> (8 * place) & 0xff);
  };
  return block.fBusNumber == generic.host_no && byte(0) == generic.scsi_id &&
         byte(1) == generic.lun && byte(2) == generic.channel;
}

sg_scsi_id ReadGenericDeviceID(const std::string& path) {
  const TDescriptor device = OpenDevice(path);
  if (!device.IsOpen()) {
    LogErrorAndThrow(kQDXStatusFileSystemError, {"Failed opening", path});  // no blank between
  }
  sg_scsi_id id{};
  if (::ioctl(device.Get(), SG_GET_SCSI_ID, &id) != 0) {
    LogErrorAndThrow(kQDXStatusFileSystemError, {"Failed ioctl on ", path});
  }
  return id;
}

std::string ReadText(const ICIMInstance& instance, const char* property) {
  return instance.GetProperty(property, {})->GetValue();
}

std::string FirstWord(const std::string& text) {
  return text.substr(0, text.find_first_of(" \n\r\t"));
}

/// Returns whether a path is a generic SCSI device such as "/dev/sg0", which cannot be mounted.
/// Only the two letters after the folder are compared; a bare "/dev/sg" is none.
bool IsGenericDevice(const std::string& path) {
  return path.size() > 6 && path.compare(5, 2, "sg") == 0;
}

void AppendIfUSBStorage(const ICIMInstance& scsiDevice, const std::string& usbDeviceList,
                        TOSSpecific::TRemovableMedia& media) {
  if (ReadText(scsiDevice, "DeviceType") != "Direct Access Device") return;
  const std::string product = FirstWord(ReadText(scsiDevice, "ProductID"));
  if (usbDeviceList.find(product) == std::string::npos) return;
  std::string device = ReadText(scsiDevice, "DeviceID");
  if (IsGenericDevice(device)) device = MapSG2SD(device);
  media.emplace_back(device, FirstWord(ReadText(scsiDevice, "VendorID")) + " - " + product);
}

bool Succeeds(const std::string& command) { return std::system(command.c_str()) == 0; }

/// Returns whether the operation ends without a TQDXException.
template <typename TOperation>
bool Try(TOperation operation) {
  try {
    operation();
    return true;
  } catch (const TQDXException&) {
    return false;
  }
}

bool IsFloppy(const std::string& device) {
  return std::find(kFloppyDevices.begin(), kFloppyDevices.end(), device) != kFloppyDevices.end();
}

/// Appends the first floppy that can be mounted, and leaves it mounted. Whatever is mounted at the
/// mount point already is taken for the first floppy.
void AppendFloppy(TOSSpecific::TRemovableMedia& media) {
  (void)Try([] { TOSSpecific::CreateDir(kFloppyMountPoint); });  // usually exists already
  const auto found = std::find_if(
      kFloppyDevices.begin(), kFloppyDevices.end(),
      [](const char* device) { return Try([device] { TOSSpecific::MountDevice(device); }); });
  if (found != kFloppyDevices.end()) media.emplace_back(*found, "Built-in Floppy Drive");
}

}  // namespace

std::string MapSG2SD(std::string sgPath) {
  const sg_scsi_id generic = ReadGenericDeviceID(sgPath);
  for (int index = 0; index < kBlockDevices; ++index) {
    std::string name = BlockDeviceName(index);
    TBlockDeviceID block{};
    if (ReadBlockDeviceID(name, block) && IsSameDevice(generic, block)) return name;
  }
  LogErrorAndThrow(kQDXStatusFileSystemError, {"No mapping found for ", sgPath});
}

TOSSpecific::TRemovableMedia TOSSpecific::EnumerateRemovableMedia(
    boost::shared_ptr<ICIMNamespace> ns) {
  const std::string usbDeviceList = CaptureFile(kUSBDeviceList);
  std::vector<boost::shared_ptr<ICIMInstance>> scsiDevices;
  ns->GetClass("VORNSG_SCSIDevice", {})
      ->EnumerateInstances(TAddToVectorCallback(scsiDevices), false, {});
  TRemovableMedia media;
  for (const auto& scsiDevice : scsiDevices) AppendIfUSBStorage(*scsiDevice, usbDeviceList, media);
  AppendFloppy(media);
  return media;
}

std::string TOSSpecific::MountDevice(std::string device) {
  std::string mountPoint = IsFloppy(device) ? kFloppyMountPoint : kKeyMountPoint;
  if (Succeeds("mount | grep \"" + mountPoint + " type\" >/dev/null")) return mountPoint;
  const std::string rest = " " + mountPoint + " 2>/dev/null";
  // "1": the first partition of the device.
  if (Succeeds("mount " + device + rest) || Succeeds("mount " + device + "1" + rest)) {
    return mountPoint;
  }
  throw TQDXException(kQDXStatusFileSystemError);
}

void TOSSpecific::UnmountDevice(std::string /*device*/, std::string mountPoint) {
  if (!Succeeds("umount " + mountPoint + " 2> /dev/null")) {
    throw TQDXException(kQDXStatusFileSystemError);
  }
}

}  // namespace NVORNQDX20
