// SPDX-License-Identifier: Apache-2.0
/// Writes data to standard output.
#ifndef TOOLS_QDX_CLI_OUTPUT_H_
#define TOOLS_QDX_CLI_OUTPUT_H_

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace NVORNQDX20 {

/// Writes the whole text. Throws a TCommandFailure on failure, without a line if the reader of a
/// pipe has gone.
void WriteOutput(const std::string& text);

/// Collects lines and writes many at once. A file that takes only a part of them, as on a full
/// disk, ends in a complete line nevertheless, so that what reads lines can use it.
class TOutputBuffer {
 public:
  /// Throws what WriteOutput() throws.
  void Add(const std::string& text);
  /// Writes what is left. Throws what WriteOutput() throws.
  void Flush();

 private:
  std::string fText;
};

/// Writes a whole file, from its start, to standard output. Throws what WriteOutput() throws.
void CopyToOutput(int file);

/// Writes a whole file into another one, which is not truncated: a device or a pipe. Throws a
/// TCommandFailure on failure.
void CopyToFile(const std::string& from, const std::string& to);

/// Writes the name of a file as a line: sanitised on a terminal, else unchanged.
void WriteFileName(const std::string& file);

/// Returns false once the reader of a pipe has gone.
bool OutputHasReader();

/// Writes one JSON document; bytes that are not UTF-8 become U+FFFD. Characters that a terminal
/// obeys are escaped: "\u009b".
void WriteJSON(const nlohmann::ordered_json& document);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_OUTPUT_H_
