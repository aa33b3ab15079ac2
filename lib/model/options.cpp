// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/options.h>

namespace NVORNQDX20::NModel {
namespace {

template <typename T>
std::optional<T> Find(const TOptionsMap& options, const char* name) {
  const auto found = options.find(name);
  if (found == options.end()) return std::nullopt;
  return static_cast<T>(found->second);
}

}  // namespace

std::string RootOf(const TOptionsMap& options) {
  return Find<std::string>(options, kRootOption).value_or("/");
}

std::optional<std::vector<std::string>> ClassesOf(const TOptionsMap& options) {
  const auto found = options.find(kClassesOption);
  if (found == options.end()) return std::nullopt;
  const std::vector<TCIMValue>& names = found->second;
  return std::vector<std::string>(names.begin(), names.end());
}

std::optional<std::string> FileOf(const TOptionsMap& options) {
  return Find<std::string>(options, kFileOption);
}

bool HasMore(const TOptionsMap& options) {
  return Find<bool>(options, kMoreOption).value_or(false);
}

}  // namespace NVORNQDX20::NModel
