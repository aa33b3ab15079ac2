// SPDX-License-Identifier: Apache-2.0
#include "arguments.h"

#include <qdxmodel/nearest_name.h>

#include <algorithm>

#include "failure.h"

namespace NVORNQDX20 {
namespace {

using TWords = std::vector<std::string>;

const TOptionSpec& FindOption(const std::vector<TOptionSpec>& options, const std::string& word) {
  const auto found =
      std::find_if(options.begin(), options.end(), [&word](const TOptionSpec& option) {
        const bool isLetter = option.fLetter != '\0' && word == std::string("-") + option.fLetter;
        return isLetter || word == std::string("--") + option.fName;
      });
  if (found == options.end()) {
    TWords known;
    known.reserve(options.size());
    for (const TOptionSpec& option : options) known.push_back(std::string("--") + option.fName);
    FailOnUsage("unknown option '" + word + "'" + NModel::SuggestedName(word, known));
  }
  return *found;
}

/// Returns the end of the name in "--name=value", "-nvalue" or "-n=value".
std::size_t EndOfName(const std::string& word) {
  return word.compare(0, 2, "--") == 0 ? std::min(word.find('='), word.size()) : 2;
}

/// Parses the option at `word`, and the next word if that is its value.
void TakeOption(const std::vector<TOptionSpec>& options, TWords::const_iterator& word,
                TWords::const_iterator end, TArguments& arguments) {
  const std::size_t endOfName = EndOfName(*word);
  const TOptionSpec& option = FindOption(options, word->substr(0, endOfName));
  const std::string shown = std::string("option '--") + option.fName + "'";
  std::string value;
  if (endOfName != word->size()) {
    if (option.fValueName == nullptr) FailOnUsage(shown + " takes no value");
    value = word->substr(endOfName + ((*word)[endOfName] == '=' ? 1 : 0));
  } else if (option.fValueName != nullptr && std::next(word) != end) {
    value = *++word;
  }
  if (option.fValueName != nullptr && value.empty()) {
    FailOnUsage(shown + " needs a value: " + option.fValueName);
  }
  arguments.fOptions[option.fName].push_back(value);
}

}  // namespace

std::string TArguments::Get(const std::string& option, const std::string& defaultValue) const {
  const auto found = fOptions.find(option);
  return found == fOptions.end() ? defaultValue : found->second.back();
}

std::vector<std::string> TArguments::GetAll(const std::string& option) const {
  const auto found = fOptions.find(option);
  return found == fOptions.end() ? std::vector<std::string>() : found->second;
}

std::string TArguments::GetOperand(std::size_t index, const std::string& defaultValue) const {
  return index < fOperands.size() ? fOperands[index] : defaultValue;
}

TArguments ParseArguments(const std::vector<TOptionSpec>& options, const TWords& words) {
  TArguments arguments;
  for (auto word = words.begin(); word != words.end(); ++word) {
    if (*word == "--") {
      arguments.fOperands.insert(arguments.fOperands.end(), std::next(word), words.end());
      break;
    }
    if (word->size() > 1 && word->front() == '-') {
      TakeOption(options, word, words.end(), arguments);
    } else {
      arguments.fOperands.push_back(*word);
    }
  }
  return arguments;
}

void CheckOperands(const std::string& verb, const std::vector<TOperandSpec>& specs,
                   const TWords& operands) {
  const bool isRepeated = !specs.empty() && specs.back().fPresence == TOperandSpec::kRepeated;
  if (operands.size() > specs.size() && !isRepeated) {
    FailOnUsage("unexpected argument '" + operands[specs.size()] + "'");
  }
  for (std::size_t i = 0; i < operands.size(); ++i) {
    const TOperandSpec& spec = specs[std::min(i, specs.size() - 1)];
    if (operands[i].empty()) FailOnUsage(std::string("an argument is empty: ") + spec.fName);
  }
  for (std::size_t missing = operands.size(); missing < specs.size(); ++missing) {
    if (specs[missing].fPresence != TOperandSpec::kOptional) {
      FailOnUsage(verb + " needs an argument: " + specs[missing].fName);
    }
  }
}

}  // namespace NVORNQDX20
