// SPDX-License-Identifier: Apache-2.0
#include "resolver.h"

#include "sources/fields.h"
#include "tables.h"

namespace NVORNQDX20 {
namespace {

std::vector<std::string> Rest(const std::vector<std::string_view>& words) {
  std::vector<std::string> rest;
  rest.reserve(words.size());
  for (std::size_t i = 1; i < words.size(); ++i) rest.push_back(PrintableText(words[i]));
  return rest;
}

void Append(std::vector<std::string>& list, std::vector<std::string> more) {
  for (std::string& each : more) list.push_back(std::move(each));
}

}  // namespace

TResolver ParseResolver(std::string_view file) {
  TResolver resolver;
  while (!file.empty()) {
    const std::string_view line = TakeLine(file);
    // A comment begins in the first column, or, as programs have it, after a blank.
    const std::size_t comment = line.find_first_of("#;");
    const auto words = WordsOf(line.substr(0, comment));
    if (words.size() < 2) continue;
    const std::string_view keyword = words.front();
    if (keyword == "nameserver") resolver.fServers.push_back(PrintableText(words[1]));
    // The last of these lines counts, not their sum.
    if (keyword == "search" || keyword == "domain") resolver.fSearch = Rest(words);
    if (keyword == "options") Append(resolver.fOptions, Rest(words));
  }
  return resolver;
}

TResolverFile::TResolverFile(const THost& host) : fPath("/etc/resolv.conf") {
  fResolver = host.Read(fPath).map(
      [](const std::string& file) { return ParseResolver(std::string_view(file)); });
}

}  // namespace NVORNQDX20
