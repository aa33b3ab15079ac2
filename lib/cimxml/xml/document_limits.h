// SPDX-License-Identifier: Apache-2.0
/// How much a document may ask for. A machine's own document stays far below each of these; one
/// that passes any of them was made to hurt.
#ifndef LIB_CIMXML_XML_DOCUMENT_LIMITS_H_
#define LIB_CIMXML_XML_DOCUMENT_LIMITS_H_

#include <cstddef>

namespace NVORNQDX20::NCIMXML {

/// Of XML, after decompression.
inline constexpr std::size_t kMaxDocumentBytes = std::size_t{2} << 30;
/// How many times its compressed size a document may have, once it is not small any more.
inline constexpr std::size_t kMaxInflation = 500;
inline constexpr std::size_t kSmallDocumentBytes = std::size_t{64} << 20;
inline constexpr std::size_t kMaxDepth = 256;
inline constexpr std::size_t kMaxAttributes = 32;
/// Of one tag, with its attributes, or of one comment.
inline constexpr std::size_t kMaxTagBytes = std::size_t{1} << 20;
/// Of one value.
inline constexpr std::size_t kMaxTextBytes = std::size_t{128} << 20;
/// That the elements of one object take in memory: enough for an array of three million.
inline constexpr std::size_t kMaxObjectBytes = std::size_t{512} << 20;
/// Properties, methods and qualifiers of one class.
inline constexpr std::size_t kMaxMembers = 10000;
inline constexpr std::size_t kMaxNamespaces = 1000;
/// Superclasses above one another, and classes that need each other to be declared.
inline constexpr std::size_t kMaxClassDepth = 100;
/// That all objects take which wait for a class, and all values of instances and classes, whether
/// the document gives them or not.
inline constexpr std::size_t kMaxHeldBytes = std::size_t{768} << 20;

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_DOCUMENT_LIMITS_H_
