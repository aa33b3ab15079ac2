// SPDX-License-Identifier: Apache-2.0
/// Texts in firmware that nobody has filled in.
#ifndef PLUGINS_LINUX_SOURCES_FIRMWARE_PLACEHOLDERS_H_
#define PLUGINS_LINUX_SOURCES_FIRMWARE_PLACEHOLDERS_H_

#include <string>

namespace NVORNQDX20 {

/// Returns whether a text of the firmware means "not set", for example "To be filled by O.E.M." or
/// zeros only.
bool IsPlaceholder(const std::string& text);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_FIRMWARE_PLACEHOLDERS_H_
