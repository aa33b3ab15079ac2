// SPDX-License-Identifier: Apache-2.0
/// Texts that contain a CIM object, as XML or as MOF.
#ifndef LIB_COMPARE_EMBEDDED_TEXT_H_
#define LIB_COMPARE_EMBEDDED_TEXT_H_

#include <string>

namespace NVORNQDX20 {

/// Returns a text that is the same for objects with the same content: without comments and without
/// blanks between elements or words, with the attributes of an element in the order of their names.
/// A text that is neither XML nor MOF is returned unchanged, and so is XML with a document type or
/// CDATA. Entities are not resolved: objects that differ only in these are different.
std::string ContentOfEmbedded(const std::string& text);

}  // namespace NVORNQDX20

#endif  // LIB_COMPARE_EMBEDDED_TEXT_H_
