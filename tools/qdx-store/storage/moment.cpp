// SPDX-License-Identifier: Apache-2.0
#include "moment.h"

#include <qdxcore/status.h>

#include <charconv>

namespace NVORNQDX20::NStore {
namespace {

const std::size_t kDigestDigits = kDigestBits / 4;
const std::int64_t kMicrosecondsPerMillisecond = 1000;
const std::int64_t kEndOfTime = 7258118400000;  // 2200-01-01 in milliseconds

}  // namespace

TMoment MomentOf(std::int64_t microseconds, const std::string& digest) {
  const std::int64_t milliseconds = microseconds / kMicrosecondsPerMillisecond;
  if (microseconds < 0 || milliseconds >= kEndOfTime) {
    throw TExplainedException(kQDXStatusInvalidDateTime,
                              "its time is not between the years 1970 and 2199");
  }
  TMoment bits = 0;
  const char* const begin = digest.data();
  if (digest.size() < kDigestDigits ||
      std::from_chars(begin, begin + kDigestDigits, bits, 16).ptr != begin + kDigestDigits ||
      bits < 0) {
    throw TExplainedException(kQDXStatusInvalidFormat, "it has no digest");
  }
  return (milliseconds << kDigestBits) + bits;
}

TMoment FirstMomentOf(std::int64_t microseconds) {
  return MomentOf(microseconds, std::string(kDigestDigits, '0'));
}

}  // namespace NVORNQDX20::NStore
