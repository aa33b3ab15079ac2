// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/options.h>

#include <algorithm>

namespace NVORNQDX20::NModel {
namespace {

template <typename T>
std::optional<T> Find(const TOptionsMap& options, const char* name) {
  const auto found = options.find(name);
  if (found == options.end()) return std::nullopt;
  return static_cast<T>(found->second);
}

std::optional<std::vector<std::string>> FindTexts(const TOptionsMap& options, const char* name) {
  const auto found = options.find(name);
  if (found == options.end()) return std::nullopt;
  const std::vector<TCIMValue>& texts = found->second;
  return std::vector<std::string>(texts.begin(), texts.end());
}

bool Contains(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

std::string RootOf(const TOptionsMap& options) {
  return Find<std::string>(options, kRootOption).value_or("/");
}

std::optional<std::vector<std::string>> ClassesOf(const TOptionsMap& options) {
  return FindTexts(options, kClassesOption);
}

TPartChoice::TPartChoice(const TOptionsMap& options)
    : fOnly(FindTexts(options, kOnlyOption)),
      fWithout(FindTexts(options, kWithoutOption).value_or(std::vector<std::string>())),
      fWith(FindTexts(options, kWithOption).value_or(std::vector<std::string>())) {}

TPartChoice::EVerdict TPartChoice::Of(const std::string& part, bool isOnRequest) const {
  if (Contains(fWithout, part)) return kLeftOut;
  if (Contains(fWith, part) || (fOnly && Contains(*fOnly, part))) return kChosen;
  if (fOnly) return kLeftOut;
  return isOnRequest ? kNotAskedFor : kChosen;
}

std::optional<std::string> FileOf(const TOptionsMap& options) {
  return Find<std::string>(options, kFileOption);
}

bool HasMore(const TOptionsMap& options) {
  return Find<bool>(options, kMoreOption).value_or(false);
}

bool IsForOldReaders(const TOptionsMap& options) {
  return Find<bool>(options, kOldReadersOption).value_or(false);
}

}  // namespace NVORNQDX20::NModel
