// SPDX-License-Identifier: Apache-2.0
/// The format of compressed files.
#ifndef QDXOUTPUT_GZIP_FORMAT_H_
#define QDXOUTPUT_GZIP_FORMAT_H_

#include <zlib.h>

namespace NVORNQDX20 {

/// The parameter of zlib that selects gzip: the window size plus 16.
inline constexpr int kGzipWindowBits = MAX_WBITS + 16;

}  // namespace NVORNQDX20

#endif  // QDXOUTPUT_GZIP_FORMAT_H_
