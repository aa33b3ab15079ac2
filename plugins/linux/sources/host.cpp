// SPDX-License-Identifier: Apache-2.0
#include "host.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <sys/utsname.h>

#include "firmware/placeholders.h"

namespace NVORNQDX20 {
namespace {

TText AskKernel(char (utsname::*field)[65]) {
  utsname names{};
  if (::uname(&names) != 0) return Missing("uname gives no names");
  return PrintableText(names.*field);
}

/// The parts of the running kernel's description in /proc/version: "Linux version 6.1.0 (...) #1
/// SMP".
enum class EPart { kName, kRelease, kVersion };

TText PartOf(const std::string& description, EPart part) {
  constexpr std::string_view kMiddle = " version ";
  const std::size_t name = description.find(kMiddle);
  const std::size_t release = name == std::string::npos ? name : name + kMiddle.size();
  const std::size_t version = description.rfind(" #");
  if (release >= description.size() || (version == std::string::npos && part == EPart::kVersion)) {
    return Missing("/proc/version: names no kernel");
  }
  if (part == EPart::kName) return description.substr(0, name);
  if (part == EPart::kVersion) return description.substr(version + 1);
  return description.substr(release, description.find(' ', release) - release);
}

/// Reads a name from the running kernel. Below another root, reads the file that has its copy, else
/// the part of /proc/version.
TText ReadKernelName(const TFiles& files, const char* path, char (utsname::*field)[65],
                     EPart part) {
  if (files.IsThisMachine()) return AskKernel(field);
  TText name = files.ReadLine(path);
  if (name || !files.IsAbsent(path)) return name;
  const TText described = files.ReadLine("/proc/version").and_then([part](const std::string& line) {
    return PartOf(line, part);
  });
  return described ? described : name;
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

/// Where SMBIOS has what the kernel shows in a file.
struct TDMIField {
  std::string_view fFile;
  std::uint8_t fType;
  std::size_t fOffset;
};
constexpr TDMIField kDMIFields[] = {
    {"bios_vendor", 0, 0x04},    {"bios_version", 0, 0x05},     {"bios_date", 0, 0x08},
    {"sys_vendor", 1, 0x04},     {"product_name", 1, 0x05},     {"product_version", 1, 0x06},
    {"product_serial", 1, 0x07}, {"product_sku", 1, 0x19},      {"product_family", 1, 0x1A},
    {"board_vendor", 2, 0x04},   {"board_name", 2, 0x05},       {"board_version", 2, 0x06},
    {"board_serial", 2, 0x07},   {"chassis_vendor", 3, 0x04},   {"chassis_version", 3, 0x06},
    {"chassis_serial", 3, 0x07}, {"chassis_asset_tag", 3, 0x08}};

TText ReadDMIFile(const TFiles& files, const std::string& name) {
  const TFiles folder = files.In("/sys/class/dmi/id");
  if (folder.IsAbsent("")) {
    return Missing("no DMI table: " + folder.PathOf("") + " does not exist");
  }
  return WithoutPlaceholder(folder.ReadLine(name), folder.PathOf(name));
}

/// The files that have been read.
struct TDMIFiles {
  explicit TDMIFiles(const THost&) {}
  mutable std::map<std::string, TText> fTexts;
};

struct TSharedSMBIOS {
  explicit TSharedSMBIOS(const THost& host) : fReading(ReadSMBIOS(host)) {}
  TReading<TSMBIOS> fReading;
};

}  // namespace

THost::THost(const TRequest& request)
    : TFiles(request),
      fKernelName(
          ReadKernelName(*this, "/proc/sys/kernel/ostype", &utsname::sysname, EPart::kName)),
      fKernelRelease(
          ReadKernelName(*this, "/proc/sys/kernel/osrelease", &utsname::release, EPart::kRelease)),
      fKernelVersion(
          ReadKernelName(*this, "/proc/sys/kernel/version", &utsname::version, EPart::kVersion)),
      fName(ReadHostName(*this)) {}

TText THost::ReadDMIString(const std::string& name) const {
  const TReading<TSMBIOS>& smbios = GetSMBIOS();
  const auto field = std::find_if(std::begin(kDMIFields), std::end(kDMIFields),
                                  [&name](const TDMIField& each) { return each.fFile == name; });
  if (smbios && field != std::end(kDMIFields)) {
    const auto structures = smbios->OfType(field->fType);
    if (!structures.empty()) return structures.front().ReadString(field->fOffset);
  }
  // Several classes ask for the same file.
  auto& texts = Shared<TDMIFiles>().fTexts;
  const auto known = texts.find(name);
  return known != texts.end() ? known->second
                              : texts.emplace(name, ReadDMIFile(*this, name)).first->second;
}

const TReading<TSMBIOS>& THost::GetSMBIOS() const { return Shared<TSharedSMBIOS>().fReading; }

}  // namespace NVORNQDX20
