// SPDX-License-Identifier: Apache-2.0
// Contents as one JSON object, always with the bare values.
#include <utility>

#include <qdxsnapshot/missing.h>

#include "cli/json_stream.h"
#include "contents_format.h"

namespace NVORNQDX20 {
namespace {

class TJSONFormat : public IContentsFormat {
 public:
  explicit TJSONFormat(TContentsStyle style) : fStyle(std::move(style)) {
    fStream.BeginObject();
    fStream.BeginArray("namespaces");
  }

  void BeginNamespace(const std::string& name, const std::string& provider) override {
    fStream.BeginObject();
    fStream.Add("namespace", name);
    fStream.Add("provider", provider.empty() ? TJSON() : TJSON(provider));
    if (fStyle.fDepth >= kClasses) fStream.BeginArray("classes");
  }

  void BeginClass(const TShownClass& cimClass) override {
    fClass = &cimClass;
    fColumns = ColumnsForPrograms(cimClass.fClass, fStyle);
    fStream.BeginObject();
    fStream.Add("class", cimClass.fClass.fName);
    fStream.Add("instanceCount", cimClass.fCount);
    if (!cimClass.fReason.empty()) fStream.Add("absent", cimClass.fReason);
    if (fStyle.fDepth >= kValues) fStream.Add("types", TypesOf(cimClass.fClass));
    if (fStyle.fDepth >= kInstances) fStream.BeginArray("instances");
  }

  void AddInstances(const std::vector<TInstanceSnapshot>& instances) override {
    for (const TInstanceSnapshot& instance : instances) fStream.Add("", AsJSON(instance));
  }

  void EndClass() override {
    if (fStyle.fDepth >= kInstances) fStream.End();
    fStream.End();
    fClass = nullptr;
  }

  void EndNamespace() override {
    if (fStyle.fDepth >= kClasses) fStream.End();
    fStream.End();
  }

  void End(const TOmitted&) override {
    fStream.End();
    fStream.End();
  }

 private:
  TJSON TypesOf(const TClassSnapshot& cimClass) const {
    // Names are unique: they are appended without a search for each.
    TJSON::object_t types;
    for (const std::size_t i : fColumns) {
      const TPropertySnapshot& property = cimClass.fProperties[i];
      TJSON type = {{"type", property.fType}};
      if (!property.fUnit.empty()) type["unit"] = property.fUnit;
      types.push_back({property.fName, std::move(type)});
    }
    return types;
  }

  TJSON AsJSON(const TInstanceSnapshot& instance) const {
    TJSON json = {{"path", instance.fPath}};
    if (fStyle.fDepth < kValues) return json;
    const TInstanceReasons reasons(fClass->fReasons, fClass->fClass, instance);
    TJSON::object_t values;
    TJSON::object_t absent;
    for (const std::size_t i : fColumns) {
      const std::string& name = fClass->fClass.fProperties[i].fName;
      values.push_back({name, instance.fValues[i]});
      const NDescribe::TReason* const reason = reasons.Find(i);
      if (reason != nullptr && !reason->empty()) absent.push_back({name, std::string(*reason)});
    }
    json["properties"] = std::move(values);
    json["absent"] = std::move(absent);
    return json;
  }

  const TContentsStyle fStyle;
  TJSONStream fStream;
  const TShownClass* fClass = nullptr;
  std::vector<std::size_t> fColumns;
};

}  // namespace

std::unique_ptr<IContentsFormat> MakeJSONFormat(const TContentsStyle& style) {
  return std::make_unique<TJSONFormat>(style);
}

}  // namespace NVORNQDX20
