// SPDX-License-Identifier: Apache-2.0
/// The exception for a bad document.
#ifndef LIB_CIMXML_XML_DOCUMENT_ERROR_H_
#define LIB_CIMXML_XML_DOCUMENT_ERROR_H_

#include <qdxcore/status.h>

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace NVORNQDX20::NCIMXML {

/// Line and column, from 1; 0 if unknown.
struct TPosition {
  std::size_t fLine = 0;
  std::size_t fColumn = 0;
};

/// Thrown while a document is read; never leaves ReadDocument().
struct TDocumentError final : std::exception {
  explicit TDocumentError(std::string reason, TPosition position = {},
                          EQDXStatusCode status = kQDXStatusInvalidDataCollectionDocument)
      : fReason(std::move(reason)), fPosition(position), fStatus(status) {}

  const char* what() const noexcept override { return fReason.c_str(); }

  std::string fReason;
  TPosition fPosition;
  EQDXStatusCode fStatus;
  /// The document is refused, even if only one object was being made.
  bool fIsFatal = false;
};

/// Formats ": line L, column C".
std::string AtPosition(const TPosition& position);

/// Returns a part of the document for use in a reason: short, on one line, in double quotes.
std::string Shown(std::string_view text);
/// The same without quotes.
std::string Plain(std::string_view text);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_DOCUMENT_ERROR_H_
