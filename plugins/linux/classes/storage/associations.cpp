// SPDX-License-Identifier: Apache-2.0
// Classes VORNSG_MediaPresent, VORNSG_BasedOn and VORNSG_ControlledBy: what block devices are made
// of, and what they are attached to.
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

}  // namespace NVORNQDX20
