// SPDX-License-Identifier: Apache-2.0
#include "show_request.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include <qdxsnapshot/record.h>

#include "cli/failure.h"
#include "input/machine.h"

namespace NVORNQDX20 {
namespace {

/// Returns whether the text looks like a name, a dot and "=".
bool CanNameInstance(const std::string& text, std::size_t end) {
  return end != std::string::npos && text[end] == '.' && text.find('=', end) != std::string::npos;
}

std::size_t EndOfName(const std::string& path) {
  return path.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_");
}

bool NamesInstance(const std::string& text) {
  const std::string path = TElementName(text).fPath;
  return CanNameInstance(path, EndOfName(path));
}

/// Returns whether the text looks like a class or an instance: unlikely file names.
bool CanNameElement(const std::string& text) {
  const std::string path = TElementName(text).fPath;
  const std::size_t end = EndOfName(path);
  if (end == 0 || path.empty()) return false;
  return end == std::string::npos || CanNameInstance(path, end);
}

bool NamesFile(const std::string& operand) {
  std::error_code ignored;
  return operand == "-" || std::filesystem::exists(operand, ignored) || !CanNameElement(operand);
}

EDepth DepthOf(const std::string& text) {
  if (text.size() != 1 || text[0] < '0' || text[0] > '3') {
    FailOnUsage("option '--depth' needs a number from 0 to 3");
  }
  return static_cast<EDepth>(text[0] - '0');
}

/// Returns the view that an option chooses, after checking that no other option contradicts it.
EView ViewOf(const TArguments& arguments) {
  static constexpr std::pair<const char*, EView> kViews[] = {{"schema", EView::kSchema},
                                                             {"mof", EView::kMOF},
                                                             {"tree", EView::kTree},
                                                             {"associators", EView::kAssociators},
                                                             {"references", EView::kReferences}};
  const char* chosen = nullptr;
  EView view = EView::kContents;
  const auto refuse = [&chosen](const std::string& other) {
    FailOnUsage(std::string("option '--") + chosen + "' cannot be used with '--" + other + "'");
  };
  for (const auto& [option, its] : kViews) {
    if (!arguments.Has(option)) continue;
    // MOF is a form of the schema.
    if (chosen != nullptr && its != EView::kMOF) refuse(option);
    chosen = option;
    view = its;
  }
  if (view == EView::kMOF && arguments.Has("json")) refuse("json");
  if (chosen == nullptr || IsWalk(view)) return view;
  for (const char* const other :
       {"depth", "table", "csv", "json-lines", "where", "properties", "raw", "all"}) {
    if (arguments.Has(other)) refuse(other);
  }
  return view;
}

EForm FormOf(const TArguments& arguments) {
  static constexpr std::pair<const char*, EForm> kForms[] = {{"json", EForm::kJSON},
                                                             {"json-lines", EForm::kJSONLines},
                                                             {"table", EForm::kTable},
                                                             {"csv", EForm::kCSV}};
  const char* chosen = nullptr;
  EForm form = EForm::kText;
  for (const auto& [option, its] : kForms) {
    if (!arguments.Has(option)) continue;
    if (chosen != nullptr) {
      FailOnUsage(std::string("option '--") + chosen + "' cannot be used with '--" + option + "'");
    }
    chosen = option;
    form = its;
  }
  const bool hasDepths = form == EForm::kText || form == EForm::kJSON;
  if (!hasDepths && arguments.Has("depth")) {
    FailOnUsage(std::string("option '--") + chosen + "' cannot be used with '--depth'");
  }
  return form;
}

/// Splits the names at their commas. One that comes twice counts once, as in an object of JSON.
std::vector<std::string> PropertiesOf(const TArguments& arguments) {
  std::vector<std::string> names;
  for (const std::string& list : arguments.GetAll("properties")) {
    for (std::size_t start = 0; start <= list.size();) {
      const std::size_t end = std::min(list.find(',', start), list.size());
      const std::size_t first = std::min(list.find_first_not_of(' ', start), end);
      std::string name = list.substr(first, end - first);
      name.erase(name.find_last_not_of(' ') + 1);
      if (name.empty()) FailOnUsage("option '--properties' needs names with commas between them");
      const bool isKnown = std::any_of(
          names.begin(), names.end(),
          [&name](const std::string& each) { return NModel::EqualIgnoringCase(each, name); });
      if (!isKnown) names.push_back(std::move(name));
      start = end + 1;
    }
  }
  return names;
}

/// A walk takes [FILE] PATH [CLASS], the other views [FILE] [ELEMENT].
void SetOperands(const std::vector<std::string>& operands, TRequest& request) {
  const bool isWalk = IsWalk(request.fView);
  const std::size_t count = operands.size();
  std::size_t next = 0;
  const bool isSurelyFile = count == 3 || (count == 2 && (!isWalk || NamesInstance(operands[1])));
  if (isSurelyFile || (count != 0 && NamesFile(operands[0]))) {
    request.fFile = operands[next++];
  }
  if (next < count) request.fElement = TElementName(operands[next++]);
  if (next < count) request.fClass = operands[next];
  if (!isWalk && !request.fClass.empty()) {
    FailOnUsage("operand CLASS needs the option '--associators' or '--references'");
  }
}

void CheckElement(const TRequest& request) {
  const bool isInstance = NamesInstance(request.fElement.fText);
  if (IsWalk(request.fView) && !isInstance) {
    FailOnUsage("options '--associators' and '--references' need the object path of an instance");
  }
  if (request.fForm == EForm::kCSV && request.fElement.fText.empty()) {
    FailOnUsage("option '--csv' needs a class or an object path");
  }
  if (request.fView != EView::kContents && !IsWalk(request.fView) && isInstance) {
    FailOnUsage("options '--schema', '--mof' and '--tree' need a class, not an object path");
  }
}

}  // namespace

TRequest RequestOf(const TArguments& arguments) {
  TRequest request;
  request.fView = ViewOf(arguments);
  request.fForm = FormOf(arguments);
  request.fStyle.fDepth = DepthOf(arguments.Get("depth", "3"));
  request.fStyle.fProperties = PropertiesOf(arguments);
  request.fStyle.fIsRaw = arguments.Has("raw");
  request.fStyle.fShowsAll = arguments.Has("all");
  for (const std::string& each : arguments.GetAll("where")) request.fConditions.emplace_back(each);
  SetOperands(arguments.fOperands, request);
  CheckElement(request);
  if (!request.fFile.empty()) RefuseOptionsWithFile(arguments);
  return request;
}

bool IsShortName(const std::string& className) { return className.find('_') == std::string::npos; }

std::optional<std::vector<std::string>> ShownInstancesOf(const TRequest& request) {
  using TClasses = std::vector<std::string>;
  if (request.fView == EView::kSchema || request.fView == EView::kMOF) return TClasses();
  // The tree has the numbers of all instances.
  const bool isElement =
      request.fView == EView::kContents && CanNameElement(request.fElement.fText);
  if (!isElement) return std::nullopt;
  const std::string& path = request.fElement.fPath;
  const std::string name = path.substr(0, EndOfName(path));
  // What is meant by a short name is not known before the classes are.
  if (IsShortName(name)) return std::nullopt;
  // The record says which parts were left out, and lines of JSON have what it says.
  return TClasses{name, kRecordClass};
}

std::vector<TOptionSpec> ShowOptions() {
  std::vector<TOptionSpec> options = BesideFile(TMachine::Options());
  options.push_back(
      {"depth", "N", "Stop at namespaces (0), classes (1), instances (2) or values (3)."});
  options.push_back({"where", "CONDITION", "Show instances with this value: 'Size>100GB'."});
  options.push_back({"properties", "NAMES", "Show only these properties, in this order."});
  options.push_back({"table", nullptr, "Show each class as a table."});
  options.push_back({"csv", nullptr, "Print one table as CSV, with bare values."});
  options.push_back({"json", nullptr, "Print one JSON object, with bare values."});
  options.push_back({"json-lines", nullptr, "Print a line of JSON for each instance."});
  options.push_back({"raw", nullptr, "Show values without units and names."});
  options.push_back({"all", nullptr, "Show also keys, associations and what is missing."});
  options.push_back({"schema", nullptr, "Show the declaration of a class, or of all."});
  options.push_back({"mof", nullptr, "Print declarations as MOF text."});
  options.push_back({"tree", nullptr, "Show the tree of classes."});
  options.push_back({"associators", nullptr, "Show what is associated with an object path."});
  options.push_back({"references", nullptr, "Show the associations of an object path."});
  return options;
}

}  // namespace NVORNQDX20
