// SPDX-License-Identifier: Apache-2.0
#include "verb.h"

#include <qdxcore/config.h>
#include <qdxmodel/nearest_name.h>

#include <algorithm>

#include "failure.h"
#include "output.h"
#include "terminal.h"

namespace NVORNQDX20 {
namespace {

const char* const kIndent = "";

std::string FormatOptions(const std::vector<TOptionSpec>& options) {
  std::vector<TTableRow> rows;
  for (const TOptionSpec& option : options) {
    const std::string value = option.fValueName ? std::string(" ") + option.fValueName : "";
    const std::string letter =
        option.fLetter != '\0' ? std::string("-") + option.fLetter + ", " : "";
    rows.push_back({{kIndent, letter + "--" + option.fName + value, option.fHelp}});
  }
  return FormatTable(rows);
}

/// Returns " NAME" for each required operand, " [NAME]" for the others.
std::string FormatOperands(const std::vector<TOperandSpec>& operands) {
  std::string text;
  for (const auto& [name, presence] : operands) {
    const bool optional = presence == TOperandSpec::kOptional;
    const char* const end = presence == TOperandSpec::kRepeated ? "..." : "";
    text += (optional ? " [" : " ") + std::string(name) + (optional ? "]" : end);
  }
  return text;
}

std::string FormatVerbs(const std::vector<TVerb>& verbs) {
  std::vector<TTableRow> rows;
  rows.reserve(verbs.size() + 1);
  for (const TVerb& verb : verbs) rows.push_back({{kIndent, verb.fName, verb.fSummary}});
  rows.push_back({{kIndent, "help", "Explains a verb."}});
  return FormatTable(rows);
}

}  // namespace

const TVerb& TProgram::FindVerb(const std::string& name) const {
  for (const TVerb& verb : fVerbs) {
    if (name == verb.fName) return verb;
  }
  std::vector<std::string> known = {"help"};
  for (const TVerb& verb : fVerbs) known.emplace_back(verb.fName);
  FailOnUsage("unknown verb '" + name + "'" + NModel::SuggestedName(name, known));
}

std::vector<TOptionSpec> TProgram::OptionsOf(const TVerb& verb) const {
  std::vector<TOptionSpec> options = verb.fOptions;
  options.insert(options.end(), fCommonOptions.begin(), fCommonOptions.end());
  return options;
}

TArguments TProgram::Parse(const std::vector<std::string>& words) const {
  std::vector<TOptionSpec> options = fCommonOptions;
  for (const TVerb& verb : fVerbs) {
    options.insert(options.end(), verb.fOptions.begin(), verb.fOptions.end());
  }
  try {
    return ParseArguments(options, words);
  } catch (TCommandFailure& failure) {
    const auto isFirst = [&words](const TVerb& verb) {
      return !words.empty() && words.front() == verb.fName;
    };
    if (std::any_of(fVerbs.begin(), fVerbs.end(), isFirst)) failure.SetVerb(words.front());
    throw;
  }
}

void TProgram::CheckUsage(const TVerb& verb, const TArguments& arguments) const {
  const std::vector<TOptionSpec> options = OptionsOf(verb);
  for (const auto& [name, values] : arguments.fOptions) {
    const auto has = [&name = name](const TOptionSpec& option) { return name == option.fName; };
    if (std::none_of(options.begin(), options.end(), has)) {
      FailOnUsage(std::string(verb.fName) + " has no option '--" + name + "'");
    }
  }
  CheckOperands(verb.fName, verb.fOperands, arguments.fOperands);
}

std::string TProgram::GeneralHelp() const {
  return std::string(fIntroduction) + "\nVerbs:\n" + FormatVerbs(fVerbs) +
         "\nOptions of every verb:\n" + FormatOptions(fCommonOptions) + "\n" + fExitCodes + "\n'" +
         fName + " help VERB' explains a verb.\n";
}

std::string TProgram::HelpFor(const TVerb& verb) const {
  return std::string("Usage: ") + fName + " " + verb.fName + " [OPTION]..." +
         FormatOperands(verb.fOperands) + "\n" + verb.fSummary + "\n\n" + verb.fDescription +
         "\nOptions:\n" + FormatOptions(OptionsOf(verb));
}

std::optional<EExitCode> TProgram::RunGeneral(const TArguments& arguments) const {
  const std::vector<std::string>& operands = arguments.fOperands;
  if (arguments.Has("version")) {
    WriteOutput(std::string(fName) + " " QDXCORE_VERSION "\n");
    return kExitDone;
  }
  if (!operands.empty() && operands[0] == "help") return RunHelp(operands);
  if (!arguments.Has("help")) return std::nullopt;
  WriteOutput(operands.empty() ? GeneralHelp() : HelpFor(FindVerb(operands[0])));
  return kExitDone;
}

EExitCode TProgram::RunHelp(const std::vector<std::string>& operands) const {
  if (operands.size() > 2) {
    FailOnUsage("unexpected argument '" + operands[2] + "'");
  }
  const bool isGeneral = operands.size() < 2 || operands[1] == "help";
  WriteOutput(isGeneral ? GeneralHelp() : HelpFor(FindVerb(operands[1])));
  return kExitDone;
}

}  // namespace NVORNQDX20
