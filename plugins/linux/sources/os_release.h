// SPDX-License-Identifier: Apache-2.0
/// Parses the os-release file (os-release(5)), which names the distribution.
#ifndef PLUGINS_LINUX_SOURCES_OS_RELEASE_H_
#define PLUGINS_LINUX_SOURCES_OS_RELEASE_H_

#include <map>
#include <string>
#include <string_view>

#include "host.h"

namespace NVORNQDX20 {

/// Returns the assigned variables, with quotes and backslashes removed as by a shell; variables in
/// values are not expanded. Lines without an assignment or with an unclosed quote are ignored. The
/// last of several assignments counts.
std::map<std::string, std::string> ParseOSRelease(std::string_view text);

/// The variables of the described machine, for THost::Shared; none if it has no such file.
struct TOSRelease {
  explicit TOSRelease(const THost& host);

  /// The reason of a missing variable begins with its name.
  TText Get(const std::string& variable) const;

  TReading<std::map<std::string, std::string>> fVariables;
};

/// Returns a distribution's name for itself, else that of the kernel.
TText ReadReleaseOrKernel(const THost& host, const char* variable, TText THost::*ofKernel);
/// Returns the name of the operating system, which is a key: empty if it has none.
std::string OSNameAsKey(const THost& host);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_OS_RELEASE_H_
