// SPDX-License-Identifier: Apache-2.0
/// The format of compressed documents.
#ifndef LIB_CIMXML_XML_GZIP_FORMAT_H_
#define LIB_CIMXML_XML_GZIP_FORMAT_H_

#include <zlib.h>

namespace NVORNQDX20::NCIMXML {

/// The parameter of zlib that selects gzip: the window size plus 16.
inline constexpr int kGzipWindowBits = MAX_WBITS + 16;

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_GZIP_FORMAT_H_
