// SPDX-License-Identifier: Apache-2.0
/// CIM date-times as people read and type them.
#ifndef QDXDISPLAY_DATE_TIME_H_
#define QDXDISPLAY_DATE_TIME_H_

#include <optional>
#include <string>

namespace NVORNQDX20 {

/// Returns a CIM date-time as "2004-03-15 14:30:00 +01:00", an interval as "12 days 3 h"; none for
/// another text, and if some digits are unknown.
std::optional<std::string> DateTimeText(const std::string& text);

/// Returns whether a CIM date-time is before (-1), at (0) or after (1) what a person typed:
/// "2004-03-15 14:30:00 +01:00", also without the offset, which is then that of the value, and cut
/// off anywhere: "2004-03" is the whole month. An interval is compared with a time such as "2 h".
/// None if either text is something else, or if some digits of the value are unknown.
std::optional<int> CompareDateTime(const std::string& value, const std::string& typed);

}  // namespace NVORNQDX20

#endif  // QDXDISPLAY_DATE_TIME_H_
