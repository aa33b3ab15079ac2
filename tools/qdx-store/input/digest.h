// SPDX-License-Identifier: Apache-2.0
/// Digests by which documents and rows are found.
#ifndef TOOLS_QDX_STORE_INPUT_DIGEST_H_
#define TOOLS_QDX_STORE_INPUT_DIGEST_H_

#include <string>
#include <string_view>

#include <nettle/sha2.h>

namespace NVORNQDX20::NStore {

/// SHA-256 of bytes that come piece by piece.
class TDigest {
 public:
  TDigest();

  void Add(std::string_view bytes);
  /// Returns the hexadecimal digits, in lower case. To be called once.
  std::string Finish();

 private:
  sha256_ctx fContext{};
};

/// Returns the first 32 digits, which are enough that nobody can make two texts with the same.
std::string ShortDigestOf(std::string_view bytes);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_DIGEST_H_
