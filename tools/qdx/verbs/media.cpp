// SPDX-License-Identifier: Apache-2.0
// The verb media.
#include <qdxcore/os_specific.h>
#include <qdxmodel/classes.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>

#include <nlohmann/json.hpp>

#include "cli/output.h"
#include "cli/terminal.h"
#include "input/machine.h"
#include "input/worker_options.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

using TJSON = nlohmann::ordered_json;
using namespace NPluginHost;
using TMedia = TOSSpecific::TRemovableMedia;

constexpr const char* kUSBDeviceList = "/proc/bus/usb/devices";
constexpr const char* kSCSIDevice = "VORNSG_SCSIDevice";

constexpr const char* kDisk = "Direct Access Device";
// What the core reads of a disk, in its order.
constexpr const char* kDiskProperties[] = {"ProductID", "DeviceID", "VendorID"};

/// The library opens devices and puts their names into shell commands unchecked, so a name from a
/// provider must be a plain path to a device.
bool IsPlainDevicePath(const std::string& path) {
  const std::string folder = "/dev/";
  const auto isPlain = [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '-' || c == '_' || c == '.' || c == '/';
  };
  return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
         std::all_of(path.begin(), path.end(), isPlain) && path.find("..") == std::string::npos;
}

/// A copy of the disks of a namespace in which every device has a safe name.
class TSafeDisks {
 public:
  explicit TSafeDisks(ICIMNamespace& source) {
    const auto declared = fNamespace->CreateClass(kSCSIDevice, nullptr, {});
    Declare("DeviceType", *declared);
    for (const char* property : kDiskProperties) Declare(property, *declared);
    declared->Commit({});
    for (const auto& device : NModel::InstancesOf(*source.GetClass(kSCSIDevice, {}))) {
      const std::string type = device->GetProperty("DeviceType", {})->GetValue();
      if (type == kDisk) Add(*device, *declared);
    }
  }

  const boost::shared_ptr<ICIMNamespace>& GetNamespace() const { return fNamespace; }

  /// Removes and reports the devices that have other names than in the source.
  bool RemoveRenamed(TMedia& media) const {
    const auto renamed = std::stable_partition(
        media.begin(), media.end(), [this](const auto& m) { return fRenamed.count(m.first) == 0; });
    for (auto medium = renamed; medium != media.end(); ++medium) {
      PrintFailure("listing medium " + fRenamed.at(medium->first),
                   {kQDXStatusInvalidFormat, "not a plain path below /dev"});
    }
    const bool removed = renamed != media.end();
    media.erase(renamed, media.end());
    return removed;
  }

 private:
  static void Declare(const char* property, ICIMClass& cimClass) {
    cimClass.CreatePropertyDecl(property, TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 0), {})
        ->Commit();
  }

  void Add(const ICIMInstance& device, ICIMClass& declared) {
    const auto copy = declared.CreateInstance({});
    copy->SetPropertyValue("DeviceType", kDisk, {});
    for (const char* property : kDiskProperties) {
      copy->SetPropertyValue(property, device.GetProperty(property, {})->GetValue(), {});
    }
    const TCIMValue name = copy->GetProperty("DeviceID", {})->GetValue();
    if (!name.IsNull() && !IsPlainDevicePath(name)) {
      const std::string safe = "/dev/unsafe:" + std::to_string(fRenamed.size());
      fRenamed[safe] = std::string(name);
      copy->SetPropertyValue("DeviceID", safe, {});
    }
    copy->Commit({});
  }

  const boost::shared_ptr<ICIMNamespace> fNamespace = MakeRepositoryNamespace(kMachineNamespace);
  std::map<std::string, std::string> fRenamed;
};

EExitCode FailToList(const std::string& source, const TExplainedException& failure) {
  PrintFailure("listing removable media from " + source, failure);
  return kExitNothingCollected;
}

/// Returns the first missing value of those that the core requires of a disk.
std::optional<std::string> FindMissingValue(const ICIMInstance& device) {
  std::string asked;
  const auto read = [&](const char* property) {
    asked = property;
    return std::string(device.GetProperty(property, {})->GetValue());
  };
  const auto failure = Try([&] {
    if (read("DeviceType") != kDisk) return;
    for (const char* property : kDiskProperties) (void)read(property);
  });
  return failure ? std::optional(asked) : std::nullopt;
}

