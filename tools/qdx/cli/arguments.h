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
  const char* fValueName;  ///< Stands for the value in the help; null for an option without value.
  const char* fHelp;
  char fLetter = '\0';  ///< The option's short form, as in "-o"; none for most.
};

struct TOperandSpec {
  const char* fName;  ///< Stands for the operand in the help.
  enum EPresence { kRequired, kOptional } fPresence = kRequired;  ///< Optional ones stand last.
};

struct TArguments {
  bool Has(const std::string& option) const { return fOptions.count(option) != 0; }
  /// The value of an option, the last one if it was given more than once, or what holds without it.
  std::string Get(const std::string& option, const std::string& otherwise) const;
  /// Its values in the order in which they were given; empty without it.
  std::vector<std::string> GetAll(const std::string& option) const;
  /// An operand by its place, or what holds without it.
  std::string Operand(std::size_t index, const std::string& otherwise = "") const;

  std::map<std::string, std::vector<std::string>> fOptions;  ///< The values of each that was given.
  std::vector<std::string> fOperands;
};

/// Options stand before, between or behind operands, up to "--"; a value follows as "--name=value",
/// as "-nvalue" or as a word of its own. Throws a TCommandFailure for an unknown option, and for a
/// value that is missing, empty or too much.
TArguments ParseArguments(const std::vector<TOptionSpec>& options,
                          const std::vector<std::string>& words);

/// Throws a TCommandFailure if a required operand is missing, one is empty, or there is one too
/// many; `verb` is who asks for them.
void CheckOperands(const std::string& verb, const std::vector<TOperandSpec>& specs,
                   const std::vector<std::string>& operands);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_ARGUMENTS_H_
