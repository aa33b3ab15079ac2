// SPDX-License-Identifier: Apache-2.0
/// Standard output, where the data goes.
#ifndef TOOLS_QDX_CLI_OUTPUT_H_
#define TOOLS_QDX_CLI_OUTPUT_H_

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace NVORNQDX20 {

/// Writes the whole text. Throws a TCommandFailure if that cannot be done, without a line if it is
/// because nobody reads any more.
void WriteOutput(const std::string& text);

/// Writes the name of a file as a line: made fit for a terminal there, as it is for anything else.
void WriteFileName(const std::string& file);

/// Whether somebody could still read what is written: false once the reader of a pipe has gone.
bool OutputHasReader();

/// Writes one JSON document; bytes that are no UTF-8 become U+FFFD.
void WriteJSON(const nlohmann::ordered_json& document);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_OUTPUT_H_
