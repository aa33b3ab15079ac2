// SPDX-License-Identifier: Apache-2.0
/// Tables of the kernel below /proc/net, and the addresses in them.
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_TABLES_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_TABLES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sources/host.h"

namespace NVORNQDX20 {

/// Returns the path of a table such as "route" or "bonding/bond0": below /proc/net, or, since that
/// is a link into the folder of a process, where a copied tree may have it.
TText FindNetTable(const THost& host, const std::string& name);

/// Reads it.
TText ReadNetTable(const THost& host, const std::string& name);

/// Returns whether the kernel has no such table, for example because IPv6 is switched off, while it
/// has the table "route".
bool IsNetTableAbsent(const THost& host, const std::string& name);

/// Parses hexadecimal digits without "0x", which fit in 64 bits.
std::optional<std::uint64_t> ParseHex(std::string_view digits);

/// Returns the text of an address of 4 or 16 bytes, such as "192.0.2.1"; empty for other sizes.
std::string AddressText(std::string_view bytes);

/// Returns the bytes of an IPv4 address, such as "192.0.2.1"; empty for another text.
std::string BytesOfIPv4(const std::string& text);

/// Returns the mask of a prefix, such as "255.255.255.0".
std::string MaskText(unsigned prefixLength);

/// Returns the bytes of hexadecimal digits without separators; empty for another text.
std::string BytesOfHex(std::string_view digits);

/// Returns the bytes as hexadecimal digits in upper case, without separators.
std::string DigitsOf(std::string_view bytes);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_TABLES_H_
