// SPDX-License-Identifier: Apache-2.0
// Files about disks and mounts. The first byte selects a table of mountinfo (0), the device (1) or
// the options (2) of a mount, pages of vital product data (3), data of udev (4) or a volume group
// of LVM (5).
#include <sources/mount_table.h>
#include <sources/storage/block_devices.h>
#include <sources/storage/credentials.h>
#include <sources/storage/lvm_metadata.h>
#include <sources/storage/udev_data.h>
#include <sources/storage/vpd_pages.h>

#include "checks.h"

using namespace NVORNQDX20;

namespace {

/// Escapes whatever separates words.
std::string Escape(const std::string& text) {
  std::string escaped;
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (std::string_view(" \t\n\\").find(character) == std::string_view::npos) {
      escaped += character;
    } else {
      for (const int digit : {-1, code / 64, code / 8 % 8, code % 8}) {
        escaped += digit < 0 ? '\\' : static_cast<char>('0' + digit);
      }
    }
  }
  return escaped;
}

std::string Written(const std::map<std::string, TMount>& mounts) {
  std::string table;
  for (const auto& each : mounts) {
    const TMount& mount = each.second;
    table += "1 1 " + mount.fNumber + " " + Escape(mount.fFolder) + " " + Escape(mount.fPath) +
             " " + mount.fOptions + " - " + mount.fType + " " + Escape(mount.fDevice) + " rw\n";
  }
  return table;
}

void CheckMountInfo(const std::string& text) {
  const auto mounts = ParseMountInfo(text);
  const std::string written = Written(mounts);
  const auto again = ParseMountInfo(written);
  Require(Written(again) == written && again.size() == mounts.size());
  for (const auto& [key, mount] : mounts) {
    Require(PrintableText(mount.fPath) == key && again.at(key).fReadOnly == mount.fReadOnly);
  }
}

/// The secret has no character that ends it.
std::string SecretOf(const std::string& text) {
  std::string secret = "S3";
  for (const char character : text.substr(0, 8)) {
    if (character >= 'a' && character <= 'z') secret += character;
  }
  return secret + "cret";
}

void CheckDevice(const std::string& text) {
  const std::string secret = SecretOf(text);
  for (const std::string& device :
       {"https://me:" + secret + "@srv/" + text, "https://" + secret + "@" + text,
        "davs://srv/x?k=" + secret + text, secret + "@srv:/" + text}) {
    // What follows a secret may be a part of it for somebody, so only the secret itself is
    // searched.
    if (text.find(secret) == std::string::npos) {
      Require(WithoutCredentials(device).find(secret) == std::string::npos);
    }
  }
}

void CheckOptions(const std::string& text) {
  const std::string secret = SecretOf(text);
  if (text.find(secret) != std::string::npos) return;
  for (const char* name : {"password=", "PASS=", "username=", "secretkey="}) {
    const std::string kept = OptionsWithoutCredentials(text + "," + name + secret + ",,x");
    Require(kept.find(secret) == std::string::npos);
  }
}

void CheckPages(const std::string& page) {
  const TATAIdentity identity = ParseATAPage(page);
  for (const std::string& text : {ParseSerialNumberPage(page), ParseIdentificationPage(page),
                                  identity.fModel, identity.fFirmware}) {
    Require(PrintableText(text) == text);
  }
  Require(identity.fBuild.fFormFactor < 16 && ParseCharacteristicsPage(page).fFormFactor < 16);
}

void CheckUdev(const std::string& text) {
  const TUdevData data("source", text);
  for (const std::string& link : data.GetLinks()) Require(PrintableText(link) == link);
  const TLogicalVolume volume = ParseLogicalVolume(text);
  Require(volume.fGroup.size() + volume.fName.size() <= text.size());
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
  }
  return quoted + '"';
}

/// The number of sections, which are no deeper than allowed.
std::size_t WriteSection(const TLVMSection& section, int depth, std::string& text) {
  Require(depth < 8 && section.fName.size() <= 128);
  std::size_t count = 1;
  for (const auto& [name, values] : section.fValues) {
    text += name + " = [";
    for (const std::string& value : values) text += (text.back() == '[' ? "" : ",") + Quoted(value);
    text += "]\n";
  }
  for (const TLVMSection& inner : section.fSections) {
    text += inner.fName + " {\n";
    count += WriteSection(inner, depth + 1, text);
    text += "}\n";
  }
  return count;
}

void CheckVolumeGroup(const std::string& text) {
  const auto parsed = ParseLVMText(text);
  const auto group = ParseVolumeGroup("source", text);
  if (group && group->fFreeExtents) Require(*group->fFreeExtents <= *group->fExtents);
  if (!parsed) return Require(!group);
  std::string written;
  const std::size_t count = WriteSection(*parsed, 0, written);
  std::string again;
  const auto reparsed = ParseLVMText(written);
  Require(static_cast<bool>(reparsed));
  Require(WriteSection(*reparsed, 0, again) == count && again == written);
  const TLVMNames names = ParseLVMMapperUUID(text);
  Require(names.fGroupUUID.size() == names.fVolumeUUID.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return RunCheck(
      {CheckMountInfo, CheckDevice, CheckOptions, CheckPages, CheckUdev, CheckVolumeGroup}, data,
      size);
}
