// SPDX-License-Identifier: Apache-2.0
/// What udev's rules found out about a block device: the database in /run/udev/data.
#ifndef PLUGINS_LINUX_SOURCES_STORAGE_UDEV_DATA_H_
#define PLUGINS_LINUX_SOURCES_STORAGE_UDEV_DATA_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sources/fields.h"

namespace NVORNQDX20 {

/// Decodes the characters that udev writes as "\x20", and strips blanks.
std::string DecodeUdev(std::string_view text);

/// The properties and links of one device.
class TUdevData {
 public:
  TUdevData() = default;
  /// `number` is that of the device, for example "8:0".
  TUdevData(const TFiles& files, const std::string& number);
  /// `text` has the lines of the file: "E:ID_BUS=ata" for a property, "S:cdrom" for a link.
  TUdevData(const std::string& source, const TText& text);

  /// Returns a property, for example "ID_FS_UUID".
  TText Get(const std::string& name) const;
  /// Returns a property whose characters are encoded, for example "ID_MODEL_ENC".
  TText GetDecoded(const std::string& name) const { return Get(name).map(DecodeUdev); }
  /// Returns the first of the properties that is there, else why the last is missing.
  TText FirstOf(const std::vector<const char*>& names) const;
  /// Returns the links to the device below /dev, for example "disk/by-uuid/...".
  const std::vector<std::string>& GetLinks() const { return fLinks; }

 private:
  std::shared_ptr<const TFields> fProperties;
  std::vector<std::string> fLinks;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_STORAGE_UDEV_DATA_H_
