// SPDX-License-Identifier: Apache-2.0
#include "user_table.h"

#include <algorithm>
#include <cstddef>

namespace NVORNQDX20 {
namespace {

std::string Printable(std::string_view field) { return PrintableText(field); }

/// Returns the fields between the separators; the last one takes the rest of the line.
std::vector<std::string_view> FieldsOf(std::string_view line, char separator, std::size_t count) {
  std::vector<std::string_view> fields;
  fields.reserve(count);
  while (fields.size() + 1 < count) {
    const std::size_t end = std::min(line.find(separator), line.size());
    fields.push_back(line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  fields.push_back(line);
  return fields;
}

/// Calls the function with the fields of each entry: one whose name does not begin with "+" or
/// "-" and whose third field is a number.
template <typename TFunction>
void ForEachEntry(std::string_view table, std::size_t count, const TFunction& take) {
  std::size_t taken = 0;
  while (!table.empty() && taken < kMaxEntries) {
    const std::string_view line = TakeLine(table);
    const std::vector<std::string_view> fields = FieldsOf(line, ':', count);
    const bool hasName = !Printable(fields[0]).empty();
    if (!hasName || std::string_view("+-#").find(fields[0].front()) != std::string_view::npos)
      continue;
    if (!ParseNumber<std::uint32_t>(fields[2])) continue;
    take(fields);
    ++taken;
  }
}

std::vector<std::string> NamesIn(std::string_view list) {
  std::vector<std::string> names;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(','), list.size());
    std::string name = Printable(list.substr(0, end));
    if (!name.empty()) names.push_back(std::move(name));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return names;
}

}  // namespace

std::vector<TUser> ParseUsers(std::string_view passwd) {
  std::vector<TUser> users;
  ForEachEntry(passwd, 7, [&users](const std::vector<std::string_view>& fields) {
    // The second field can hold a password.
    users.push_back({Printable(fields[0]), Printable(fields[2]), Printable(fields[3]),
                     Printable(fields[4]), Printable(fields[5]), Printable(fields[6])});
  });
  return users;
}

std::vector<TGroup> ParseGroups(std::string_view group) {
  std::vector<TGroup> groups;
  ForEachEntry(group, 4, [&groups](const std::vector<std::string_view>& fields) {
    groups.push_back({Printable(fields[0]), Printable(fields[2]), NamesIn(fields[3])});
  });
  return groups;
}

TUserTable::TUserTable(const THost& host)
    : fUsers(host.Read("/etc/passwd", TFiles::kMaxTableSize).map(ParseUsers)),
      fGroups(host.Read("/etc/group", TFiles::kMaxTableSize).map(ParseGroups)) {}

}  // namespace NVORNQDX20
