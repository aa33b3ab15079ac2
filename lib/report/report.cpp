// SPDX-License-Identifier: Apache-2.0
#include <qdxreport/report.h>

#include <qdxmodel/names.h>
#include <qdxsnapshot/record.h>
#include <qdxsummary/summary.h>

#include <algorithm>

#include "contents.h"
#include "escape.h"
#include "overview.h"
#include "page.h"

namespace NVORNQDX20 {

using namespace NReport;

namespace {

/// The index of the namespace that describes a machine; of the first one without such.
std::size_t MachineAmong(const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces) {
  const auto machine = std::find_if(namespaces.begin(), namespaces.end(), [](const auto& ns) {
    return NModel::EqualIgnoringCase(ns->GetName({}), "root/cimv2");
  });
  return machine == namespaces.end() ? 0 : static_cast<std::size_t>(machine - namespaces.begin());
}

THTML Frame(const std::string& title, const THTML& overview) {
  return "<body>\n<a class=\"skip\" href=\"#content\">Skip to the contents</a>\n<header>\n" +
         TextElement("p", "", title) +
         "\n<div role=\"search\"><label>Search everything "
         "<input id=\"search\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\"></label>"
         "</div>\n</header>\n<div class=\"layout\">\n"
         "<nav aria-label=\"Classes\"><details><summary>All contents</summary>"
         "<div id=\"menu\"></div></details></nav>\n"
         "<main id=\"content\" tabindex=\"-1\">\n<noscript><p>Without scripts, this page shows the "
         "overview. All classes with their tables, and what is missing, need the page's own "
         "script.</p></noscript>\n<section id=\"overview\">\n<h1 tabindex=\"-1\">" +
         Escaped(title) + "</h1>\n" + overview +
         "</section>\n<section id=\"view\" hidden></section>\n</main>\n</div>\n";
}

/// When the data was collected, if one of the namespaces is the record of a collection.
THTML Collected(const std::vector<TReportedNamespace>& namespaces) {
  for (std::size_t i = 0; i < namespaces.size(); ++i) {
    for (const TRecord& record : TRecords(namespaces, i).Of("Collection")) {
      const std::string time = record.GetShown("CollectionTime");
      if (!time.empty()) return TextElement("p", "quiet", "Collected " + time);
    }
  }
  return "";
}

}  // namespace

std::string MakeReport(const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces) {
  std::vector<TReportedNamespace> read;
  read.reserve(namespaces.size());
  for (const auto& ns : namespaces) read.push_back(ReadNamespace(*ns));
  const TInstanceNumbers numbers(read);
  THTML overview;
  std::string title = "Report of a machine";
  if (!namespaces.empty()) {
    const std::size_t machine = MachineAmong(namespaces);
    const auto summary = NSummary::Summarize(*namespaces[machine], FindPartsExcluded(namespaces));
    overview = Collected(read) + Overview(summary, TRecords(read, machine));
    const std::string& host = summary.fProduct.fHostName;
    if (!host.empty()) title = host;
  }
  return PageHead(title, true) + Frame(title, overview) +
         "<script type=\"application/json\" id=\"contents\">" +
         ScriptJSON(ContentsAsJSON(read, numbers)) + "</script>\n<script>" + kScript +
         "</script>\n</body>\n</html>\n";
}

}  // namespace NVORNQDX20
