// SPDX-License-Identifier: Apache-2.0
/// The verbs of a program, and its help.
#ifndef TOOLS_QDX_CLI_VERB_H_
#define TOOLS_QDX_CLI_VERB_H_

#include <optional>
#include <string>
#include <vector>

#include "arguments.h"
#include "exit_code.h"

namespace NVORNQDX20 {

struct TVerb {
  const char* fName;
  const char* fSummary;      ///< One line.
  const char* fDescription;  ///< Additional lines of its help.
  std::vector<TOptionSpec> fOptions;
  EExitCode (*fRun)(const TArguments& arguments);  ///< Gets the operands without the verb.
  std::vector<TOperandSpec> fOperands = {};        ///< Empty for most verbs.
};

struct TProgram {
  const char* fName;
  const char* fIntroduction;  ///< The lines of the general help before the list of verbs.
  std::vector<TVerb> fVerbs;  ///< In the order of the help.
  std::vector<TOptionSpec> fCommonOptions;  ///< That all verbs have.
  const char* fExitCodes;                   ///< For the general help.

  /// Throws a TCommandFailure if there is no such verb.
  const TVerb& FindVerb(const std::string& name) const;
  /// Returns the verb's own options, then the common ones.
  std::vector<TOptionSpec> OptionsOf(const TVerb& verb) const;
  /// Options may precede the verb, so the words are parsed with the options of all verbs: an option
  /// of two verbs takes a value in both or in neither. Throws what ParseArguments() throws.
  TArguments Parse(const std::vector<std::string>& words) const;
  /// Throws a TCommandFailure for options and operands that the verb does not have. The first
  /// operand, which is the verb itself, has been removed.
  void CheckUsage(const TVerb& verb, const TArguments& arguments) const;

  std::string GeneralHelp() const;
  std::string HelpFor(const TVerb& verb) const;
  /// Answers --version, --help and the verb "help"; returns nothing for all else. Throws a
  /// TCommandFailure.
  std::optional<EExitCode> RunGeneral(const TArguments& arguments) const;
  /// Prints the help of "help" and "help VERB". Throws a TCommandFailure.
  EExitCode RunHelp(const std::vector<std::string>& operands) const;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_VERB_H_
