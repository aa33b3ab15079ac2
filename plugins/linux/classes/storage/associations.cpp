// SPDX-License-Identifier: Apache-2.0
// Classes VORNSG_MediaPresent, VORNSG_BasedOn, VORNSG_ControlledBy and VORNSG_ConcreteIdentity:
// what block devices are made of, what they are attached to, and which SCSI devices drives are.
#include <algorithm>
#include <string>

#include <boost/algorithm/string/predicate.hpp>

#include "media_access_device.h"
#include "storage_extent.h"

namespace NVORNQDX20 {
namespace {

// What the tied classes lack is added to their associations by itself.

std::vector<TTie> ListMedia(const THost& host) {
  std::vector<TTie> ties;
  for (const TBlockDevice& device : host.Shared<TBlockDevices>().All()) {
    if (device.fKind != EBlockKind::kDrive || !IsExtent(device)) continue;
    ties.push_back({DriveName(device), ExtentName(device)});
  }
  return ties;
}

TInstances<TTie> ListBases(const THost& host) {
  const auto& devices = host.Shared<TBlockDevices>();
  TInstances<TTie> ties;
  for (const TBlockDevice& device : devices.All()) {
    if (device.fSlaves.GetReason().IsError()) ties.Miss(device.fSlaves.GetReason());
    std::vector<std::string> bases = device.fSlaves.ValueOr({});
    if (device.fKind == EBlockKind::kPartition) bases = {device.fDiskName};
    for (const std::string& name : bases) {
      const TBlockDevice* const base = devices.Find(name);
      if (base == nullptr || !IsExtent(*base) || !IsExtent(device)) continue;
      ties.fAll.push_back({ExtentName(*base), ExtentName(device)});
    }
  }
  return ties;
}

/// Of a disk with several paths, the controller has one path: "nvme0c1n1" of "nvme0n1".
std::string NamespaceOf(const std::string& path) {
  const std::size_t controller = path.find('c');
  const std::size_t number = path.find('n', controller == std::string::npos ? 0 : controller);
  if (controller == std::string::npos || number == std::string::npos) return path;
  return path.substr(0, controller) + path.substr(number);
}

/// The folder of a controller has those of its namespaces.
TInstances<TTie> ListControlled(const THost& host) {
  const auto& devices = host.Shared<TBlockDevices>();
  const TFiles folder = host.In("/sys/class/nvme");
  TInstances<TTie> ties;
  for (const std::string& controller : folder.List().ValueOr({})) {
    const auto files = folder.List(controller);
    if (!files) ties.Miss(files.GetReason());
    for (const std::string& file : files.ValueOr({})) {
      if (!boost::algorithm::starts_with(file, "nvme")) continue;
      const TBlockDevice* const drive = devices.Find(NamespaceOf(file));
      if (drive == nullptr || drive->fKind != EBlockKind::kDrive) continue;
      ties.fAll.push_back({{"VORNSG_NVMeController", "/dev/" + controller}, DriveName(*drive)});
    }
  }
  return ties;
}

/// The folder of a SCSI device has those of the disk or the tape drive that it is.
TInstances<TTie> ListIdentities(const THost& host) {
  const auto& devices = host.Shared<TBlockDevices>();
  const TFiles folder = host.In("/sys/class/scsi_generic");
  TInstances<TTie> ties;
  const auto add = [&](const std::string& generic, const char* kind, auto isDrive) {
    const auto names = folder.List(generic + "/device/" + kind);
    if (names.GetReason().IsError()) ties.Miss(names.GetReason());
    for (const std::string& name : names.ValueOr({})) {
      if (!isDrive(name)) continue;
      ties.fAll.push_back(
          {{"VORNSG_SCSIDevice", "/dev/" + generic}, {"VORNSG_MediaAccessDevice", "/dev/" + name}});
    }
  };
  for (const std::string& generic : folder.List().ValueOr({})) {
    add(generic, "block", [&devices](const std::string& name) {
      const TBlockDevice* const drive = devices.Find(name);
      return drive != nullptr && drive->fKind == EBlockKind::kDrive;
    });
    add(generic, "scsi_tape", IsTapeDrive);
  }
  return ties;
}

}  // namespace

TClass MediaPresentClass() {
  return THostTable<TTie>{"VORNSG_MediaPresent",
                          "Ties the medium that is in a drive to the drive.",
                          ListMedia,
                          {{"Antecedent", "The drive.", &TTie::fAntecedent, kKey,
                            TRefersTo{"VORNSG_MediaAccessDevice"}},
                           {"Dependent", "The blocks of its medium.", &TTie::fDependent, kKey,
                            TRefersTo{"VORNSG_StorageExtent"}}}}
      .AsAssociation();
}

TClass BasedOnClass() {
  return THostTable<TTie>{
      "VORNSG_BasedOn",
      "Ties a block device to one that it is made of: a partition to its disk, a logical volume or "
      "an array to its members.",
      ListBases,
      {{"Antecedent", "What it is made of.", &TTie::fAntecedent, kKey,
        TRefersTo{"VORNSG_StorageExtent"}},
       {"Dependent", "What is made of it.", &TTie::fDependent, kKey,
        TRefersTo{"VORNSG_StorageExtent"}}}}
      .AsAssociation();
}

TClass ControlledByClass() {
  return THostTable<TTie>{
      "VORNSG_ControlledBy",
      "Ties an NVMe disk to a controller that leads to it.",
      ListControlled,
      {{"Antecedent", "The controller.", &TTie::fAntecedent, kKey,
        TRefersTo{"VORNSG_NVMeController"}},
       {"Dependent", "The disk.", &TTie::fDependent, kKey, TRefersTo{"VORNSG_MediaAccessDevice"}}}}
      .AsAssociation();
}

TClass ConcreteIdentityClass() {
  return THostTable<TTie>{"VORNSG_ConcreteIdentity",
                          "Ties a SCSI device to the drive that it is.",
                          ListIdentities,
                          {{"SystemElement", "The SCSI device.", &TTie::fAntecedent, kKey,
                            TRefersTo{"VORNSG_SCSIDevice"}},
                           {"SameElement", "The drive.", &TTie::fDependent, kKey,
                            TRefersTo{"VORNSG_MediaAccessDevice"}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
