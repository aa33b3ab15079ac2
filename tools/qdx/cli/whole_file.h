// SPDX-License-Identifier: Apache-2.0
/// Writes a file in one piece.
#ifndef TOOLS_QDX_CLI_WHOLE_FILE_H_
#define TOOLS_QDX_CLI_WHOLE_FILE_H_

#include <string>

namespace NVORNQDX20 {

/// Returns false for a device, a pipe or a folder, which a file cannot replace. Throws a
/// TCommandFailure if the path cannot be examined.
bool IsReplaceable(const std::string& path);

/// Writes the text to the file, or for "-" to standard output. A file appears complete or not at
/// all, readable by its owner only, and its name is printed; one that ends in ".gz" is compressed.
/// Throws a TCommandFailure on failure.
void WriteWholeFile(const std::string& text, const std::string& file);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_WHOLE_FILE_H_
