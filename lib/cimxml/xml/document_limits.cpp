// SPDX-License-Identifier: Apache-2.0
#include "document_limits.h"

#include <algorithm>

#include <unistd.h>

namespace NVORNQDX20::NCIMXML {

std::uint64_t TReadingLimits::DefaultMemory() {
  constexpr std::uint64_t kLeast = std::uint64_t{768} << 20;
  constexpr std::uint64_t kMost = std::uint64_t{8} << 30;
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long pageSize = ::sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return kLeast;
  const auto memory = static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
  return std::clamp(memory / 2, kLeast, kMost);
}

std::size_t TDocumentLimits::DocumentBytes() const {
  constexpr std::size_t kLeast = std::size_t{2} << 30;
  return std::max<std::size_t>(kLeast, fLimits.fMemory);
}

TDocumentError TDocumentLimits::Exceeded(const std::string& reason, TPosition position) const {
  const std::string& hint = fLimits.fHowToRaise;
  TDocumentError error(hint.empty() ? reason : reason + "; " + hint, position);
  error.fIsFatal = true;
  return error;
}

TDocumentError TDocumentLimits::TooMuchHeld(TPosition position) const {
  return Exceeded("the document needs more than " + InMiB(HeldBytes()) + " of memory", position);
}

}  // namespace NVORNQDX20::NCIMXML
