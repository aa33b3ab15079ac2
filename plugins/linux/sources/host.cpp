// SPDX-License-Identifier: Apache-2.0
#include "host.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include <sys/utsname.h>

namespace NVORNQDX20 {
namespace {

TText AskKernel(char (utsname::*field)[65]) {
  utsname names{};
  if (::uname(&names) != 0) return Missing("uname gives no names");
  return PrintableText(names.*field);
}

/// Reads a name from the running kernel, or from the file below another root that has its copy.
TText ReadKernelName(const TFiles& files, const char* path, char (utsname::*field)[65]) {
  return files.IsThisMachine() ? AskKernel(field) : files.ReadLine(path);
}

TText ReadConfiguredHostName(const TFiles& files) {
  const char* const path = "/etc/hostname";
  TText file = files.Read(path);
  if (!file) return file;
  for (std::string_view lines = *file; !lines.empty();) {
    std::string name = PrintableText(TakeLine(lines));
    if (!name.empty() && name.front() != '#') return name;
  }
  return files.MissingFrom(path, "holds no name");
}

TText ReadHostName(const TFiles& files) {
  const char* const path = "/proc/sys/kernel/hostname";
  TText name = files.IsThisMachine() ? AskKernel(&utsname::nodename) : files.Read(path);
  if (!name && !files.IsAbsent(path)) return name;  // may differ from the configured one
  const std::string running = name.ValueOr("");
  std::string first = PrintableText(running.substr(0, running.find('\n')));
  // The kernel's host name is "(none)" until one is set.
  return first.empty() || first == "(none)" ? ReadConfiguredHostName(files) : TText(first);
}

/// Complete DMI strings that mean "not set", compared without regard to case.
constexpr std::string_view kPlaceholders[] = {"0123456789",
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
                                              "Unspecified"};

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

THost::THost(const TRequest& request)
    : TFiles(request),
      fKernelName(ReadKernelName(*this, "/proc/sys/kernel/ostype", &utsname::sysname)),
      fKernelRelease(ReadKernelName(*this, "/proc/sys/kernel/osrelease", &utsname::release)),
      fName(ReadHostName(*this)) {}

TText THost::ReadDMIString(const std::string& name) const {
  const TFiles folder = In("/sys/class/dmi/id");
  if (folder.IsAbsent("")) {
    return Missing("no DMI table: " + folder.PathOf("") + " does not exist");
  }
  TText reading = folder.ReadLine(name);
  if (reading && IsPlaceholder(*reading)) {
    return folder.MissingFrom(name, "placeholder text '" + *reading + "'");
  }
  return reading;
}

}  // namespace NVORNQDX20
