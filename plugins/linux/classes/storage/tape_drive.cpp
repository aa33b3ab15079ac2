// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_TapeDrive: drives of tapes.
#include "media_access_device.h"
#include "sources/device_folder.h"

namespace NVORNQDX20 {
namespace {

const char* const kFolder = "/sys/class/scsi_tape";

TDrive MakeTapeDrive(const THost& host, const TDeviceFolder& folder) {
  const TText number = folder.ReadLine("dev");
  const std::string data = "/run/udev/data/c" + number.ValueOr("");
  const TMissing ofMedium = Missing("depends on the medium");
  TDrive drive = MakeDrive(
      host, {{folder},
             folder,
             folder.fFileName,
             EBlockKind::kDrive,
             number,
             ofMedium,
             Missing("a tape has blocks of any size"),
             ofMedium,
             {},
             std::vector<std::string>(),
             Missing("not of the device mapper"),
             Missing("not of the device mapper"),
             Missing("not an array"),
             number ? TUdevData(data, host.Read(data)) : TUdevData(folder.PathOf("dev"), number)});
  drive.fRemovable = true;
  drive.fRotational = Missing("not a disk");
  return drive;
}

TInstances<TDrive> ListTapeDrives(const THost& host) {
  const TInstances<TDeviceFolder> folders = ListDevices(host, kFolder);
  TInstances<TDrive> drives({}, folders.fReason);
  for (const TDeviceFolder& folder : folders.fAll) {
    if (IsTapeDrive(folder.fFileName)) drives.fAll.push_back(MakeTapeDrive(host, folder));
  }
  if (drives.fAll.empty() && drives.fReason.empty()) {
    drives.Miss(kFolder + std::string(": has no tape drive"));
  }
  return drives;
}

TText ReadNonRewindingDevice(const TDrive& drive, const THost& host) {
  const std::string name = "n" + drive.fKernelName;
  return host.In(kFolder).Exists(name).and_then([&](bool exists) -> TText {
    if (exists) return "/dev/" + name;
    return host.In(kFolder).MissingFrom(name, "No such file or directory");
  });
}

}  // namespace

bool IsTapeDrive(const std::string& name) {
  return name.compare(0, 2, "st") == 0 && name.size() > 2 &&
         name.find_first_not_of("0123456789", 2) == std::string::npos;
}

TClass TapeDriveClass() {
  return THostTable<TDrive>{
      "VORNSG_TapeDrive",
      "A drive for tapes.",
      ListTapeDrives,
      {{"NonRewindingDevice", "The other path of the drive, at which a tape stays where it is.",
        ReadNonRewindingDevice},
       {"BytesRead", "What was read since the drive was found.", FileNumber("stats/read_byte_cnt"),
        TUnit{"byte"}, kCounter, kVolatile},
       {"BytesWritten", "What was written since.", FileNumber("stats/write_byte_cnt"),
        TUnit{"byte"}, kCounter, kVolatile},
       {"Reads", "How often was read since.", FileNumber("stats/read_cnt"), kCounter, kVolatile},
       {"Writes", "How often was written since.", FileNumber("stats/write_cnt"), kCounter,
        kVolatile}}}
      .DerivedFrom(MediaAccessDeviceTable());
}

}  // namespace NVORNQDX20
