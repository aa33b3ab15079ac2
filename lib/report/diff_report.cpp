// SPDX-License-Identifier: Apache-2.0
#include <qdxreport/diff_report.h>

#include <qdxdisplay/instance_labels.h>
#include <qdxdisplay/value_text.h>

#include <map>
#include <utility>

#include "escape.h"
#include "html.h"
#include "page.h"

namespace NVORNQDX20 {

using namespace NReport;

namespace {

/// In the order of the enumerators.
constexpr const char* kChanges[] = {"removed", "added", "changed", "not known"};
constexpr const char* kStyles[] = {"removed", "added", "changed", "unknown"};

bool IsOfInstance(const TDifference& difference) {
  return difference.fElement == TDifference::kInstance ||
         difference.fElement == TDifference::kValue;
}

/// The differences of one device, or of the declarations of a namespace.
struct TGroup {
  std::vector<const TDifference*> fOwn;
  std::vector<const TDifference*> fFollowing;
};

std::string Cut(const std::string& text) {
  constexpr std::size_t kLongest = 2000;
  if (text.size() <= kLongest) return text;
  std::size_t length = kLongest;
  while (length > 0 && (text[length] & 0xC0) == 0x80) --length;  // within a character of UTF-8
  return text.substr(0, length) + "\u2026 (" + std::to_string(text.size() - length) +
         " more bytes)";
}

/// The texts of both values, each by its own declaration: the units can differ. An en dash for
/// null.
std::pair<std::string, std::string> Texts(const TDifference& difference) {
  const TJSON& before = difference.fOld;
  const TJSON& after = difference.fNew;
  std::pair texts(PlainText(before), PlainText(after));
  if (difference.fOldDeclaration && difference.fNewDeclaration) {
    texts = {DistinctTexts(before, after, *difference.fOldDeclaration).first,
             DistinctTexts(before, after, *difference.fNewDeclaration).second};
  }
  texts.first = before.is_null() ? "\u2013" : Cut(texts.first);
  texts.second = after.is_null() ? "\u2013" : Cut(texts.second);
  return texts;
}

std::string NameOf(const TDifference& difference, const TInstanceLabels& labels) {
  const std::string& owner =
      IsOfInstance(difference) ? labels.GetLabel(difference.fOwner) : difference.fOwner;
  return Cut(owner.empty() ? difference.fNamespace : owner);
}

THTML Change(const TDifference& difference) {
  THTML word = TextElement("strong", kStyles[difference.fChange], kChanges[difference.fChange]);
  if (difference.fReason.empty()) return word;
  return word + " " + TextElement("span", "quiet", Cut(difference.fReason));
}

THTML Row(const TDifference& difference, const TInstanceLabels& labels) {
  const bool isWhole = difference.fElement == TDifference::kNamespace ||
                       difference.fElement == TDifference::kClass ||
                       difference.fElement == TDifference::kInstance;
  std::string property = difference.fProperty;
  if (difference.fElement == TDifference::kSuperclass) property = "superclass";
  const auto [before, after] = isWhole ? std::pair<std::string, std::string>() : Texts(difference);
  return Element("tr", "",
                 "<th scope=\"row\">" + Escaped(NameOf(difference, labels)) + "</th>" +
                     TextElement("td", "", property) + Element("td", "", Change(difference)) +
                     TextElement("td", "text", before) + TextElement("td", "text", after)) +
         "\n";
}

THTML Table(const std::string& caption, const std::vector<const TDifference*>& differences,
            const TInstanceLabels& labels) {
  THTML rows;
  for (const TDifference* const each : differences) rows += Row(*each, labels);
  THTML head;
  for (const char* const title : {"Instance", "Property", "Change", "Before", "After"}) {
    head += "<th scope=\"col\">" + Escaped(title) + "</th>";
  }
  return "<div class=\"scroller\" role=\"region\" tabindex=\"0\" aria-label=\"" + Escaped(caption) +
         "\"><table>" + TextElement("caption", "", caption) + "<thead><tr>" + head +
         "</tr></thead>\n<tbody>" + rows + "</tbody></table></div>\n";
}

/// What only follows is there for who wants to see it.
THTML Following(const std::string& name, const TGroup& group, const TInstanceLabels& labels) {
  if (group.fFollowing.empty()) return "";
  const std::size_t count = group.fFollowing.size();
  const std::string text = std::to_string(count) + (count == 1 ? " consequence" : " consequences");
  return Element("details", "",
                 TextElement("summary", "", text) +
                     Table("What follows from " + name, group.fFollowing, labels));
}

THTML GroupSection(const std::string& name, const TGroup& group, const TInstanceLabels& labels) {
  THTML html = TextElement("h2", "", name);
  if (!group.fOwn.empty()) html += Table("Differences of " + name, group.fOwn, labels);
  return Element("section", "group", html + Following(name, group, labels)) + "\n";
}

}  // namespace

std::string MakeDiffReport(const std::string& a, const std::string& b, const std::string& summary,
                           const std::vector<TDifference>& differences) {
  struct TNamespaceGroups {
    TGroup fDeclarations;
    std::map<std::string, TGroup> fDevices;
  };
  std::map<std::string, TNamespaceGroups> namespaces;
  TInstanceLabels labels;
  for (const TDifference& each : differences) {
    labels.Add(each.fOwner);
    labels.Add(each.fDevice);
    TNamespaceGroups& ns = namespaces[each.fNamespace];
    TGroup& group = IsOfInstance(each) ? ns.fDevices[each.fDevice] : ns.fDeclarations;
    (each.fFollows.empty() ? group.fOwn : group.fFollowing).push_back(&each);
  }
  THTML groups;
  for (const auto& [name, ns] : namespaces) {
    if (!ns.fDeclarations.fOwn.empty()) {
      groups += GroupSection("Declarations of " + name, ns.fDeclarations, labels);
    }
    for (const auto& [device, group] : ns.fDevices) {
      groups += GroupSection(Cut(labels.GetLabel(device)), group, labels);
    }
  }
  const std::string title = a + " \u2192 " + b;
  return PageHead(title, false) + "<body>\n<main>\n" + TextElement("h1", "", title) +
         TextElement("p", "", summary) + groups + "</main>\n</body>\n</html>\n";
}

}  // namespace NVORNQDX20
