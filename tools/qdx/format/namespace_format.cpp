// SPDX-License-Identifier: Apache-2.0
#include "namespace_format.h"

#include <qdxsnapshot/missing.h>
#include "cli/terminal.h"

namespace NVORNQDX20 {
namespace {

/// Returns the reason, or an empty text for null.
std::string TextOf(const NDescribe::TReason* reason) {
  return reason != nullptr ? std::string(*reason) : "";
}

/// Returns why instances of the class are missing; empty if none is, or without a reason.
std::string ReasonFor(const TNamespaceContents& ns, const TClassSnapshot& cimClass) {
  const auto reason = ns.fReasons.find({cimClass.fName, "", ""});
  return reason == ns.fReasons.end() ? "" : reason->second;
}

std::string Line(std::size_t indent, const std::string& text,
                 TTableRow::EStyle style = TTableRow::kPlain) {
  return FormatTable({{{std::string(indent, ' ') + text}, style}});
}

std::string FormatValues(const TNamespaceContents& ns, const TClassSnapshot& cimClass,
                         const TInstanceSnapshot& instance) {
  const TInstanceReasons reasons(ns.fReasons, cimClass, instance);
  std::vector<TTableRow> rows;
  for (std::size_t i = 0; i < instance.fValues.size(); ++i) {
    const std::string reason = TextOf(reasons.Find(i));
    const bool absent = instance.fValues[i].is_null() || !reason.empty();
    const std::string text = absent ? "-" : PlainText(instance.fValues[i]);
    rows.push_back({{"      " + cimClass.fProperties[i].fName,
                     text + (reason.empty() ? "" : "  (" + reason + ")")},
                    absent ? TTableRow::kDim : TTableRow::kPlain});
  }
  return FormatTable(rows);
}

std::string FormatClass(const TNamespaceContents& ns, const TClassSnapshot& cimClass) {
  const std::size_t count = cimClass.fInstanceCount;
  const std::string instances = count == 1 ? " instance)" : " instances)";
  std::string text = Line(2, cimClass.fName + "  (" + std::to_string(count) + instances);
  for (const TInstanceSnapshot& instance : cimClass.fInstances) {
    text += Line(4, instance.fPath) + FormatValues(ns, cimClass, instance);
  }
  const std::string reason = ReasonFor(ns, cimClass);
  return reason.empty() ? text : text + Line(4, "-  (" + reason + ")", TTableRow::kDim);
}

TJSON InstanceAsJSON(const TNamespaceContents& ns, const TClassSnapshot& cimClass,
                     const TInstanceSnapshot& instance, EDepth depth) {
  TJSON json = {{"path", instance.fPath}};
  if (depth < kValues) return json;
  const TInstanceReasons reasons(ns.fReasons, cimClass, instance);
  // Names are unique: they are appended without a search for each.
  TJSON::object_t values;
  TJSON::object_t absent;
  for (std::size_t i = 0; i < instance.fValues.size(); ++i) {
    const std::string& name = cimClass.fProperties[i].fName;
    values.push_back({name, instance.fValues[i]});
    const std::string reason = TextOf(reasons.Find(i));
    if (!reason.empty()) absent.push_back({name, reason});
  }
  json["properties"] = std::move(values);
  json["absent"] = std::move(absent);
  return json;
}

TJSON ClassAsJSON(const TNamespaceContents& ns, const TClassSnapshot& cimClass, EDepth depth) {
  TJSON json = {{"class", cimClass.fName}, {"instanceCount", cimClass.fInstanceCount}};
  const std::string reason = ReasonFor(ns, cimClass);
  if (!reason.empty()) json["absent"] = reason;
  if (depth < kInstances) return json;
  TJSON& instances = json["instances"] = TJSON::array();
  for (const TInstanceSnapshot& instance : cimClass.fInstances) {
    instances.push_back(InstanceAsJSON(ns, cimClass, instance, depth));
  }
  return json;
}

TJSON NamespaceAsJSON(const TNamespaceContents& ns, EDepth depth) {
  const TJSON provider = ns.fProvider.empty() ? TJSON() : TJSON(ns.fProvider);
  TJSON json = {{"namespace", ns.fName}, {"provider", provider}};
  if (depth < kClasses) return json;
  TJSON& classes = json["classes"] = TJSON::array();
  for (const TClassSnapshot& cimClass : ns.fClasses) {
    classes.push_back(ClassAsJSON(ns, cimClass, depth));
  }
  return json;
}

}  // namespace

std::string FormatNamespaces(const std::vector<TNamespaceContents>& namespaces) {
  std::string text;
  for (const TNamespaceContents& ns : namespaces) {
    const std::string provider = ns.fProvider.empty() ? "" : "  (provider " + ns.fProvider + ")";
    text += Line(0, ns.fName + provider, TTableRow::kHeading);
    for (const TClassSnapshot& cimClass : ns.fClasses) text += FormatClass(ns, cimClass);
  }
  return text;
}

TJSON NamespacesAsJSON(const std::vector<TNamespaceContents>& namespaces, EDepth depth) {
  TJSON all = TJSON::array();
  for (const TNamespaceContents& ns : namespaces) all.push_back(NamespaceAsJSON(ns, depth));
  return {{"namespaces", all}};
}

}  // namespace NVORNQDX20
