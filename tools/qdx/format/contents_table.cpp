// SPDX-License-Identifier: Apache-2.0
// Contents as tables: aligned columns for people, and CSV (RFC 4180) for programs.
#include <qdxdisplay/names.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <unistd.h>

#include "cli/output.h"
#include "cli/table_columns.h"
#include "cli/terminal.h"
#include "contents_format.h"

namespace NVORNQDX20 {
namespace {

constexpr const char* kTableIndent = "    ";

class TTableFormat : public IContentsFormat {
 public:
  TTableFormat(TContentsStyle style, TOmitted& omitted)
      : fStyle(std::move(style)), fOmitted(omitted) {}

  void BeginNamespace(const std::string& name, const std::string& provider) override {
    const std::string suffix = provider.empty() ? "" : "  (provider " + provider + ")";
    fOutput.Add(FormatLine(name + suffix, TTableRow::kHeading));
  }

  void BeginClass(const TShownClass& cimClass) override {
    fClass = &cimClass;
    fColumns = PropertiesToShow(cimClass.fClass, fStyle);
    fRows.clear();
  }

  void AddInstances(const std::vector<TInstanceSnapshot>& instances) override {
    for (const TInstanceSnapshot& instance : instances) {
      TTableRow& row = fRows.emplace_back();
      for (const std::size_t i : fColumns) {
        row.fCells.push_back(
            instance.fValues[i].is_null() ? "-" : ShownText(fClass->fClass, instance, i, fStyle));
      }
    }
  }

  void EndClass() override {
    fOutput.Add(FormatLine("  " + CountedName(*fClass)));
    if (!fRows.empty() && !fColumns.empty()) fOutput.Add(FormatRows());
    if (!fClass->fReason.empty()) {
      fOutput.Add(FormatLine("    -  (" + fClass->fReason + ")", TTableRow::kDim));
    }
    fRows.clear();
    fClass = nullptr;
  }

  void EndNamespace() override {}

  void End(const TOmitted& omitted) override {
    const std::string line = omitted.Line();
    if (!line.empty()) fOutput.Add(FormatLine("(" + line + ")", TTableRow::kDim));
    fOutput.Flush();
  }

 private:
  std::string FormatRows() {
    std::vector<std::size_t> widths;
    const std::vector<std::size_t> shown = ColumnsThatFit(widths);
    std::vector<std::string> names;
    names.reserve(shown.size());
    for (const std::size_t column : shown) {
      names.push_back(fClass->fClass.fProperties[fColumns[column]].fName);
    }
    std::string text =
        FormatLine(kTableIndent + AlignedLine(std::move(names), widths), TTableRow::kHeading);
    for (TTableRow& row : fRows) {
      std::vector<std::string> cells;
      cells.reserve(shown.size());
      for (const std::size_t column : shown) cells.push_back(std::move(row.fCells[column]));
      text += FormatLine(kTableIndent + AlignedLine(std::move(cells), widths));
    }
    return text;
  }

  /// Returns whether the column says nothing: no instance has a value, or it is a silent key.
  bool SaysNothing(std::size_t column) const {
    if (fStyle.fShowsAll || !fStyle.fProperties.empty()) return false;
    const TPropertySnapshot& property = fClass->fClass.fProperties[fColumns[column]];
    if (property.fIsKey && IsSilentKey(property.fName)) return true;
    return std::all_of(fRows.begin(), fRows.end(), [column](const TTableRow& row) {
      const std::string& cell = row.fCells[column];
      return cell == "-" || cell == "\"\"" || cell == "{ }";
    });
  }

  /// Returns the columns to show, keys first, and their widths. On a terminal they are cut and
  /// left out as its width demands; but those that were asked for are all there.
  std::vector<std::size_t> ColumnsThatFit(std::vector<std::size_t>& widths) {
    constexpr std::size_t kEnough = 24;  // of a text; more of it is shown if there is room
    const std::size_t room = Room();
    std::vector<std::size_t> shown;
    std::size_t used = 0;
    for (const std::size_t column : KeysFirst()) {
      const std::size_t width = std::min(room, WidthOfColumn(column));
      const std::size_t needed = (shown.empty() ? 0 : kColumnGap) + std::min(kEnough, width);
      const bool isAskedFor = fStyle.fShowsAll || !fStyle.fProperties.empty();
      const bool fits = used + needed <= room || shown.empty() || isAskedFor;
      if (SaysNothing(column) || !fits) {
        ++fOmitted.fColumns;
        continue;
      }
      used += needed;
      shown.push_back(column);
      widths.push_back(width);
    }
    if (shown.empty()) {  // nothing says anything: one shows at least how many there are
      shown.push_back(0);
      widths.push_back(std::min(room, WidthOfColumn(0)));
      --fOmitted.fColumns;
    }
    NarrowColumns(widths, room);
    return shown;
  }

