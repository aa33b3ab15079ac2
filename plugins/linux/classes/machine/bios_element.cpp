// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_BIOSElement: the firmware that starts the machine.
#include <array>
#include <cstdio>

#include "classes/physical_element.h"

namespace NVORNQDX20 {
namespace {

const char* const kName = "BIOS";

TInstances<TPhysicalElement> ListBIOS(const THost& host) {
  return ListFirmware(host, 0, kName, {"bios_vendor", "bios_version", "bios_date"});
}

/// Parses "10/04/2018": month, day and year, which has two digits in old firmware.
TReading<TCIMDateTime> ParseDate(const std::string& text) {
  unsigned int month = 0;
  unsigned int day = 0;
  unsigned int year = 0;
  char rest = 0;
  const int count = std::sscanf(text.c_str(), "%2u/%2u/%4u%c", &month, &day, &year, &rest);
  if (count != 3 || month < 1 || month > 12 || day < 1 || day > 31) {
    return Missing("'" + text + "' is not a date");
  }
  if (year < 100) year += 1900;  // two digits mean the last century
  std::array<char, 26> date{};
  std::snprintf(date.data(), date.size(), "%04u%02u%02u000000.000000+000", year % 10000,
                month % 100, day % 100);
  return TCIMDateTime(date.data());
}

TReading<TCIMDateTime> ReadReleaseDate(const TPhysicalElement& bios, const THost& host) {
  return FirmwareText(0x08, "bios_date")(bios, host).and_then(ParseDate);
}

/// Reads two bytes, major and minor; 255 in both if there is no such release.
auto Release(std::size_t offset, const char* file) {
  return [offset, file](const TPhysicalElement& bios, const THost& host) -> TText {
    if (!bios.fStructure) return host.ReadDMIString(file);
    return bios.fStructure->ReadBytes(offset, 2).and_then([&bios](const std::string& bytes) {
      const auto number = [&bytes](std::size_t i) {
        return std::to_string(static_cast<std::uint8_t>(bytes[i]));
      };
      if (bytes == "\xFF\xFF") return TText(bios.fStructure->MissingFrom("has no release"));
      return TText(number(0) + "." + number(1));
    });
  };
}

/// In blocks of 64 KiB less one, or from 16 MiB on in a field of its own.
TNumber ReadROMSize(const TPhysicalElement& bios) {
  const auto blocks = FirmwareNumber<std::uint8_t>(0x09)(bios);
  if (!blocks || *blocks != 0xFF) {
    return blocks.map([](std::uint8_t count) { return (std::uint64_t{count} + 1) << 16U; });
  }
  const auto extended = FirmwareNumber<std::uint16_t>(0x18)(bios);
  if (!extended) return std::uint64_t{16} << 20U;
  // The highest two bits are the unit: MiB or GiB.
  const unsigned int shift = *extended >> 14U == 1 ? 30 : 20;
  return static_cast<std::uint64_t>(*extended & 0x3FFFU) << shift;
}

TText ReadSMBIOSVersion(const TPhysicalElement&, const THost& host) {
  return host.GetSMBIOS().and_then([](const TSMBIOS& smbios) -> TText {
    const unsigned int version = smbios.GetVersion();
    if (version == 0) return Missing("no entry point of SMBIOS tells it");
    return std::to_string(version >> 8U) + "." + std::to_string(version & 0xFFU);
  });
}

/// An incomplete copy may lack the folder, too.
TReading<bool> ReadUEFI(const TPhysicalElement&, const THost& host) {
  TReading<bool> isThere = host.Exists("/sys/firmware/efi");
  if (!isThere || *isThere) return isThere;
  if (host.IsThisMachine() || !host.IsAbsent("/sys/firmware/acpi")) return false;
  return host.MissingFrom("/sys/firmware/efi", "No such file or directory");
}

}  // namespace

TClass BIOSElementClass() {
  constexpr std::uint16_t kNotApplicable = 66;
  constexpr std::uint16_t kRunning = 3;
  return THostTable<TPhysicalElement>{
      "VORNSG_BIOSElement",
      "The firmware that starts the machine.",
      ListBIOS,
      {{"Name", "What it is.", Constant(kName), kKey},
       {"Version", "The version, as its maker counts.", FirmwareText(0x05, "bios_version"), kKey},
       {"SoftwareElementState", "Whether it runs.", Constant(kRunning), kKey,
        TEnumeration{{0, "Deployable"}, {1, "Installable"}, {2, "Executable"}, {3, "Running"}}},
       {"TargetOperatingSystem", "The system that it is made for.", Constant(kNotApplicable), kKey,
        TEnumeration{{0, "Unknown"}, {1, "Other"}, {36, "LINUX"}, {66, "Not Applicable"}}},
       {"SoftwareElementID", "Tells it from others.", &TPhysicalElement::fTag, kKey},
       {"Manufacturer", "The maker.", FirmwareText(0x04, "bios_vendor")},
       {"PrimaryBIOS", "Whether the machine starts with it.", Constant(true)},
       {"ReleaseDate", "When it was released.", ReadReleaseDate},
       {"SystemRelease", "Its major and minor release.", Release(0x14, "bios_release")},
       {"ControllerRelease", "The release of the embedded controller's firmware.",
        Release(0x16, "ec_firmware_release")},
       {"ROMSize", "The memory chip that it is in.", ReadROMSize, TUnit{"byte"}},
       {"SMBIOSVersion", "The version of the table that describes the machine.", ReadSMBIOSVersion},
       {"UEFI", "Whether the running system was started by UEFI.", ReadUEFI}}};
}

}  // namespace NVORNQDX20