/// Returns the value that made the core fail, as far as it can be found afterwards.
std::string FindCulprit(ICIMNamespace& ns, const TExplainedException& failure) {
  std::string culprit = std::string(kSCSIDevice) + " of " + kMachineNamespace;
  if (failure.GetStatusCode() != kQDXStatusValueIsNULL) return culprit;
  (void)Try([&] {
    for (const auto& device : NModel::InstancesOf(*ns.GetClass(kSCSIDevice, {}))) {
      const auto property = FindMissingValue(*device);
      if (!property) continue;
      culprit = *property + " of " + kSCSIDevice;
      culprit += " " + std::string(device->GetProperty("DeviceID", {})->GetValue());
      return;
    }
  });
  return culprit;
}

void Write(const TMedia& media, bool asJSON) {
  TJSON list = TJSON::array();
  std::vector<TTableRow> rows = {{{"DEVICE", "DESCRIPTION"}, TTableRow::kHeading}};
  for (const auto& [device, description] : media) {
    list.push_back({{"device", device}, {"description", description}});
    rows.push_back({{device, description}});
  }
  asJSON ? WriteJSON({{"media", list}}) : WriteOutput(FormatTable(rows));
}

/// Mounting can hang. Throws what the core throws, and if the worker does not come back.
TMedia ListInWorker(const boost::shared_ptr<ICIMNamespace>& ns, TWorkerLimits limits) {
  enum EMessage : std::uint8_t { kMedium = 1, kFailed, kDone };
  TMedia media;
  std::optional<TExplainedException> failure;
  bool isDone = false;
  TWorkerJob job;
  job.fName = "removable media";
  job.fWork = [&ns](TSender& sender) {
    TMedia found;
    const auto why = Try([&] { found = TOSSpecific::EnumerateRemovableMedia(ns); });
    for (const auto& [device, description] : found) sender.Send(kMedium, {device, description});
    if (why) sender.Send(kFailed, {why->GetReason()}, why->GetStatusCode());
    sender.Send(kDone, {});
  };
  job.fReceive = [&](TMessage&& message) {
    if (message.fKind == kMedium) media.push_back({message.Text(0), message.Text(1)});
    if (message.fKind == kFailed) {
      failure = {static_cast<EQDXStatusCode>(message.fNumber), message.Text(0)};
    }
    isDone = isDone || message.fKind == kDone;
  };
  job.fEnd = [&](const TWorkerEnd& end) {
    if (!isDone) failure = {kQDXStatusFail, end.fReason};
  };
  limits.fMemory = 0;  // the code is the core's
  limits.fUser.reset();
  RunWorkers({job}, limits, ShowWaiting());
  if (failure) throw *failure;
  return media;
}

EExitCode RunMedia(const TArguments& arguments) {
  TMachine machine(arguments);
  const auto ns = machine.TakeMachineNamespace({});
  if (!ns)
    return FailToList(kMachineNamespace,
                      {kQDXStatusNotFound, std::string("no provider has it") + kListPlugins});
  if (!TOSSpecific::FileExists(kUSBDeviceList)) {
    return FailToList(kUSBDeviceList,
                      {kQDXStatusFileNotFound, "this kernel has no list of its USB devices"});
  }
  bool failed = !machine.IsComplete();
  TMedia media;
  const auto failure = Try([&] {
    const TSafeDisks disks(*ns);
    media = ListInWorker(disks.GetNamespace(), LimitsOf(arguments));
    failed = disks.RemoveRenamed(media) || failed;
  });
  if (failure) return FailToList(FindCulprit(*ns, *failure), *failure);
  Write(media, arguments.Has("json"));
  return failed ? kExitPartlyDone : kExitDone;
}

std::vector<TOptionSpec> MediaOptions() {
  std::vector<TOptionSpec> options = WorkerOptions();
  options.push_back({"json", nullptr, "Print one JSON object."});
  return options;
}

}  // namespace

TVerb MediaVerb() {
  return {
      "media", "Lists removable media that results can be written to; mounts a floppy.",
      "USB storage devices are the providers' SCSI devices whose product is listed in\n"
      "/proc/bus/usb/devices; current kernels have no such file, which is an error. A floppy\n"
      "is found by mounting it at /mnt/floppy, which is created if necessary; it stays mounted.\n"
      "Anything that is mounted there already is listed as /dev/floppy. Needs root.\n",
      MediaOptions(), RunMedia};
}

}  // namespace NVORNQDX20
