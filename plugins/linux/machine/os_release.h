// SPDX-License-Identifier: Apache-2.0
/// The os-release file (os-release(5)).
#ifndef PLUGINS_LINUX_MACHINE_OS_RELEASE_H_
#define PLUGINS_LINUX_MACHINE_OS_RELEASE_H_

#include <map>
#include <string>
#include <string_view>

namespace NVORNQDX20 {

/// The variables that the text assigns, quotes and backslashes taken away as a shell does; nothing
/// is expanded. A line without assignment, or with a quote that does not end, is left out; of two
/// assignments the last holds.
std::map<std::string, std::string> ParseOSRelease(std::string_view text);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_OS_RELEASE_H_
