// SPDX-License-Identifier: Apache-2.0
/// The file that a document is written to.
#ifndef TOOLS_QDX_INPUT_DOCUMENT_FILE_H_
#define TOOLS_QDX_INPUT_DOCUMENT_FILE_H_

#include <functional>
#include <string>

#include "document.h"

namespace NVORNQDX20 {

/// Writes a document with TPluginWriter::Write; messages name the file `shownAs`.
using TWriteDocument = std::function<void(const std::string& file, const std::string& shownAs)>;

/// Writes the document to the file, which appears complete or not at all, and prints its name; "-"
/// is standard output. A device or a pipe gets the document when it is complete. Throws a
/// TCommandFailure on failure, and passes on what `write` throws.
void WriteDocument(const std::string& file, const TPluginWriter& writer,
                   const TWriteDocument& write);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_DOCUMENT_FILE_H_
