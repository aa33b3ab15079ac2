// SPDX-License-Identifier: Apache-2.0
/// Command lines without what may be secret in them.
#ifndef LIB_REDACT_COMMAND_LINE_H_
#define LIB_REDACT_COMMAND_LINE_H_

#include <functional>
#include <string>
#include <vector>

namespace NVORNQDX20::NRedact {

/// Makes a text of another one.
using TMakeText = std::function<std::string(const std::string&)>;

/// Returns the line of a kernel: well-known parameters with `redact` of their values; of the
/// others only the names, and what `hide` makes of the values.
std::string RedactKernelLine(const std::string& line, const TMakeText& redact,
                             const TMakeText& hide);

/// Returns the words of a process: `redact` of the program, the names of options, and what `hide`
/// makes of all else.
std::vector<std::string> RedactArguments(const std::vector<std::string>& words,
                                         const TMakeText& redact, const TMakeText& hide);

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_COMMAND_LINE_H_
