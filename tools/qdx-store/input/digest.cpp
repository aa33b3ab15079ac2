// SPDX-License-Identifier: Apache-2.0
#include "digest.h"

#include <array>
#include <cstdint>

namespace NVORNQDX20::NStore {

TDigest::TDigest() { sha256_init(&fContext); }

void TDigest::Add(std::string_view bytes) {
  sha256_update(&fContext, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
}

std::string TDigest::Finish() {
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&fContext, digest.size(), digest.data());
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(2 * digest.size());
  for (const std::uint8_t byte : digest) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text;
}

std::string ShortDigestOf(std::string_view bytes) {
  TDigest digest;
  digest.Add(bytes);
  constexpr std::size_t kDigits = 32;
  return digest.Finish().substr(0, kDigits);
}

}  // namespace NVORNQDX20::NStore
