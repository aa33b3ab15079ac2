// SPDX-License-Identifier: Apache-2.0
/// How much a document may ask for. A machine's own document stays far below each of these; one
/// that passes any of them was made to hurt.
#ifndef QDXCIMXML_DOCUMENT_LIMITS_H_
#define QDXCIMXML_DOCUMENT_LIMITS_H_

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
inline constexpr std::size_t kMaxTextBytes = std::size_t{256} << 20;
/// Elements and attributes of one object, and of all objects that wait for a class.
inline constexpr std::size_t kMaxObjectNodes = std::size_t{1} << 21;
inline constexpr std::size_t kMaxWaitingNodes = std::size_t{1} << 23;
/// Properties, methods and qualifiers of one class.
inline constexpr std::size_t kMaxMembers = 10000;
inline constexpr std::size_t kMaxNamespaces = 1000;
/// Superclasses above one another, and classes that need each other to be declared.
inline constexpr std::size_t kMaxClassDepth = 100;
/// Values of all instances, whether the document gives them or not.
inline constexpr std::size_t kMaxValues = std::size_t{1} << 26;

}  // namespace NVORNQDX20::NCIMXML

#endif  // QDXCIMXML_DOCUMENT_LIMITS_H_
