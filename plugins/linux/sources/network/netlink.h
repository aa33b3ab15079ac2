// SPDX-License-Identifier: Apache-2.0
/// Asks the running kernel for its network links, addresses and routes (rtnetlink(7)).
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_NETLINK_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_NETLINK_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// Returns the messages of a dump, for example of RTM_GETLINK. Waits at most a second in total, and
/// takes at most 64 MiB.
TReading<std::string> DumpNetlink(std::uint16_t request);

/// Calls `take` with the type and the payload of each message. Stops at one that is cut off.
void ForEachMessage(std::string_view dump,
                    const std::function<void(unsigned type, std::string_view payload)>& take);

/// Calls `take` with the type and the value of each attribute. Stops at one that is cut off.
void ForEachAttribute(std::string_view attributes,
                      const std::function<void(unsigned type, std::string_view value)>& take);

/// Copies a structure from the front of the bytes; null if they are too few.
template <typename T>
std::optional<T> FrontOf(std::string_view bytes) {
  static_assert(std::is_trivially_copyable_v<T>);
  T value{};
  if (bytes.size() < sizeof value) return std::nullopt;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

/// Returns the attributes after the header of a message, which is aligned to four bytes.
inline std::string_view AttributesAfter(std::string_view payload, std::size_t header) {
  return payload.substr(std::min((header + 3) / 4 * 4, payload.size()));
}

/// Returns a text attribute without the zero at its end.
inline std::string TextOfAttribute(std::string_view value) {
  return PrintableText(value.substr(0, value.find('\0')));
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_NETLINK_H_
