// SPDX-License-Identifier: Apache-2.0
#include "id_names.h"

#include <algorithm>
#include <vector>

namespace NVORNQDX20 {
namespace {

/// Enough for twice the lists of today.
constexpr std::size_t kMaxListSize = TFiles::kMaxTableSize;

bool IsID(std::string_view text) {
  return !text.empty() && text.front() != '#' &&
         std::all_of(text.begin(), text.end(),
                     [](char character) { return character >= ' ' && character <= '~'; });
}

}  // namespace

TNamesByID ParseIDNames(std::string_view list,
                        const std::function<bool(const std::string& path)>& isWanted) {
  constexpr std::size_t kLevels = 3;
  TNamesByID names;
  // The path of the last line of each level.
  std::vector<std::string> paths;
  while (!list.empty()) {
    std::string_view line = TakeLine(list);
    const std::size_t level = std::min(line.find_first_not_of('\t'), line.size());
    if (level == line.size() || (level == 0 && line.front() == '#')) continue;
    if (level > paths.size() || level >= kLevels) continue;  // what it is below is left out
    paths.resize(level);
    line.remove_prefix(level);
    const std::size_t end = line.find("  ");
    if (end == std::string_view::npos || !IsID(line.substr(0, end))) continue;
    std::string path = level == 0 ? std::string() : paths.back() + '\t';
    path += line.substr(0, end);
    if (!isWanted(path)) continue;
    const std::string name = PrintableText(line.substr(end));
    if (name.empty()) continue;
    names.emplace(path, name);
    paths.push_back(std::move(path));
  }
  return names;
}

TIDNames::TIDNames(const TFiles& files, std::initializer_list<const char*> lists,
                   const std::set<std::string>& wanted) {
  if (wanted.empty()) return;
  const TText path = files.FirstOf(lists);
  const TText list = path.and_then([&files, this](const std::string& found) {
    fList = found;
    return files.Read(found, kMaxListSize);
  });
  if (list) {
    fNames = ParseIDNames(
        *list, [&wanted](const std::string& each) { return wanted.find(each) != wanted.end(); });
  } else {
    const bool isAbsent = path && files.IsAbsent(*path);
    fReason = isAbsent
                  ? TReason("no list of names: " + std::string(*lists.begin()) + " does not exist")
                  : list.GetReason();
  }
}

TText TIDNames::Get(const std::string& path) const {
  if (!fReason.empty()) return Missing(fReason);
  const auto found = fNames.find(path);
  if (found != fNames.end()) return found->second;
  std::string printable = path;
  std::replace(printable.begin(), printable.end(), '\t', ' ');
  return Missing(fList + ": has no '" + printable + "'");
}

}  // namespace NVORNQDX20
