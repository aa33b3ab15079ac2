// SPDX-License-Identifier: Apache-2.0
#include <qdxredact/mark.h>

#include <qdxcore/status.h>
#include <qdxmodel/classes.h>

namespace NVORNQDX20::NRedact {
namespace {

using TType = TCIMValue::TCIMType;
using NDescribe::TPropertyDeclaration;
using TNames = std::set<std::string>;

constexpr const char* kReplaced = "Replaced";
constexpr const char* kKept = "Kept";
constexpr const char* kGuessed = "Guessed";
constexpr const char* kComparable = "Comparable";

TPropertyDeclaration Row(const char* name, unsigned int type, const char* description) {
  TPropertyDeclaration row(name, TCIMValue(TType(type), 0));
  row.fDescription = description;
  return row;
}

boost::shared_ptr<ICIMClass> DeclareMark(ICIMNamespace& ns) {
  constexpr unsigned int kTexts = static_cast<unsigned int>(TType::kCIMTypeString) |
                                  static_cast<unsigned int>(TType::kCIMTypeArray);
  NDescribe::TClassDeclaration mark = {
      kRedactionClass,
      "That secrets of this document were replaced by pseudonyms.",
      {Row("InstanceID", TType::kCIMTypeString, "Identifies the only instance."),
       Row(kReplaced, kTexts, "The kinds of secrets that were replaced."),
       Row(kKept, kTexts, "The kinds of secrets that stayed as they were."),
       Row(kGuessed, TType::kCIMTypeBoolean,
           "Whether names and forms of properties told what is secret."),
       Row(kComparable, TType::kCIMTypeBoolean,
           "Whether the pseudonyms are the same in other documents, by a key of their owner.")}};
  mark.fProperties.front().fIsKey = true;
  return NDescribe::DeclareClass(ns, mark);
}

boost::shared_ptr<ICIMClass> FindMark(ICIMNamespace& ns) {
  try {
    return ns.GetClass(kRedactionClass, {});
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() != kQDXStatusNotFound) throw;
    return nullptr;
  }
}

/// Returns nothing of a property that a document has otherwise.
TNames NamesOf(const ICIMInstance& mark, const char* property) {
  TNames names;
  const TCIMValue value = mark.GetProperty(property, {})->GetValue();
  if (value.IsNull() || !value.IsArray()) return names;
  const std::vector<TCIMValue>& elements = value;
  for (const TCIMValue& each : elements) {
    if (const std::string* const name = each.FindString()) names.insert(*name);
  }
  return names;
}

bool IsTrue(const ICIMInstance& mark, const char* property) {
  const TCIMValue value = mark.GetProperty(property, {})->GetValue();
  return value.GetType() == TType::kCIMTypeBoolean && !value.IsNull() && static_cast<bool>(value);
}

TCIMValue Texts(const TNames& names) {
  return TCIMValue(TType(TType::kCIMTypeString), 0,
                   std::vector<TCIMValue>(names.begin(), names.end()));
}

}  // namespace

void Mark(ICIMNamespace& ns, const TRedaction& redaction, bool hasKeyOfOperator) {
  auto cimClass = FindMark(ns);
  if (!cimClass) cimClass = DeclareMark(ns);
  auto marks = NModel::InstancesOf(*cimClass);
  TNames replaced;
  bool isGuessed = redaction.fGuesses;
  bool isNew = marks.empty();
  if (isNew) {
    marks.push_back(cimClass->CreateInstance({}));
    marks.front()->SetPropertyValue("InstanceID", "VORNSG:Redaction", {});
  } else {
    replaced = NamesOf(*marks.front(), kReplaced);
    isGuessed = isGuessed || IsTrue(*marks.front(), kGuessed);
  }
  TNames kept;
  for (const ESecret each : AllSecrets()) {
    if (redaction.fKept.count(each) == 0) replaced.insert(NDescribe::SecretName(each));
  }
  for (const ESecret each : AllSecrets()) {
    if (replaced.count(NDescribe::SecretName(each)) == 0) kept.insert(NDescribe::SecretName(each));
  }
  ICIMInstance& mark = *marks.front();
  mark.SetPropertyValue(kReplaced, Texts(replaced), {});
  mark.SetPropertyValue(kKept, Texts(kept), {});
  mark.SetPropertyValue(kGuessed, isGuessed, {});
  mark.SetPropertyValue(kComparable, hasKeyOfOperator, {});
  if (isNew) mark.Commit({});
}

}  // namespace NVORNQDX20::NRedact
