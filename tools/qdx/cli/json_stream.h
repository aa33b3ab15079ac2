// SPDX-License-Identifier: Apache-2.0
/// Writes a large JSON document part by part, as WriteJSON() writes it at once.
#ifndef TOOLS_QDX_CLI_JSON_STREAM_H_
#define TOOLS_QDX_CLI_JSON_STREAM_H_

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "output.h"

namespace NVORNQDX20 {

class TJSONStream {
 public:
  using TJSON = nlohmann::ordered_json;

  /// `name` is empty in an array, and for the document itself. Calls must nest as the document
  /// does: Begin...() goes down one level, End() up again.
  void BeginObject(const std::string& name = "") { Begin(name, '{', '}'); }
  void BeginArray(const std::string& name = "") { Begin(name, '[', ']'); }
  void Add(const std::string& name, const TJSON& value);
  /// After the last level, writes what is left, too.
  void End();

 private:
  struct TLevel {
    char fEnd;
    bool fIsEmpty;
  };

  void Begin(const std::string& name, char begin, char end);
  void StartElement(const std::string& name);
  std::string Indent() const { return std::string(2 * fLevels.size(), ' '); }

  TOutputBuffer fOutput;
  std::vector<TLevel> fLevels;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_JSON_STREAM_H_
