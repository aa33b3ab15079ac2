// SPDX-License-Identifier: Apache-2.0
// The command line and terminal output. The first byte selects arguments separated by line ends
// (0), a text for the terminal (1) or a table of cells separated by tabs (2).
#include <cli/arguments.h>
#include <cli/failure.h>
#include <cli/terminal.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "checks.h"

using namespace NVORNQDX20;

namespace {

using TWords = std::vector<std::string>;

TWords Split(const std::string& text, char separator) {
  TWords words;
  std::istringstream stream(text);
  for (std::string word; std::getline(stream, word, separator);) words.push_back(word);
  return words;
}

/// Returns the parsed arguments as unambiguous words.
TWords WordsOf(const TArguments& arguments) {
  TWords words;
  for (const auto& [option, values] : arguments.fOptions) {
    for (const std::string& value : values) {
      words.push_back("--" + option + (value.empty() ? "" : "=" + value));
    }
  }
  words.push_back("--");
  words.insert(words.end(), arguments.fOperands.begin(), arguments.fOperands.end());
  return words;
}

void CheckArguments(const std::string& text) {
  const std::vector<TOptionSpec> options = {
      {"all", nullptr, "", 'a'}, {"json", nullptr, ""}, {"root", "DIR", "", 'r'}};
  try {
    const TArguments arguments = ParseArguments(options, Split(text, '\n'));
    const TArguments again = ParseArguments(options, WordsOf(arguments));
    Require(again.fOptions == arguments.fOptions && again.fOperands == arguments.fOperands);
  } catch (const TCommandFailure& failure) {
    Require(failure.GetExitCode() == kExitUsage && *failure.what() != '\0');
  }
}

/// Returns whether the text has no ASCII control character, and ForTerminal does not change it.
bool IsHarmless(const std::string& text) {
  const auto isControl = [](char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
  };
  return std::none_of(text.begin(), text.end(), isControl) && ForTerminal(text) == text;
}

void CheckText(const std::string& text) { Require(IsHarmless(ForTerminal(text))); }

void CheckTable(const std::string& text) {
  std::vector<TTableRow> rows;
  for (const std::string& line : Split(text, '\n')) rows.push_back({Split(line, '\t')});
  static const int colourless = ::setenv("NO_COLOR", "1", 1);
  Require(colourless == 0);
  const std::string table = FormatTable(rows);
  const TWords lines = Split(table, '\n');
  Require(lines.size() == rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Require(IsHarmless(lines[i]));
    std::size_t position = 0;
    for (const std::string& cell : rows[i].fCells) {
      const std::string shown = ForTerminal(cell);
      position = lines[i].find(shown, position);
      Require(position != std::string::npos);
      position += shown.size();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return RunCheck({CheckArguments, CheckText, CheckTable}, data, size);
}
