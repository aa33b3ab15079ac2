// SPDX-License-Identifier: Apache-2.0
/// Splits a command line into options and operands.
#ifndef TOOLS_QDX_CLI_ARGUMENTS_H_
#define TOOLS_QDX_CLI_ARGUMENTS_H_

#include <map>
#include <string>
#include <vector>

namespace NVORNQDX20 {

struct TOptionSpec {
  const char* fName;       ///< Without the two dashes.
  const char* fValueName;  ///< The placeholder in the help; null for an option without a value.
  const char* fHelp;
  char fLetter = '\0';  ///< The option's short form, as in "-o"; none for most.
};

struct TOperandSpec {
  /// Optional ones come last. A repeated one is the last, and is given at least once.
  enum EPresence { kRequired, kOptional, kRepeated };

  const char* fName;  ///< The placeholder in the help.
  EPresence fPresence = kRequired;
};

struct TArguments {
  bool Has(const std::string& option) const { return fOptions.count(option) != 0; }
  /// Returns the last value of an option, or `defaultValue` if the option is missing.
  std::string Get(const std::string& option, const std::string& defaultValue) const;
  /// Returns all values of an option in their order; empty if the option is missing.
  std::vector<std::string> GetAll(const std::string& option) const;
  /// Returns an operand by its index, or `defaultValue` if it is missing.
  std::string GetOperand(std::size_t index, const std::string& defaultValue = "") const;

  std::map<std::string, std::vector<std::string>> fOptions;  ///< The values of each given option.
  std::vector<std::string> fOperands;
};

/// Options can come before, between or after operands, up to "--". A value is given as
/// "--name=value", as "-nvalue" or as the next word. Throws a TCommandFailure for an unknown
/// option, and for a value that is missing, empty or not allowed.
TArguments ParseArguments(const std::vector<TOptionSpec>& options,
                          const std::vector<std::string>& words);

/// Throws a TCommandFailure, which names `verb`, if a required operand is missing, one is empty, or
/// there are too many.
void CheckOperands(const std::string& verb, const std::vector<TOperandSpec>& specs,
                   const std::vector<std::string>& operands);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_ARGUMENTS_H_
