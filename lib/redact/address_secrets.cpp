// SPDX-License-Identifier: Apache-2.0
// How addresses are found and replaced.
#include <qdxmodel/names.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include <arpa/inet.h>

#include <boost/algorithm/string/erase.hpp>

#include "secrets.h"
#include "spelling.h"

namespace NVORNQDX20::NRedact {
namespace {

template <std::size_t kSize>
std::string AddressText(int family, const std::array<std::uint8_t, kSize>& address) {
  char text[INET6_ADDRSTRLEN] = {};
  ::inet_ntop(family, address.data(), text, sizeof text);
  return text;
}

std::string FullText(const TIPv6& address) {
  static constexpr char kLower[] = "0123456789abcdef";
  std::string digits;
  for (const std::uint8_t byte : address) digits += {kLower[byte >> 4], kLower[byte & 15]};
  return Grouped(digits, 4, ':');
}

/// Loopback, unspecified, multicast, masks and what is reserved, which pseudonyms are of.
bool IsCommon(const TIPv4& address) {
  return address[0] == 0 || address[0] == 127 || address[0] >= 224 ||
         address == TIPv4{169, 254, 169, 254};
}

bool IsCommon(const TIPv6& address) {
  const auto isZero = [&address](std::size_t begin, std::size_t end) {
    return std::all_of(address.begin() + static_cast<std::ptrdiff_t>(begin),
                       address.begin() + static_cast<std::ptrdiff_t>(end),
                       [](std::uint8_t byte) { return byte == 0; });
  };
  const bool isLoopback = isZero(0, 15) && address[15] <= 1;
  const bool isLinkLocalNetwork = address[0] == 0xFE && isZero(2, 16);
  const bool isDocumentation =
      address[0] == 0x20 && address[1] == 0x01 && address[2] == 0x0D && address[3] == 0xB8;
  return isLoopback || isLinkLocalNetwork || isDocumentation || address[0] == 0xFF;
}

}  // namespace

void TSecrets::LearnHex(const std::string& digits) {
  if (IsKept(ESecret::kAddress)) return;
  if (digits.find_first_not_of(digits.front()) == std::string::npos) return;  // none, or all ones
  const std::string to = fPseudonyms.Hex(digits);
  fReplacer.Add({digits, to});
  for (const char separator : {':', '-'}) {
    fReplacer.Add({Grouped(digits, 2, separator), Grouped(to, 2, separator)});
  }
  fReplacer.Add({Grouped(digits, 4, '.'), Grouped(to, 4, '.')});
}

void TSecrets::LearnIPv4(const std::string& text, const TIPv4& address) {
  if (IsKept(ESecret::kAddress) || IsCommon(address)) return;
  fReplacer.Add({text, AddressText(AF_INET, fPseudonyms.IPv4(address)), EBeside::kNoIPv4});
}

void TSecrets::LearnIPv6(const std::string& text, const TIPv6& address) {
  if (IsKept(ESecret::kAddress) || IsCommon(address)) return;
  constexpr EBeside kBeside = EBeside::kNoHexadecimal;
  static constexpr TIPv6 kMapped = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
  TIPv6 to;
  if (std::equal(kMapped.begin(), kMapped.begin() + 12, address.begin())) {
    TIPv4 last = {address[12], address[13], address[14], address[15]};
    if (!IsCommon(last)) last = fPseudonyms.IPv4(last);
    to = kMapped;
    std::copy(last.begin(), last.end(), to.begin() + 12);
  } else {
    to = fPseudonyms.IPv6(address);
  }
  const std::string shortest = AddressText(AF_INET6, to);
  fReplacer.Add({FullText(address), FullText(to), kBeside});
  fReplacer.Add({AddressText(AF_INET6, address), shortest, kBeside});
  fReplacer.Add({text, shortest, kBeside});
  fReplacer.Add({boost::algorithm::erase_all_copy(FullText(address), ":"),
                 boost::algorithm::erase_all_copy(FullText(to), ":")});
}

/// Returns whether the whole text is an IP address, common or not.
bool TSecrets::LearnIP(const std::string& text) {
  TIPv4 four;
  TIPv6 six;
  if (::inet_pton(AF_INET, text.c_str(), four.data()) == 1) {
    LearnIPv4(text, four);
    return true;
  }
  if (::inet_pton(AF_INET6, text.c_str(), six.data()) != 1) return false;
  LearnIPv6(text, six);
  return true;
}

/// Returns whether the whole text is an address, common or not: of hardware with colons, and if
/// `isPlain` also without.
bool TSecrets::LearnAddress(const std::string& text, bool isPlain) {
  if (LearnIP(text)) return true;
  const std::string digits = HexDigitsOf(text);
  if (digits.empty()) return false;
  const bool isGrouped =
      text.size() % 3 == 2 && text.size() >= 17 && Grouped(digits, 2, ':') == NModel::Folded(text);
  if (!isGrouped && !(isPlain && digits.size() == text.size())) return false;
  LearnHex(digits);
  return true;
}

/// Returns whether there is one of IPv4, also after hexadecimal digits, as in "o2ib:10.0.0.1".
bool TSecrets::LearnIPv4In(std::string_view text) {
  constexpr std::string_view kParts = "0123456789.";
  bool isAny = false;
  for (std::size_t at = text.find_first_of(kParts); at < text.size();) {
    const std::size_t end = std::min(text.find_first_not_of(kParts, at), text.size());
    std::string_view run = text.substr(at, end - at);
    // "vmlinuz-4.19.0.6" is a version, but "ip-10.0.0.1:3260-iscsi" is how udev names a path.
    const bool isAfterWord = at != 0 && IsMadeOf(text.substr(at - 1, 1), kWord) &&
                             !(at > 2 && text.substr(at - 3, 3) == "ip-");
    const bool isPart = isAfterWord || (end != text.size() && text[end] != '-' &&
                                        IsMadeOf(text.substr(end, 1), kWord));
    at = text.find_first_of(kParts, end);
    while (!run.empty() && run.back() == '.') run.remove_suffix(1);
    if (!isPart && run.size() > 6) isAny = LearnIP(std::string(run)) || isAny;
  }
  return isAny;
}

/// Returns whether there is one.
bool TSecrets::LearnAddressesIn(std::string_view text, bool isPlain) {
  constexpr std::string_view kParts = "0123456789abcdefABCDEF:.";
  bool isAny = LearnIPv4In(text);
  for (std::size_t at = text.find_first_of(kParts); at < text.size();) {
    const std::size_t end = std::min(text.find_first_not_of(kParts, at), text.size());
    std::string_view run = text.substr(at, end - at);
    const bool isPart =
        (at != 0 && IsMadeOf(text.substr(at - 1, 1), kWord) &&
         !(at > 1 && text.substr(at - 2, 2) == "0x") && text[at - 1] != '-') ||
        (end != text.size() && IsMadeOf(text.substr(end, 1), kWord) && text[end] != '-');
    at = text.find_first_of(kParts, end);
    if (isPart) continue;
    while (!run.empty() && (run.back() == '.' ||
                            (run.back() == ':' && run.size() > 1 && run[run.size() - 2] != ':'))) {
      run.remove_suffix(1);
    }
    const std::string whole(run);
    if (LearnAddress(whole, isPlain)) {
      isAny = true;
      continue;
    }
    // After the priority of a bridge.
    for (const std::string& part : Split(whole, ".")) {
      if (isPlain && IsMadeOf(part, kHexadecimal)) isAny = LearnAddress(part, isPlain) || isAny;
    }
  }
  return isAny;
}

}  // namespace NVORNQDX20::NRedact
