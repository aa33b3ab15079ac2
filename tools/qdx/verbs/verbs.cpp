// SPDX-License-Identifier: Apache-2.0
#include "verbs.h"

#include <qdxmodel/nearest_name.h>

#include "cli/failure.h"
#include "cli/terminal.h"

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

std::string FormatVerbs() {
  std::vector<TTableRow> rows;
  for (const TVerb& verb : AllVerbs()) rows.push_back({{kIndent, verb.fName, verb.fSummary}});
  rows.push_back({{kIndent, "help", "Explains a verb."}});
  return FormatTable(rows);
}

const char* const kExitCodes =
    "Exit status:\n"
    "  0  done, or the same\n"
    "  1  different (diff), or with defects (validate)\n"
    "  2  wrong usage\n"
    "  3  partly done: something failed or was lost, the rest was delivered\n"
    "  4  a named folder or file, or standard output, cannot be used\n"
    "  5  nothing was collected\n"
    "  6  the transfer failed\n";

}  // namespace

const std::vector<TVerb>& AllVerbs() {
  static const std::vector<TVerb> verbs = {
      SummaryVerb(),  IdentityVerb(), CollectVerb(), ShowVerb(),  ReportVerb(), DiffVerb(),
      ValidateVerb(), RedactVerb(),   PluginsVerb(), MediaVerb(), UploadVerb(), DownloadVerb()};
  return verbs;
}

const TVerb& FindVerb(const std::string& name) {
  for (const TVerb& verb : AllVerbs()) {
    if (name == verb.fName) return verb;
  }
  std::vector<std::string> known = {"help"};
  for (const TVerb& verb : AllVerbs()) known.emplace_back(verb.fName);
  FailOnUsage("unknown verb '" + name + "'" + NModel::SuggestedName(name, known));
}

const std::vector<TOptionSpec>& CommonOptions() {
  static const std::vector<TOptionSpec> options = {
      {"log", "FILE", "Write a log to FILE, which is truncated first."},
      {"log-level", "LEVEL", "Log error, warning, status (the default), debug or verbose."},
      {"help", nullptr, "Print help for the verb, and exit.", 'h'},
      {"version", nullptr, "Print the version, and exit."}};
  return options;
}

std::vector<TOptionSpec> OptionsOf(const TVerb& verb) {
  std::vector<TOptionSpec> options = verb.fOptions;
  options.insert(options.end(), CommonOptions().begin(), CommonOptions().end());
  return options;
}

std::string GeneralHelp() {
  return "Usage: qdx [VERB] [OPTION]...\n"
         "Describes and diagnoses this machine. Without a verb, 'summary' is run.\n\nVerbs:\n" +
         FormatVerbs() + "\nOptions of every verb:\n" + FormatOptions(CommonOptions()) + "\n" +
         kExitCodes + "\n'qdx help VERB' explains a verb.\n";
}

std::string HelpFor(const TVerb& verb) {
  return std::string("Usage: qdx ") + verb.fName + " [OPTION]..." + FormatOperands(verb.fOperands) +
         "\n" + verb.fSummary + "\n\n" + verb.fDescription + "\nOptions:\n" +
         FormatOptions(OptionsOf(verb));
}

}  // namespace NVORNQDX20
