// SPDX-License-Identifier: Apache-2.0
/// Splits a command line into options and operands.
#ifndef QDX_ARGUMENTS_H_
#define QDX_ARGUMENTS_H_

#include <map>
#include <string>
#include <vector>

namespace NVORNQDX20 {

struct TOptionSpec {
  const char* fName;       ///< Without the two dashes.
  const char* fValueName;  ///< Stands for the value in the help; null for an option without value.
  const char* fHelp;
};

struct TArguments {
  bool Has(const std::string& option) const { return fOptions.count(option) != 0; }
  /// The value of an option, or what holds without it.
  std::string Get(const std::string& option, const std::string& otherwise) const;

  std::map<std::string, std::string> fOptions;
  std::vector<std::string> fOperands;
};

/// Options stand before, between or behind operands, up to "--"; a value follows as "--name=value"
/// or as a word of its own. Of two equal options the last holds. Throws a TCommandFailure for an
/// unknown option, and for a value that is missing, empty or too much.
TArguments ParseArguments(const std::vector<TOptionSpec>& options,
                          const std::vector<std::string>& words);

}  // namespace NVORNQDX20

#endif  // QDX_ARGUMENTS_H_
