// SPDX-License-Identifier: Apache-2.0
#include "interner.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "input/digest.h"

namespace NVORNQDX20::NStore {
namespace {

using TJSON = nlohmann::json;

/// About 20 megabytes.
const std::size_t kMostNumbers = 200000;

std::string ElementOf(const TInternedTable& table, std::size_t column) {
  const std::string element = "value ->> " + std::to_string(column + 1);
  return table.fIsNumber[column] ? "CAST(" + element + " AS BIGINT)" : element;
}

/// The digest and the columns come from the elements of each row.
std::string InsertStatement(const TInternedTable& table) {
  std::string names = "digest";
  std::string elements = "value ->> 0";
  for (std::size_t i = 0; i < table.fColumns.size(); ++i) {
    names += std::string(", ") + table.fColumns[i];
    elements += ", " + ElementOf(table, i);
  }
  const std::string name = table.fName;
  std::string sql = "INSERT INTO " + name + " (" + names + ") SELECT " + elements +
                    " FROM @ROWS(:rows) WHERE 1 = 1 ON CONFLICT (digest) DO ";
  if (table.fAttributes.empty()) return sql + "NOTHING";
  std::string set;
  std::string isLarger;
  for (const char* attribute : table.fAttributes) {
    const std::string own = name + "." + attribute;
    const std::string other = std::string("excluded.") + attribute;
    set += (set.empty() ? "" : ", ") + std::string(attribute) + " = CASE WHEN " + other + " > " +
           own + " THEN " + other + " ELSE " + own + " END";
    isLarger += (isLarger.empty() ? "" : " OR ") + other + " > " + own;
  }
  return sql + "UPDATE SET " + set + " WHERE " + isLarger;
}

std::string TextOf(const TInterner::TInternedRow& row, std::size_t begin, std::size_t end) {
  return TJSON(TInterner::TInternedRow(row.begin() + static_cast<std::ptrdiff_t>(begin),
                                       row.begin() + static_cast<std::ptrdiff_t>(end)))
      .dump(-1, ' ', false, TJSON::error_handler_t::replace);
}

}  // namespace

const TInternedTable kStringTable = {"string", {"value"}, {false}};
const TInternedTable kReasonTable = {"reason", {"reason", "is_error"}, {false, true}};
const TInternedTable kClassTable = {"class", {"namespace", "name"}, {false, false}};
const TInternedTable kPropertyTable = {"property",
                                       {"class", "name", "type", "secret", "is_key"},
                                       {true, false, false, false, true},
                                       {"secret", "is_key"}};
const TInternedTable kObjectTable = {
    "object", {"class", "name", "parts"}, {true, false, false}, {"parts"}};

std::vector<std::int64_t> TInterner::Intern(const TInternedTable& table,
                                            const std::vector<TInternedRow>& rows) {
  if (fNumbers.size() > kMostNumbers) fNumbers.clear();
  // In the order of their digests, so that two writers do not wait for each other.
  std::map<std::string, TJSON> unknown;
  std::vector<std::string> keys;
  std::vector<std::string> digests;
  keys.reserve(rows.size());
  digests.reserve(rows.size());
  const std::size_t columns = table.fColumns.size();
  const std::size_t identifying = columns - table.fAttributes.size();
  for (const TInternedRow& row : rows) {
    digests.push_back(ShortDigestOf(TextOf(row, 0, identifying)));
    keys.push_back(table.fName + digests.back() +
                   (identifying < columns ? TextOf(row, identifying, columns) : ""));
    if (fNumbers.count(keys.back()) != 0) continue;
    TJSON& element = unknown[digests.back()];
    const TJSON old = element;
    element = TJSON::array({digests.back()});
    for (std::size_t i = 0; i < columns; ++i) {
      // Of two rows with one digest the larger attributes, too.
      const bool isLess = i >= identifying && old.is_array() && row[i] < old[i + 1];
      element.push_back(isLess ? old[i + 1] : row[i]);
    }
  }
  std::unordered_map<std::string, std::int64_t> found;
  if (!unknown.empty()) {
    TJSON elements = TJSON::array();
    for (auto& [digest, element] : unknown) elements.push_back(std::move(element));
    const std::string text = elements.dump(-1, ' ', false, TJSON::error_handler_t::replace);
    fDatabase.Execute(InsertStatement(table), {text});
    fDatabase.Query(std::string("SELECT digest, id FROM ") + table.fName +
                        " WHERE digest IN (SELECT value ->> 0 FROM @ROWS(:rows))",
                    2, {text}, [&](const TRow& row) { found.emplace(*row[0], ToNumber(row[1])); });
  }
  std::vector<std::int64_t> numbers;
  numbers.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto known = found.find(digests[i]);
    if (known != found.end()) fNumbers[keys[i]] = known->second;
    const auto number = fNumbers.find(keys[i]);
    if (number == fNumbers.end()) {
      throw TDatabaseError(TDatabaseError::kUnusable, kQDXStatusCorruptedContainer,
                           std::string("it does not keep rows of the table ") + table.fName);
    }
    numbers.push_back(number->second);
  }
  return numbers;
}

std::int64_t TInterner::InternString(const std::string& text) {
  return InternStrings({text}).front();
}

std::vector<std::int64_t> TInterner::InternStrings(const std::vector<std::string>& texts) {
  std::vector<TInternedRow> rows;
  rows.reserve(texts.size());
  for (const std::string& text : texts) rows.push_back({text});
  return Intern(kStringTable, rows);
}

}  // namespace NVORNQDX20::NStore
