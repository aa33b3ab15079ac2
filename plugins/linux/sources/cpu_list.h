// SPDX-License-Identifier: Apache-2.0
/// Lists and masks of processor numbers, as the kernel writes them: "0-3,8".
#ifndef PLUGINS_LINUX_SOURCES_CPU_LIST_H_
#define PLUGINS_LINUX_SOURCES_CPU_LIST_H_

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace NVORNQDX20 {

using TCPUs = std::set<unsigned>;

/// More than CONFIG_NR_CPUS can be.
inline constexpr unsigned kMaxCPUs = 65536;

/// Returns nothing for a text in another format, for numbers that do not ascend, and for numbers
/// above those that Linux can have.
std::optional<TCPUs> ParseCPUList(std::string_view text);
/// Parses a mask: "00000000,0000000f" is 0-3. Returns nothing as above.
std::optional<TCPUs> ParseCPUMask(std::string_view text);
std::string FormatCPUList(const TCPUs& cpus);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_CPU_LIST_H_
