// SPDX-License-Identifier: Apache-2.0
// Contents as JSON lines, an object for each instance.
#include <optional>
#include <utility>

#include <qdxsnapshot/json_lines.h>

#include "cli/output.h"
#include "contents_format.h"

namespace NVORNQDX20 {
namespace {

class TJSONLinesFormat : public IContentsFormat {
 public:
  TJSONLinesFormat(TContentsStyle style, TCollectionRecord record)
      : fStyle(std::move(style)), fRecord(std::move(record)) {}

  void BeginNamespace(const std::string& name, const std::string&) override { fNamespace = name; }

  void BeginClass(const TShownClass& cimClass) override {
    fLines.emplace(fRecord, fNamespace, cimClass.fClass, cimClass.fReasons,
                   ColumnsForPrograms(cimClass.fClass, fStyle));
  }

  void AddInstances(const std::vector<TInstanceSnapshot>& instances) override {
    for (const TInstanceSnapshot& instance : instances) fOutput.Add(fLines->LineOf(instance));
  }

  void EndClass() override { fLines.reset(); }
  void EndNamespace() override {}
  void End(const TOmitted&) override { fOutput.Flush(); }

 private:
  const TContentsStyle fStyle;
  const TCollectionRecord fRecord;
  TOutputBuffer fOutput;
  std::string fNamespace;
  std::optional<TJSONLines> fLines;
};

}  // namespace

std::unique_ptr<IContentsFormat> MakeJSONLinesFormat(const TContentsStyle& style,
                                                     const TCollectionRecord& record) {
  return std::make_unique<TJSONLinesFormat>(style, record);
}

}  // namespace NVORNQDX20
