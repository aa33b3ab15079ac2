// SPDX-License-Identifier: Apache-2.0
// The verb validate.
#include <qdxmodel/classes.h>
#include <qdxmodel/counted.h>

#include <algorithm>
#include <tuple>

#include <nlohmann/json.hpp>

#include "cli/failure.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "input/document.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

using NCIMXML::TDefect;
using NModel::Counted;
using TJSON = nlohmann::ordered_json;

/// Returns "N classes, M instances in K namespaces".
std::string ContentsOf(const TNamespaces& namespaces) {
  std::size_t classes = 0;
  std::size_t instances = 0;
  for (const auto& ns : namespaces) {
    ns->EnumerateClasses(
        [&](const boost::shared_ptr<ICIMClass>& root) {
          for (const auto& each : NModel::WithSubclasses(root)) {
            ++classes;
            NModel::ForEachInstance(*each, [&](const ICIMInstance&) { ++instances; });
          }
          return true;
        },
        {});
  }
  return Counted(classes, "class", "classes") + ", " + Counted(instances, "instance", "instances") +
         " in " + Counted(namespaces.size(), "namespace", "namespaces");
}

void SortByPlace(std::vector<TDefect>& defects) {
  std::stable_sort(defects.begin(), defects.end(), [](const TDefect& left, const TDefect& right) {
    return std::tie(left.fLine, left.fColumn) < std::tie(right.fLine, right.fColumn);
  });
}

TJSON AsJSON(const std::string& file, const TDefect& defect) {
  return {{"file", file},
          {"line", defect.fLine},
          {"column", defect.fColumn},
          {"object", defect.fObject},
          {"message", defect.fMessage}};
}

std::string AsLine(const std::string& file, const TDefect& defect) {
  const std::string object = defect.fObject.empty() ? "" : defect.fObject + ": ";
  return ForTerminal(file + ":" + std::to_string(defect.fLine) + ":" +
                     std::to_string(defect.fColumn) + ": " + object + defect.fMessage) +
         "\n";
}

std::string Summary(const std::string& file, const TCheckedDocument& document) {
  const std::string text =
      document.fDefects.empty()
          ? file + ": no defects, " + ContentsOf(document.fNamespaces)
          : Counted(document.fDefects.size(), "defect", "defects") + " in " + file;
  return ForTerminal(text) + "\n";
}

EExitCode RunValidate(const TArguments& arguments) {
  const auto& files = arguments.fOperands;
  if (std::count(files.begin(), files.end(), "-") > 1) {
    FailOnUsage("only one of the files can be standard input");
  }
  const bool isJSON = arguments.Has("json");
  TJSON list = TJSON::array();
  EExitCode code = kExitDone;
  for (const std::string& file : files) {
    TCheckedDocument document;
    try {
      document = CheckDocument(file, arguments);
    } catch (const TCommandFailure& failure) {  // the other files can be checked
      failure.Print();
      code = failure.GetExitCode();
      continue;
    }
    SortByPlace(document.fDefects);
    if (code == kExitDone && !document.fDefects.empty()) code = kExitDifferent;
    for (const TDefect& defect : document.fDefects) {
      if (isJSON) {
        list.push_back(AsJSON(file, defect));
      } else {
        WriteOutput(AsLine(file, defect));
      }
    }
    if (!isJSON) WriteOutput(Summary(file, document));
  }
  if (isJSON) WriteJSON(list);
  return code;
}

}  // namespace

TVerb ValidateVerb() {
  return {
      "validate",
      "Checks documents; the exit status is 1 if one has defects.",
      "FILE is a CIM-XML document, '-' is standard input. Each defect is a line with the file,\n"
      "the line, the column, the object and the fault; a line for each document sums up.\n"
      "References to other machines, and to namespaces or classes that the document lacks,\n"
      "are no defects.\n",
      {{"memory", "MIB", "Let a document use so much memory (half of all by default)."},
       {"json", nullptr, "Print one JSON array."}},
      RunValidate,
      {{"FILE", TOperandSpec::kRepeated}}};
}

}  // namespace NVORNQDX20
