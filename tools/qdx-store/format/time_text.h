// SPDX-License-Identifier: Apache-2.0
/// Times as texts, always UTC.
#ifndef TOOLS_QDX_STORE_FORMAT_TIME_TEXT_H_
#define TOOLS_QDX_STORE_FORMAT_TIME_TEXT_H_

#include <cstdint>
#include <optional>
#include <string>

namespace NVORNQDX20::NStore {

/// Milliseconds since 1970-01-01T00:00:00Z.
using TMilliseconds = std::int64_t;

TMilliseconds Now();

/// Returns whether the time is later than a day from now: the clocks of hosts may differ by less.
bool IsInFuture(TMilliseconds time);

/// Returns "2004-03-15T13:30:00Z", with three digits after the point if they are not 0.
std::string TimeText(TMilliseconds time);

/// Returns the time of a text as TimeText() returns it; none for another text.
std::optional<TMilliseconds> MillisecondsOf(const std::string& text);

/// A time that a person typed: it begins at one time, and ends before another one.
struct TTypedTime {
  TMilliseconds fBegin;
  TMilliseconds fEnd;
};

/// Parses "2004-03-15T13:30:00Z", cut off anywhere between two numbers, with a blank in the place
/// of the T and without the Z: "2004-03" is the whole month. "7d" and "12h" are so long ago. None
/// for another text.
std::optional<TTypedTime> ParseTypedTime(const std::string& typed, TMilliseconds now);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_FORMAT_TIME_TEXT_H_
