// SPDX-License-Identifier: Apache-2.0
/// Digests by which rows are found.
#ifndef TOOLS_QDX_STORE_STORAGE_DIGEST_H_
#define TOOLS_QDX_STORE_STORAGE_DIGEST_H_

#include <string>

namespace NVORNQDX20::NStore {

/// Returns 32 hexadecimal digits: half of SHA-256, so that nobody can make two texts with the same.
std::string DigestOf(const std::string& bytes);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_STORAGE_DIGEST_H_
