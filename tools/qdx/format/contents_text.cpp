// SPDX-License-Identifier: Apache-2.0
// Contents as text: a line for each namespace, class and instance, followed by the properties.
#include <qdxdisplay/names.h>
#include <qdxdisplay/value_text.h>

#include <algorithm>
#include <utility>

#include <qdxsnapshot/missing.h>

#include "cli/output.h"
#include "cli/terminal.h"
#include "contents_format.h"

namespace NVORNQDX20 {
namespace {

std::string Line(std::size_t indent, const std::string& text,
                 TTableRow::EStyle style = TTableRow::kPlain) {
  return FormatLine(std::string(indent, ' ') + text, style);
}

bool IsEmptyValue(const TJSON& value) {
  return value.is_string() ? value.get_ref<const std::string&>().empty()
                           : value.is_array() && value.empty();
}

class TTextFormat : public IContentsFormat {
 public:
  TTextFormat(TContentsStyle style, TOmitted& omitted)
      : fStyle(std::move(style)), fOmitted(omitted) {}

  void BeginNamespace(const std::string& name, const std::string& provider) override {
    const std::string suffix = provider.empty() ? "" : "  (provider " + provider + ")";
    fOutput.Add(Line(0, name + suffix, TTableRow::kHeading));
  }

  void BeginClass(const TShownClass& cimClass) override {
    fClass = &cimClass;
    fOutput.Add(Line(2, CountedName(cimClass)));
    ChooseColumns(cimClass.fClass);
  }

  void AddInstances(const std::vector<TInstanceSnapshot>& instances) override {
    for (const TInstanceSnapshot& instance : instances) {
      // The paths are all that a list of instances has.
      const bool isPath = fStyle.fShowsAll || fStyle.fDepth < kValues;
      fOutput.Add(Line(4, isPath ? instance.fPath : InstanceLabel(instance.fPath)));
      if (fStyle.fDepth >= kValues) fOutput.Add(FormatValues(instance));
      fOmitted.fKeys += fSilentKeys;
    }
  }

  void EndClass() override {
    if (!fClass->fReason.empty()) {
      fOutput.Add(Line(4, "-  (" + fClass->fReason + ")", TTableRow::kDim));
    }
    fClass = nullptr;
  }

  void EndNamespace() override {}

  void End(const TOmitted& omitted) override {
    const std::string line = omitted.Line();
    if (!line.empty()) fOutput.Add(Line(0, "(" + line + ")", TTableRow::kDim));
    fOutput.Flush();
  }

 private:
  /// Leaves out keys that say nothing. The only one that says something is the heading of the
  /// instance.
  void ChooseColumns(const TClassSnapshot& cimClass) {
    fColumns = PropertiesToShow(cimClass, fStyle);
    fSilentKeys = 0;
    if (fStyle.fShowsAll || !fStyle.fProperties.empty() || fStyle.fDepth < kValues) return;
    const auto isKey = [&cimClass](std::size_t i) { return cimClass.fProperties[i].fIsKey; };
    const auto isSilent = [&cimClass, &isKey](std::size_t i) {
      return isKey(i) && IsSilentKey(cimClass.fProperties[i].fName);
    };
    const auto keys = std::count_if(fColumns.begin(), fColumns.end(), isKey);
    const auto silent = std::count_if(fColumns.begin(), fColumns.end(), isSilent);
    fSilentKeys = static_cast<std::size_t>(silent);
    const bool isOnly = keys - silent == 1;
    fColumns.erase(std::remove_if(fColumns.begin(), fColumns.end(),
                                  [&](std::size_t i) { return isOnly ? isKey(i) : isSilent(i); }),
                   fColumns.end());
  }

  std::string FormatValues(const TInstanceSnapshot& instance) {
    const TClassSnapshot& cimClass = fClass->fClass;
    const TInstanceReasons reasons(fClass->fReasons, cimClass, instance);
    std::vector<TTableRow> rows;
    rows.reserve(fColumns.size());
    for (const std::size_t i : fColumns) {
      const NDescribe::TReason* const reason = reasons.Find(i);
      const bool isAbsent = instance.fValues[i].is_null() || reason != nullptr;
      if (isAbsent && !fStyle.fShowsMissing) {
        ++fOmitted.fMissing;
        continue;
      }
      if (!fStyle.fShowsMissing && IsEmptyValue(instance.fValues[i])) {
        ++fOmitted.fEmpty;
        continue;
      }
      std::string text = isAbsent ? "-" : ShownText(cimClass, instance, i, fStyle);
      if (reason != nullptr && !reason->empty()) text += "  (" + std::string(*reason) + ")";
      // Without the copies that a list of initial values makes: there are many rows.
      TTableRow& row = rows.emplace_back();
      row.fStyle = isAbsent ? TTableRow::kDim : TTableRow::kPlain;
      row.fCells.reserve(2);
      row.fCells.push_back("      " + cimClass.fProperties[i].fName);
      row.fCells.push_back(std::move(text));
    }
    return FormatTable(rows);
  }

  const TContentsStyle fStyle;
  TOmitted& fOmitted;
  TOutputBuffer fOutput;
  const TShownClass* fClass = nullptr;
  std::vector<std::size_t> fColumns;
  std::size_t fSilentKeys = 0;  // in each instance
};

}  // namespace

std::unique_ptr<IContentsFormat> MakeTextFormat(const TContentsStyle& style, TOmitted& omitted) {
  return std::make_unique<TTextFormat>(style, omitted);
}

}  // namespace NVORNQDX20
