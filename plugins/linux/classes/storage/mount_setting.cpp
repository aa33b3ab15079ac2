// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_MountSetting: the lines of fstab.
#include <algorithm>
#include <string>

#include "sources/fields.h"
#include "sources/storage/credentials.h"
#include "sources/storage/mounts.h"
#include "storage_extent.h"

namespace NVORNQDX20 {
namespace {

const char* const kFstab = "/etc/fstab";

struct TSetting {
  std::string fDevice;
  std::string fPath;  ///< "none" or "swap" for swap space.
  std::string fType;
  std::string fOptions;
  std::string fDumpFrequency;
  std::string fPass;
};

/// Device, path, type, options; then two numbers that may be left out.
TInstances<TSetting> ListSettings(const THost& host) {
  const TText table = host.Read(kFstab, kMaxMountTableSize);
  if (!table) return Missing(table.GetReason());
  TInstances<TSetting> settings;
  for (std::string_view lines = *table; !lines.empty();) {
    const std::vector<std::string_view> words = WordsOf(TakeLine(lines));
    if (words.size() < 3 || words[0].front() == '#') continue;
    const auto word = [&words](std::size_t index, const char* otherwise) {
      return index < words.size() ? std::string(words[index]) : std::string(otherwise);
    };
    settings.fAll.push_back({UnescapeMount(words[0]), UnescapeMount(words[1]), word(2, ""),
                             word(3, "defaults"), word(4, "0"), word(5, "0")});
  }
  if (settings.fAll.empty()) settings.Miss(std::string(kFstab) + ": configures nothing");
  return settings;
}

bool HasPath(const TSetting& setting) { return setting.fPath.front() == '/'; }

std::string MountedDevice(const TSetting& setting) {
  return WithoutCredentials(PrintableText(setting.fDevice), setting.fType);
}

/// Several lines for swap space have the same word in the place of a path.
std::string NameOf(const TSetting& setting) {
  return HasPath(setting) ? PrintableText(setting.fPath) : MountedDevice(setting);
}

std::string ReadSource(const TSetting& setting, const THost& host) {
  // A value may be in quotation marks: UUID="...".
  std::string source = setting.fDevice;
  source.erase(std::remove(source.begin(), source.end(), '"'), source.end());
  const TBlockDevice* const device = host.Shared<TBlockDevices>().FindMounted({}, source);
  return device == nullptr ? MountedDevice(setting) : device->GetPath();
}

TReading<bool> ReadIsMounted(const TSetting& setting, const THost& host) {
  const auto& mounts = host.Shared<TMounts>();
  if (!HasPath(setting)) return Missing("has no place to be mounted at");
  if (!mounts.fReason.empty()) return Missing(mounts.fReason);
  if (mounts.fIsConfigured) return Missing("no table of mounts was found");
  return mounts.fAll.count(NameOf(setting)) != 0;
}

auto Number(std::string TSetting::*field) {
  return [field](const TSetting& setting) {
    return ToNumber<std::uint16_t>(TText(setting.*field), kFstab);
  };
}

}  // namespace

TClass MountSettingClass() {
  return THostTable<TSetting>{
      "VORNSG_MountSetting",
      "A line of fstab: a file system or a swap space that is configured.",
      ListSettings,
      {{"InstanceID", "Where it is to be mounted; of swap space, the device.", NameOf, kKey,
        ESecret::kMountSource},
       {"Device", "What is to be mounted, as the line names it.", MountedDevice,
        ESecret::kMountSource},
       {"SourceDevice",
        "The kernel's device file of that; the same as Device if there is no such block device.",
        ReadSource, ESecret::kMountSource},
       {"FileSystemType", "Its type, as in \"ext4\" or \"swap\".",
        [](const TSetting& setting) { return PrintableText(setting.fType); }},
       {"MountOptions", "The options for mounting it.",
        [](const TSetting& setting) {
          return OptionsWithoutCredentials(PrintableText(setting.fOptions));
        },
        ESecret::kMountSource},
       {"MountsAtBoot", "Whether it is mounted when the machine starts.",
        [](const TSetting& setting) { return !HasMountOption(setting.fOptions, "noauto"); }},
       {"IsMounted", "Whether something is mounted there now.", ReadIsMounted},
       {"DumpFrequency", "Whether dump(8) saves it.", Number(&TSetting::fDumpFrequency)},
       {"CheckPass", "In which pass it is checked when the machine starts; 0 for never.",
        Number(&TSetting::fPass)}}};
}

}  // namespace NVORNQDX20
