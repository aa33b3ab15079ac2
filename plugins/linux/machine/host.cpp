// SPDX-License-Identifier: Apache-2.0
#include "host.h"

#include <sstream>

#include <sys/utsname.h>

#include "text.h"

namespace NVORNQDX20 {
namespace {

/// One name that the kernel gives: from the running kernel, or from the file in which a stand-in
/// tree holds what it said.
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
  // A kernel that was never told a name says "(none)".
  if (name && !name.fValue->empty() && *name.fValue != "(none)") return name;
  return ReadConfiguredHostName(files);
}

}  // namespace

THost::THost(const std::string& root)
    : fFiles(root),
      fKernelName(ReadKernelName(fFiles, "ostype", &utsname::sysname)),
      fKernelRelease(ReadKernelName(fFiles, "osrelease", &utsname::release)),
      fName(ReadHostName(fFiles)) {}

}  // namespace NVORNQDX20
