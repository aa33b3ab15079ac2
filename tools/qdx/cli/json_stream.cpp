// SPDX-License-Identifier: Apache-2.0
#include "json_stream.h"

#include <qdxsystem/harmless_text.h>

namespace NVORNQDX20 {
namespace {

std::string Text(const TJSONStream::TJSON& value) {
  return value.dump(2, ' ', false, TJSONStream::TJSON::error_handler_t::replace);
}

}  // namespace

void TJSONStream::Add(const std::string& name, const TJSON& value) {
  StartElement(name);
  const std::string indent = Indent();
  std::string text;
  for (const char c : EscapedJSON(Text(value))) {
    text += c;
    if (c == '\n') text += indent;  // line ends within texts are escaped
  }
  fOutput.Add(text);
}

void TJSONStream::Begin(const std::string& name, char begin, char end) {
  StartElement(name);
  fOutput.Add({begin});
  fLevels.push_back({end, true});
}

void TJSONStream::StartElement(const std::string& name) {
  if (!fLevels.empty()) {
    fOutput.Add(fLevels.back().fIsEmpty ? "\n" : ",\n");
    fLevels.back().fIsEmpty = false;
    fOutput.Add(Indent());
  }
  if (!name.empty()) fOutput.Add(Text(name) + ": ");
}

void TJSONStream::End() {
  const TLevel level = fLevels.back();
  fLevels.pop_back();
  if (!level.fIsEmpty) fOutput.Add("\n" + Indent());
  fOutput.Add({level.fEnd});
  if (!fLevels.empty()) return;
  fOutput.Add("\n");
  fOutput.Flush();
}

}  // namespace NVORNQDX20
