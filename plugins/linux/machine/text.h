// SPDX-License-Identifier: Apache-2.0
/// Cleans the texts that firmware and files hold.
#ifndef PLUGINS_LINUX_MACHINE_TEXT_H_
#define PLUGINS_LINUX_MACHINE_TEXT_H_

#include <string>
#include <string_view>

namespace NVORNQDX20 {

/// What of the text can be printed, without blanks at either end. Control characters and bytes that
/// are no UTF-8 are left out: firmware fills its strings with anything, and CIM strings are
/// Unicode.
std::string PrintableText(std::string_view text);

/// The first line of the text, which begins behind it afterwards.
std::string_view TakeLine(std::string_view& text);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_TEXT_H_
