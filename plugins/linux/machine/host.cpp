// SPDX-License-Identifier: Apache-2.0
#include "host.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string_view>

#include <sys/utsname.h>

#include "text.h"

namespace NVORNQDX20 {
namespace {

/// Reads a name from the running kernel, or from the file below another root that has its copy.
TReading ReadKernelName(const THostFiles& files, const char* file, char (utsname::*field)[65]) {
  if (!files.IsThisMachine()) return files.ReadLine(std::string("/proc/sys/kernel/") + file);
  utsname names{};
  if (::uname(&names) != 0) return TReading::Missing("uname gives no names");
  return TReading::Of(PrintableText(names.*field));
}

TReading ReadConfiguredHostName(const THostFiles& files) {
  const char* const path = "/etc/hostname";
  TReading file = files.Read(path);
  if (!file) return file;
  std::istringstream lines(*file.fValue);
  for (std::string line; std::getline(lines, line);) {
    std::string name = PrintableText(line);
    if (!name.empty() && name.front() != '#') return TReading::Of(std::move(name));
  }
  return TReading::Missing(std::string(path) + ": holds no name");
}

TReading ReadHostName(const THostFiles& files) {
  TReading name = ReadKernelName(files, "hostname", &utsname::nodename);
  // The kernel's host name is "(none)" until one is set.
  if (name && !name.fValue->empty() && *name.fValue != "(none)") return name;
  return ReadConfiguredHostName(files);
}

const char* const kDMIFolder = "/sys/class/dmi/id";

/// Complete DMI strings that mean "not set", compared without regard to case.
constexpr std::string_view kPlaceholders[] = {
    "0123456789",
    "123456789",
    "1234567890",
    "Chassis Serial Number",
    "Default",
    "Default string",
    "Empty",
    "Invalid",
    "N/A",
    "None",
    "Not Applicable",
    "Not Available",
    "Not Specified",
    "Null",
    "O.E.M.",
    "OEM",
    "Product Name",
    "Serial Number",
    "SKU",
    "System manufacturer",
    "System Product Name",
    "System Serial Number",
    "System SKU",
    "TBD",
    "To be filled by O.E.M.",
    "To be filled by OEM",
    "Undefined",
    "Unknown",
    "Unspecified",
};

/// Returns whether the text has only zeros and ASCII punctuation, as in "00000000-0000" or
/// "......".
bool IsFiller(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    const auto code = static_cast<unsigned char>(character);
    const bool letter = (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
    return code < 0x80 && !letter && !(code >= '1' && code <= '9');
  });
}

bool IsPlaceholder(const std::string& text) {
  return IsFiller(text) || std::any_of(std::begin(kPlaceholders), std::end(kPlaceholders),
                                       [&text](std::string_view placeholder) {
                                         return NModel::EqualIgnoringCase(text, placeholder);
                                       });
}

}  // namespace

THost::THost(const std::string& root)
    : fFiles(root),
      fKernelName(ReadKernelName(fFiles, "ostype", &utsname::sysname)),
      fKernelRelease(ReadKernelName(fFiles, "osrelease", &utsname::release)),
      fName(ReadHostName(fFiles)) {}

TReading THost::ReadDMIString(const std::string& name) const {
  if (!fFiles.IsFolder(kDMIFolder)) {
    return TReading::Missing(std::string("no DMI table: ") + kDMIFolder + " does not exist");
  }
  const std::string path = std::string(kDMIFolder) + "/" + name;
  TReading reading = fFiles.ReadLine(path);
  if (reading && IsPlaceholder(*reading.fValue)) {
    return TReading::Missing(path + ": placeholder text '" + *reading.fValue + "'");
  }
  return reading;
}

}  // namespace NVORNQDX20
