// SPDX-License-Identifier: Apache-2.0
#include "udev_data.h"

#include <optional>

namespace NVORNQDX20 {
namespace {

/// Returns the character that "\x20" stands for.
std::optional<char> DecodedCharacter(std::string_view escape) {
  if (escape.size() != 4 || escape.substr(0, 2) != "\\x") return std::nullopt;
  const auto code = ParseNumber<std::uint8_t>("0x" + std::string(escape.substr(2)));
  return code ? std::optional<char>(static_cast<char>(*code)) : std::nullopt;
}

}  // namespace

std::string DecodeUdev(std::string_view text) {
  std::string decoded;
  while (!text.empty()) {
    const std::optional<char> character = DecodedCharacter(text.substr(0, 4));
    decoded += character.value_or(text.front());
    text.remove_prefix(character ? 4 : 1);
  }
  return PrintableText(decoded);
}

TUdevData::TUdevData(const TFiles& files, const std::string& number)
    : TUdevData("/run/udev/data/b" + number, files.Read("/run/udev/data/b" + number)) {}

TUdevData::TUdevData(const std::string& source, const TText& text)
    : fProperties(std::make_shared<const TFields>(source, text, '=')) {
  const std::string lines = text.ValueOr("");
  for (std::string_view rest = lines; !rest.empty();) {
    const std::string_view line = TakeLine(rest);
    if (line.substr(0, 2) == "S:") fLinks.push_back(DecodeUdev(line.substr(2)));
  }
}

TText TUdevData::Get(const std::string& name) const {
  if (!fProperties) return Missing("udev was not asked");
  return fProperties->Get("E:" + name);
}

TText TUdevData::FirstOf(const std::vector<const char*>& names) const {
  TText found;
  for (const char* name : names) {
    found = Get(name);
    if (found) return found;
  }
  return found;
}

}  // namespace NVORNQDX20
