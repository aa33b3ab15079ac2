// SPDX-License-Identifier: Apache-2.0
#include "pseudonyms.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include <nettle/hmac.h>

namespace NVORNQDX20::NRedact {
namespace {

const std::uint8_t* BytesOf(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

template <typename TBytes>
std::string HexOf(const TBytes& bytes, std::size_t digits) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  text.resize(std::min(text.size(), digits));
  return text;
}

template <typename TBytes>
std::string BytesAt(const TBytes& bytes, std::size_t begin, std::size_t size) {
  return std::string(bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                     bytes.begin() + static_cast<std::ptrdiff_t>(begin + size));
}

template <typename TBytes>
void Put(TBytes& bytes, std::size_t begin, const std::string& text) {
  std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(begin));
}

}  // namespace

TPseudonyms::TDigest TPseudonyms::Digest(const std::string& purpose, std::string_view value,
                                         std::uint32_t count) const {
  // The lengths are in it, so that no two inputs are the same bytes.
  const std::string head = purpose + ":" + std::to_string(count) + ":";
  hmac_sha256_ctx context;
  hmac_sha256_set_key(&context, fKey.size(), BytesOf(fKey));
  hmac_sha256_update(&context, head.size(), BytesOf(head));
  hmac_sha256_update(&context, value.size(), BytesOf(value));
  TDigest digest;
  hmac_sha256_digest(&context, digest.size(), digest.data());
  return digest;
}

/// Makes pseudonyms of the value until one is new: two values never share one, since the keys of
/// instances depend on them.
template <typename TMake>
std::string TPseudonyms::Unique(const std::string& purpose, const std::string& value,
                                const TMake& make) {
  const auto [known, isNew] = fKnown.try_emplace({purpose, value});
  for (std::uint32_t count = 0; isNew; ++count) {
    known->second = make(Digest(purpose, value, count));
    // Whatever the digest is, there are only so many short ones.
    if (fUsed.insert({purpose, known->second}).second || count == 1000) break;
  }
  return known->second;
}

std::string TPseudonyms::Word(const std::string& kind, const std::string& value) {
  return kind + "-" + Unique(kind, value, [](const TDigest& digest) { return HexOf(digest, 8); });
}

/// Returns what each last byte of the network's addresses becomes.
const std::array<std::uint8_t, 256>& TPseudonyms::LastBytes(const std::string& network) {
  const auto [found, isNew] = fLastBytes.try_emplace(network);
  auto& bytes = found->second;
  if (!isNew) return bytes;
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
  for (std::uint32_t left = 254; left > 1; --left) {  // 0 and 255 stay
    const TDigest digest = Digest("last byte", network, left);
    const std::uint32_t random =
        std::uint32_t{digest[0]} << 16U | std::uint32_t{digest[1]} << 8U | std::uint32_t{digest[2]};
    std::swap(bytes[left], bytes[1 + random % left]);
  }
  return bytes;
}

TIPv4 TPseudonyms::IPv4(const TIPv4& address) {
  const std::string network = BytesAt(address, 0, 3);
  TIPv4 result = {};
  Put(result, 0, Unique("network", network, [](TDigest digest) {
        digest[0] |= 0xF0;
        return BytesAt(digest, 0, 3);
      }));
  result[3] = LastBytes(network)[address[3]];
  return result;
}

TIPv6 TPseudonyms::IPv6(const TIPv6& address) {
  TIPv6 result = {};
  const std::string network = BytesAt(address, 0, 8);
  const std::string interface = BytesAt(address, 8, 8);
  if (address[0] == 0xFE && (address[1] & 0xC0) == 0x80) {
    Put(result, 0, network);
  } else {
    const std::string start("\x20\x01\x0d\xb8", 4);
    Put(result, 0, start + Unique("network 6", network, [](const TDigest& digest) {
                     return BytesAt(digest, 0, 4);
                   }));
  }
  if (interface.find_first_not_of('\0') != std::string::npos) {
    Put(result, 8, Unique("interface", BytesAt(address, 0, 16), [](const TDigest& digest) {
          return BytesAt(digest, 0, 8);
        }));
  }
  return result;
}

std::string TPseudonyms::Hex(const std::string& digits) {
  const std::size_t size = digits.size();
  return Unique("hex " + std::to_string(size), digits, [size](const TDigest& digest) {
    std::string text = HexOf(digest, size);
    text.resize(size, '0');
    if (size == 12) text.replace(0, 2, "02");
    if (size == 16) text.replace(0, 1, "3");
    return text;
  });
}

std::uint64_t TPseudonyms::Number(const std::string& value) const {
  const TDigest digest = Digest("number", value, 0);
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < 8; ++i) number = number << 8 | digest[i];
  return number >> 1;
}

}  // namespace NVORNQDX20::NRedact
