// SPDX-License-Identifier: Apache-2.0
/// Limits of the document reader. Documents of real machines stay far below each of them; a
/// document above one is an attack.
#ifndef LIB_CIMXML_XML_DOCUMENT_LIMITS_H_
#define LIB_CIMXML_XML_DOCUMENT_LIMITS_H_

#include <qdxcimxml/document_reader.h>

#include <cstddef>
#include <string>

#include "document_error.h"

namespace NVORNQDX20::NCIMXML {

/// The maximum compression ratio of a document that is not small.
inline constexpr std::size_t kMaxInflation = 500;
inline constexpr std::size_t kSmallDocumentBytes = std::size_t{64} << 20;
inline constexpr std::size_t kMaxDepth = 256;
inline constexpr std::size_t kMaxAttributes = 32;
/// Bytes of one tag with its attributes, or of one comment.
inline constexpr std::size_t kMaxTagBytes = std::size_t{1} << 20;
/// Bytes of one value.
inline constexpr std::size_t kMaxTextBytes = std::size_t{128} << 20;
/// Properties, methods and qualifiers of one class.
inline constexpr std::size_t kMaxMembers = 10000;
inline constexpr std::size_t kMaxNamespaces = 1000;
/// The depth of inheritance, and of classes that need one another to be declared.
inline constexpr std::size_t kMaxClassDepth = 100;

/// The limits that depend on TReadingLimits::fMemory: bytes of memory for all values of instances
/// and classes, including those that the document does not mention, all objects that wait for a
/// class, the object that is being read, and a copy of its values.
class TDocumentLimits {
 public:
  explicit TDocumentLimits(const TReadingLimits& limits) : fLimits(limits) {}

  std::size_t HeldBytes() const { return fLimits.fMemory; }
  /// Bytes of memory for the elements of one object.
  std::size_t ObjectBytes() const { return fLimits.fMemory / 3 * 2; }
  /// Bytes of XML, after decompression.
  std::size_t DocumentBytes() const;

  /// An error that ends the reading: the reason, and how to raise the limit.
  TDocumentError Exceeded(const std::string& reason, TPosition position = {}) const;
  TDocumentError TooMuchHeld(TPosition position = {}) const;

 private:
  TReadingLimits fLimits;
};

inline std::string InMiB(std::size_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_DOCUMENT_LIMITS_H_
