// SPDX-License-Identifier: Apache-2.0
/// What is wrong with a document, on its way to the one place that reports it.
#ifndef LIB_CIMXML_XML_DEFECT_H_
#define LIB_CIMXML_XML_DEFECT_H_

#include <qdxcore/status.h>

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace NVORNQDX20::NCIMXML {

/// Both count from 1; 0 where it is not known.
struct TPosition {
  std::size_t fLine = 0;
  std::size_t fColumn = 0;
};

/// Thrown by all that reads; never leaves ReadDocument().
struct TDefect final : std::exception {
  explicit TDefect(std::string reason, TPosition position = {},
                   EQDXStatusCode status = kQDXStatusInvalidDataCollectionDocument)
      : fReason(std::move(reason)), fPosition(position), fStatus(status) {}

  const char* what() const noexcept override { return fReason.c_str(); }

  std::string fReason;
  TPosition fPosition;
  EQDXStatusCode fStatus;
};

/// A part of the document as a reason can show it: short, on one line, in double quotes.
std::string Shown(std::string_view text);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_DEFECT_H_
