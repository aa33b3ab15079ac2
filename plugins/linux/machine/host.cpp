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
TText ReadKernelName(const THostFiles& files, const char* file, char (utsname::*field)[65]) {
  if (!files.IsThisMachine()) return files.ReadLine(std::string("/proc/sys/kernel/") + file);
  utsname names{};
  if (::uname(&names) != 0) return Missing("uname gives no names");
  return PrintableText(names.*field);
}

TText ReadConfiguredHostName(const THostFiles& files) {
  const char* const path = "/etc/hostname";
  TText file = files.Read(path);
  if (!file) return file;
  std::istringstream lines(*file);
  for (std::string line; std::getline(lines, line);) {
    std::string name = PrintableText(line);
    if (!name.empty() && name.front() != '#') return name;
  }
  return Missing(std::string(path) + ": holds no name");
}

/// Returns whether there is a file that cannot be read.
bool IsHidden(const THostFiles& files, const char* path) {
  return !files.Read(path) && !files.IsAbsent(path);
}

TText ReadHostName(const THostFiles& files) {
  TText name = ReadKernelName(files, "hostname", &utsname::nodename);
  // The kernel's host name is "(none)" until one is set.
  if (name && !name->empty() && *name != "(none)") return name;
  return IsHidden(files, "/proc/sys/kernel/hostname") ? name : ReadConfiguredHostName(files);
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

THost::THost(const NDescribe::TRequest& request)
    : fFiles(request.fRoot),
      fKernelName(ReadKernelName(fFiles, "ostype", &utsname::sysname)),
      fKernelRelease(ReadKernelName(fFiles, "osrelease", &utsname::release)),
      fName(ReadHostName(fFiles)) {}

TText THost::ReadDMIString(const std::string& name) const {
  if (fFiles.IsAbsent(kDMIFolder)) {
    return Missing(std::string("no DMI table: ") + kDMIFolder + " does not exist");
  }
  const std::string path = std::string(kDMIFolder) + "/" + name;
  TText reading = fFiles.ReadLine(path);
  if (reading && IsPlaceholder(*reading)) {
    return Missing(path + ": placeholder text '" + *reading + "'");
  }
  return reading;
}

}  // namespace NVORNQDX20
