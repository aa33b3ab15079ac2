// SPDX-License-Identifier: Apache-2.0
/// Pseudonyms: made with a key, and another one for each value.
#ifndef LIB_REDACT_PSEUDONYMS_H_
#define LIB_REDACT_PSEUDONYMS_H_

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace NVORNQDX20::NRedact {

using TIPv4 = std::array<std::uint8_t, 4>;
using TIPv6 = std::array<std::uint8_t, 16>;

class TPseudonyms {
 public:
  explicit TPseudonyms(std::string key) : fKey(std::move(key)) {}

  /// Returns for example "serial-3f9a2c10".
  std::string Word(const std::string& kind, const std::string& value);
  /// Returns an address of 240.0.0.0/4, which no machine has. Addresses of one network with 24 bits
  /// keep a network in common, and its first and last address remain these.
  TIPv4 IPv4(const TIPv4& address);
  /// Returns an address of 2001:db8::/32, which is for documentation; of a link-local address, a
  /// link-local one. Addresses of one network with 64 bits keep a network in common.
  TIPv6 IPv6(const TIPv6& address);
  /// Returns as many hexadecimal digits, in lower case: of twelve, which are an Ethernet address, a
  /// locally administered one; of sixteen, a worldwide name that is locally assigned.
  std::string Hex(const std::string& digits);
  /// Returns a number that is below 2^63.
  std::uint64_t Number(const std::string& value) const;

 private:
  using TDigest = std::array<std::uint8_t, 32>;

  TDigest Digest(const std::string& purpose, std::string_view value, std::uint32_t count) const;
  template <typename TMake>
  std::string Unique(const std::string& purpose, const std::string& value, const TMake& make);
  const std::array<std::uint8_t, 256>& LastBytes(const std::string& network);

  const std::string fKey;
  std::map<std::pair<std::string, std::string>, std::string> fKnown;  // by purpose and value
  std::set<std::pair<std::string, std::string>> fUsed;                // purpose and pseudonym
  std::map<std::string, std::array<std::uint8_t, 256>> fLastBytes;    // by network
};

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_PSEUDONYMS_H_
