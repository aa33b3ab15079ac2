// SPDX-License-Identifier: Apache-2.0
#include "answer.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <unistd.h>

#include "cli/failure.h"
#include "cli/json_stream.h"
#include "cli/output.h"
#include "cli/table_columns.h"
#include "cli/terminal.h"

namespace NVORNQDX20::NStore {
namespace {

using EReaders = TAnswerColumn::EReaders;

/// Returns the indexes of the columns for these readers.
std::vector<std::size_t> ColumnsFor(const TAnswer& answer, const std::vector<EReaders>& readers) {
  std::vector<std::size_t> columns;
  for (std::size_t i = 0; i < answer.fColumns.size(); ++i) {
    const EReaders each = answer.fColumns[i].fReaders;
    if (std::find(readers.begin(), readers.end(), each) != readers.end()) columns.push_back(i);
  }
  return columns;
}

std::string BareText(const TJSON& value) {
  if (value.is_null()) return "";
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const TJSON& element : value) text += (text.empty() ? "" : "; ") + BareText(element);
  return text;
}

/// In columns of a table, one for each character.
constexpr std::size_t kLongestName = 255;

/// On one line, since a value can have many.
std::string CellText(const TJSON& value) { return ForTerminal(PlainText(value)); }

void WriteTable(const TAnswer& answer) {
  const auto columns = ColumnsFor(answer, {TAnswerColumn::kAll, TAnswerColumn::kPeople});
  std::vector<std::vector<std::string>> lines(1);
  lines.reserve(answer.fRows.size() + 1);
  lines.front().reserve(columns.size());
  for (const std::size_t i : columns) lines.front().push_back(answer.fColumns[i].fHeading);
  for (const auto& row : answer.fRows) {
    std::vector<std::string> cells;
    cells.reserve(columns.size());
    for (const std::size_t i : columns) {
      const bool isName = answer.fColumns[i].fContents == TAnswerColumn::kName;
      cells.push_back(isName ? ShortName(PlainText(row[i])) : CellText(row[i]));
    }
    lines.push_back(std::move(cells));
  }
  std::vector<std::size_t> widths(columns.size(), 1);
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], WidthOf(line[i]));
  }
  NarrowColumns(widths, RoomForTable(0));
  TOutputBuffer output;
  for (auto& line : lines) {
    const bool isHeading = &line == &lines.front();
    if (isHeading && answer.fRows.empty()) continue;
    output.Add(FormatTable({{{AlignedLine(std::move(line), widths)},
                             isHeading ? TTableRow::kHeading : TTableRow::kPlain}}));
  }
  for (const std::string& remark : answer.fRemarks) {
    output.Add(FormatTable({{{"(" + remark + ")"}, TTableRow::kDim}}));
  }
  output.Flush();
}

void WriteCSV(const TAnswer& answer) {
  const bool isTerminal = ::isatty(STDOUT_FILENO) != 0;
  const auto columns =
      ColumnsFor(answer, {TAnswerColumn::kAll, TAnswerColumn::kPrograms, TAnswerColumn::kCSV});
  TOutputBuffer output;
  std::vector<std::string> fields;
  fields.reserve(columns.size());
  for (const std::size_t i : columns) fields.push_back(answer.fColumns[i].fKey);
  output.Add(CSVRecord(fields));
  for (const auto& row : answer.fRows) {
    fields.clear();
    for (const std::size_t i : columns) {
      const std::string text = BareText(row[i]);
      fields.push_back(isTerminal ? ForTerminal(text) : text);
    }
    output.Add(CSVRecord(fields));
  }
  output.Flush();
}

void WriteAsJSON(const TAnswer& answer) {
  const auto columns =
      ColumnsFor(answer, {TAnswerColumn::kAll, TAnswerColumn::kPrograms, TAnswerColumn::kJSON});
  TJSONStream stream;
  stream.BeginObject();
  for (const auto& [key, value] : answer.fOthers.items()) stream.Add(key, value);
  stream.BeginArray(answer.fName);
  for (const auto& row : answer.fRows) {
    TJSON object = TJSON::object();
    for (const std::size_t i : columns) object[answer.fColumns[i].fKey] = row[i];
    stream.Add("", object);
  }
  stream.End();
  stream.End();
}

}  // namespace

std::string ShortName(const std::string& name) {
  std::string harmless = ForTerminal(name);
  if (WidthOf(harmless) <= kLongestName) return harmless;
  const std::string end = "...";
  return CutToWidth(harmless, kLongestName - end.size()) + end;
}

TJSON OrNull(const std::optional<std::string>& text) { return text ? TJSON(*text) : TJSON(); }
TJSON OrNull(const std::string& text) { return text.empty() ? TJSON() : TJSON(text); }

std::vector<TOptionSpec> FormOptions() {
  return {{"json", nullptr, "Print one JSON object."}, {"csv", nullptr, "Print CSV (RFC 4180)."}};
}

void RequireOneForm(const TArguments& arguments) {
  if (arguments.Has("json") && arguments.Has("csv")) {
    FailOnUsage("option '--csv' contradicts '--json'");
  }
}

void WriteAnswer(const TAnswer& answer, const TArguments& arguments) {
  if (arguments.Has("json")) return WriteAsJSON(answer);
  arguments.Has("csv") ? WriteCSV(answer) : WriteTable(answer);
}

}  // namespace NVORNQDX20::NStore
