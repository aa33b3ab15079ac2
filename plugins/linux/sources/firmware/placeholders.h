// SPDX-License-Identifier: Apache-2.0
/// Texts in firmware that nobody has filled in.
#ifndef PLUGINS_LINUX_SOURCES_FIRMWARE_PLACEHOLDERS_H_
#define PLUGINS_LINUX_SOURCES_FIRMWARE_PLACEHOLDERS_H_

#include <qdxdescribe/reading.h>

#include <string>

namespace NVORNQDX20 {

/// Returns whether a text of the firmware means "not set", for example "To be filled by O.E.M." or
/// zeros only.
bool IsPlaceholder(const std::string& text);

/// Returns the text, unless it is such a placeholder. `source` is the path for the reason.
NDescribe::TReading<std::string> WithoutPlaceholder(const NDescribe::TReading<std::string>& text,
                                                    const std::string& source);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_FIRMWARE_PLACEHOLDERS_H_
