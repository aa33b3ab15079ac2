// SPDX-License-Identifier: Apache-2.0
/// Encodings of documents that the parser does not know.
#ifndef LIB_CIMXML_XML_ENCODING_H_
#define LIB_CIMXML_XML_ENCODING_H_

namespace NVORNQDX20::NCIMXML {

/// Fills the map with the code point of each byte, -1 where there is none. Returns false for an
/// encoding that is not known, or has characters of several bytes.
bool FillEncoding(const char* name, int (&map)[256]);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_ENCODING_H_
