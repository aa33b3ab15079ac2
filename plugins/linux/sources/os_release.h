// SPDX-License-Identifier: Apache-2.0
/// Parses the os-release file (os-release(5)).
#ifndef PLUGINS_LINUX_SOURCES_OS_RELEASE_H_
#define PLUGINS_LINUX_SOURCES_OS_RELEASE_H_

#include <map>
#include <string>
#include <string_view>

namespace NVORNQDX20 {

/// Returns the assigned variables, with quotes and backslashes removed as by a shell; variables in
/// values are not expanded. Lines without an assignment or with an unclosed quote are ignored. The
/// last of several assignments counts.
std::map<std::string, std::string> ParseOSRelease(std::string_view text);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_OS_RELEASE_H_
