// SPDX-License-Identifier: Apache-2.0
#include "tables.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <arpa/inet.h>

namespace NVORNQDX20 {

TText FindNetTable(const THost& host, const std::string& name) {
  const std::array<std::string, 3> paths = {"/proc/net/" + name, "/proc/self/net/" + name,
                                            "/proc/1/net/" + name};
  return host.FirstOf({paths[0].c_str(), paths[1].c_str(), paths[2].c_str()})
      .map([&](const std::string& found) {
        // The first is the one that people know, so a missing table is missing there.
        return host.IsAbsent(found) ? paths[0] : found;
      });
}

TText ReadNetTable(const THost& host, const std::string& name) {
  return FindNetTable(host, name).and_then([&host](const std::string& path) {
    return host.Read(path, TFiles::kMaxTableSize);
  });
}

bool IsNetTableAbsent(const THost& host, const std::string& name) {
  const auto isAbsent = [&host](const TText& path) { return path && host.IsAbsent(*path); };
  return isAbsent(FindNetTable(host, name)) && !isAbsent(FindNetTable(host, "route"));
}

std::optional<std::uint64_t> ParseHex(std::string_view digits) {
  std::uint64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [last, error] = std::from_chars(digits.data(), end, number, 16);
  if (error != std::errc() || last != end) return std::nullopt;
  return number;
}

std::string AddressText(std::string_view bytes) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  const int family = bytes.size() == sizeof(in_addr) ? AF_INET : AF_INET6;
  if (family == AF_INET6 && bytes.size() != sizeof(in6_addr)) return {};
  const char* const written =
      ::inet_ntop(family, bytes.data(), text.data(), static_cast<socklen_t>(text.size()));
  return written == nullptr ? std::string() : written;
}

std::string BytesOfIPv4(const std::string& text) {
  std::array<char, sizeof(in_addr)> bytes{};
  if (::inet_pton(AF_INET, text.c_str(), bytes.data()) != 1) return {};
  return {bytes.data(), bytes.size()};
}

std::string MaskText(unsigned prefixLength) {
  std::string mask(sizeof(in_addr), '\0');
  for (unsigned bit = 0; bit < std::min(prefixLength, 32U); ++bit) {
    char& byte = mask[bit / 8];
    byte = static_cast<char>(static_cast<unsigned char>(byte) | (0x80U >> bit % 8));
  }
  return AddressText(mask);
}

std::string BytesOfHex(std::string_view digits) {
  std::string bytes;
  if (digits.size() % 2 != 0) return bytes;
  bytes.reserve(digits.size() / 2);
  for (; !digits.empty(); digits.remove_prefix(2)) {
    const auto byte = ParseHex(digits.substr(0, 2));
    if (!byte) return {};
    bytes += static_cast<char>(*byte);
  }
  return bytes;
}

std::string DigitsOf(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text += kDigits[code / 16];
    text += kDigits[code % 16];
  }
  return text;
}

}  // namespace NVORNQDX20
