// SPDX-License-Identifier: Apache-2.0
#include "contents_format.h"

#include <qdxdisplay/value_text.h>
#include <qdxmodel/names.h>

#include <numeric>
#include <utility>

namespace NVORNQDX20 {

IContentsFormat::~IContentsFormat() = default;

std::string TOmitted::Line() const {
  const struct {
    std::size_t fCount;
    const char* fOne;
    const char* fMany;
  } kinds[] = {{fMissing, "missing value", "missing values"},
               {fEmpty, "empty value", "empty values"},
               {fKeys, "key", "keys"},
               {fColumns, "column", "columns"},
               {fAssociations, "association", "associations"},
               {fExplanations, "explanation", "explanations"},
               {fEmptyClasses, "class without instances", "classes without instances"}};
  std::string line;
  for (const auto& [count, one, many] : kinds) {
    if (count == 0) continue;
    line += (line.empty() ? "left out: " : ", ") + std::to_string(count) + " " +
            (count == 1 ? one : many);
  }
  return line.empty() ? line : line + "; --all shows them";
}

std::string CountedName(const TShownClass& cimClass) {
  const std::size_t count = cimClass.fClass.fInstanceCount;
  const std::string of = cimClass.fCount == count ? "" : std::to_string(cimClass.fCount) + " of ";
  return cimClass.fClass.fName + "  (" + of + std::to_string(count) +
         (count == 1 ? " instance)" : " instances)");
}

std::vector<std::size_t> PropertiesToShow(const TClassSnapshot& cimClass,
                                          const TContentsStyle& style) {
  if (style.fProperties.empty()) return InOrderOfDeclaration(cimClass);
  std::vector<std::size_t> indexes;
  for (const std::string& name : style.fProperties) {
    for (std::size_t i = 0; i < cimClass.fProperties.size(); ++i) {
      if (NModel::EqualIgnoringCase(cimClass.fProperties[i].fName, name)) indexes.push_back(i);
    }
  }
  return indexes;
}

std::vector<std::size_t> ColumnsForPrograms(const TClassSnapshot& cimClass,
                                            const TContentsStyle& style) {
  if (!style.fProperties.empty()) return PropertiesToShow(cimClass, style);
  std::vector<std::size_t> all(cimClass.fProperties.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  return all;
}

std::string ShownText(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                      std::size_t property, const TContentsStyle& style) {
  return style.fIsRaw ? PlainText(instance.fValues[property])
                      : TextForPeople(cimClass, instance, property);
}

}  // namespace NVORNQDX20
