// SPDX-License-Identifier: Apache-2.0
/// Lists of processor numbers, as the kernel writes them: "0-3,8".
#ifndef PLUGINS_LINUX_SOURCES_CPU_LIST_H_
#define PLUGINS_LINUX_SOURCES_CPU_LIST_H_

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace NVORNQDX20 {

using TCPUs = std::set<unsigned>;

/// Returns nothing for a text in another format, and for numbers above those that Linux can have.
std::optional<TCPUs> ParseCPUList(std::string_view text);
std::string FormatCPUList(const TCPUs& cpus);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_CPU_LIST_H_