  /// Returns the columns of the terminal that the table can use.
  std::size_t Room() const {
    constexpr std::size_t kAny = 1000000000;
    return fStyle.fShowsAll ? kAny : RoomForTable(std::strlen(kTableIndent));
  }

  std::vector<std::size_t> KeysFirst() const {
    std::vector<std::size_t> columns(fColumns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) columns[i] = i;
    if (!fStyle.fProperties.empty()) return columns;
    std::stable_partition(columns.begin(), columns.end(), [this](std::size_t column) {
      return fClass->fClass.fProperties[fColumns[column]].fIsKey;
    });
    return columns;
  }

  std::size_t WidthOfColumn(std::size_t column) const {
    std::size_t width = WidthOf(fClass->fClass.fProperties[fColumns[column]].fName);
    for (const TTableRow& row : fRows) width = std::max(width, WidthOf(row.fCells[column]));
    return width;
  }

  const TContentsStyle fStyle;
  TOmitted& fOmitted;
  TOutputBuffer fOutput;
  const TShownClass* fClass = nullptr;
  std::vector<std::size_t> fColumns;  // of the class, by their indexes
  std::vector<TTableRow> fRows;
};

std::string CSVText(const TJSON& value) {
  if (value.is_null()) return "";
  return value.is_string() ? value.get<std::string>() : PlainText(value);
}

class TCSVFormat : public IContentsFormat {
 public:
  TCSVFormat(const TContentsStyle& style, const std::vector<std::string>& properties)
      : fHasClass(style.fProperties.empty()),
        fNames(fHasClass ? properties : style.fProperties),
        fIsTerminal(::isatty(STDOUT_FILENO) != 0) {
    std::vector<std::string> fields = fNames;
    if (fHasClass) fields.insert(fields.begin(), "Class");
    AddRecord(fields);
  }

  void BeginNamespace(const std::string&, const std::string&) override {}
  void BeginClass(const TShownClass& cimClass) override {
    fClass = &cimClass.fClass;
    NModel::TNameMap<std::size_t> indexes;
    for (std::size_t i = 0; i < fClass->fProperties.size(); ++i) {
      indexes.emplace(fClass->fProperties[i].fName, i);
    }
    fColumns.clear();
    for (const std::string& name : fNames) {
      const auto found = indexes.find(name);
      fColumns.push_back(found == indexes.end() ? kNone : found->second);
    }
  }
  void AddInstances(const std::vector<TInstanceSnapshot>& instances) override {
    for (const TInstanceSnapshot& instance : instances) {
      std::vector<std::string> fields;
      if (fHasClass) fields.push_back(fClass->fName);
      for (const std::size_t i : fColumns) {
        fields.push_back(i == kNone ? "" : CSVText(instance.fValues[i]));
      }
      AddRecord(fields);
    }
  }
  void EndClass() override {}
  void EndNamespace() override {}
  void End(const TOmitted&) override { fOutput.Flush(); }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  void AddRecord(std::vector<std::string> fields) {
    for (std::string& field : fields) {
      if (fIsTerminal) field = ForTerminal(field);
    }
    fOutput.Add(CSVRecord(fields));
  }

  const bool fHasClass;
  const std::vector<std::string> fNames;
  const bool fIsTerminal;
  TOutputBuffer fOutput;
  const TClassSnapshot* fClass = nullptr;
  std::vector<std::size_t> fColumns;  // for each name, of the class
};

}  // namespace

std::unique_ptr<IContentsFormat> MakeTableFormat(const TContentsStyle& style, TOmitted& omitted) {
  return std::make_unique<TTableFormat>(style, omitted);
}

std::unique_ptr<IContentsFormat> MakeCSVFormat(const TContentsStyle& style,
                                               const std::vector<std::string>& properties) {
  return std::make_unique<TCSVFormat>(style, properties);
}

}  // namespace NVORNQDX20
