// SPDX-License-Identifier: Apache-2.0
#include "digest.h"

#include <nettle/sha2.h>

#include <cstdint>

namespace NVORNQDX20::NStore {

std::string DigestOf(const std::string& bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  std::uint8_t digest[SHA256_DIGEST_SIZE / 2];
  sha256_digest(&context, sizeof digest, digest);
  std::string text;
  text.reserve(2 * sizeof digest);
  for (const std::uint8_t byte : digest) {
    text += "0123456789abcdef"[byte >> 4U];
    text += "0123456789abcdef"[byte & 15U];
  }
  return text;
}

}  // namespace NVORNQDX20::NStore
