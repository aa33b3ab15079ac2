// SPDX-License-Identifier: Apache-2.0
/// The command line of the verb show.
#ifndef TOOLS_QDX_VERBS_SHOW_REQUEST_H_
#define TOOLS_QDX_VERBS_SHOW_REQUEST_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/arguments.h"
#include "format/condition.h"
#include "format/contents_format.h"

namespace NVORNQDX20 {

/// A class, or an instance by its object path; in any namespace unless one is named.
struct TElementName {
  explicit TElementName(const std::string& text) : fText(text), fPath(text) {
    const std::size_t colon = text.find_first_of(":\"");
    if (colon == std::string::npos || text[colon] != ':') return;
    fNamespace = text.substr(0, colon);
    fPath = text.substr(colon + 1);
  }

  std::string fText;  ///< As given; empty for everything.
  std::string fNamespace;
  std::string fPath;
};

/// What to show.
enum class EView { kContents, kSchema, kMOF, kTree, kAssociators, kReferences };

inline bool IsWalk(EView view) { return view == EView::kAssociators || view == EView::kReferences; }

/// How to print it.
enum class EForm { kText, kTable, kCSV, kJSON, kJSONLines };

/// The request of the command line.
struct TRequest {
  EView fView = EView::kContents;
  std::string fFile;  ///< Empty for the live machine.
  TElementName fElement{""};
  std::string fClass;  ///< The class to which a walk is limited; empty for all.
  EForm fForm = EForm::kText;
  TContentsStyle fStyle;
  std::vector<TCondition> fConditions;  ///< All have to match.
};

/// Throws a TCommandFailure for options and operands that contradict each other.
TRequest RequestOf(const TArguments& arguments);

/// Returns whether the name of a class has no prefix, so that it may be a shorter one.
bool IsShortName(const std::string& className);

/// Returns the classes of which instances can be shown; nothing for all.
std::optional<std::vector<std::string>> ShownInstancesOf(const TRequest& request);

/// The options of the verb.
std::vector<TOptionSpec> ShowOptions();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_SHOW_REQUEST_H_
