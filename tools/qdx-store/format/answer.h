// SPDX-License-Identifier: Apache-2.0
/// The answer to a question as a table for people, and as JSON and CSV for programs.
#ifndef TOOLS_QDX_STORE_FORMAT_ANSWER_H_
#define TOOLS_QDX_STORE_FORMAT_ANSWER_H_

#include <optional>
#include <string>
#include <vector>

#include <qdxsnapshot/value_json.h>
#include "cli/arguments.h"

namespace NVORNQDX20::NStore {

struct TAnswerColumn {
  enum EReaders { kAll, kPeople, kPrograms, kJSON, kCSV };
  /// In tables names are cut as ShortName() does.
  enum EContents { kValue, kName };

  std::string fKey;      ///< In JSON and CSV.
  std::string fHeading;  ///< In tables.
  EReaders fReaders = kAll;
  EContents fContents = kValue;
};

struct TAnswer {
  std::string fName;  ///< The key of the rows in JSON.
  std::vector<TAnswerColumn> fColumns;
  std::vector<std::vector<TJSON>> fRows;
  TJSON fOthers = TJSON::object();         ///< Further members of the JSON object.
  std::vector<std::string> fRemarks = {};  ///< Lines below the table.
};

/// Returns a name or a remark for people: what is longer than 255 characters ends with "...", since
/// a document can have names of any length. It cannot control a terminal.
std::string ShortName(const std::string& name);

/// Returns null for none.
TJSON OrNull(const std::optional<std::string>& text);
/// Returns null for an empty text.
TJSON OrNull(const std::string& text);

/// The options --json and --csv.
std::vector<TOptionSpec> FormOptions();

/// Throws a TCommandFailure for both options.
void RequireOneForm(const TArguments& arguments);

/// Writes the answer in the form that the options name. Texts are not trusted: they cannot control
/// a terminal. Throws what WriteOutput() throws.
void WriteAnswer(const TAnswer& answer, const TArguments& arguments);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_FORMAT_ANSWER_H_
