// SPDX-License-Identifier: Apache-2.0
/// Texts that control neither the terminal nor the program that reads them line by line.
#ifndef QDXSYSTEM_HARMLESS_TEXT_H_
#define QDXSYSTEM_HARMLESS_TEXT_H_

#include <string>

namespace NVORNQDX20 {

/// Returns false for control characters, and for those that change the direction of writing.
bool IsHarmless(char32_t character);

/// Returns the JSON text with an escape sequence for each character that is not harmless, and for
/// the separators U+2028 and U+2029, at which some programs end a line. Line ends and bytes that
/// are not UTF-8 stay.
std::string EscapedJSON(const std::string& json);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_HARMLESS_TEXT_H_
