// SPDX-License-Identifier: Apache-2.0
#include "element.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>

#include "document_limits.h"

namespace NVORNQDX20::NCIMXML {
namespace {

// Sorted by bytes, for the binary search.
constexpr std::string_view kElements[] = {"CIM",
                                          "CLASS",
                                          "CLASSNAME",
                                          "CLASSPATH",
                                          "CORRELATOR",
                                          "DECLARATION",
                                          "DECLGROUP",
                                          "DECLGROUP.WITHNAME",
                                          "DECLGROUP.WITHPATH",
                                          "ERROR",
                                          "EXPMETHODCALL",
                                          "EXPMETHODRESPONSE",
                                          "EXPPARAMVALUE",
                                          "HOST",
                                          "IMETHODCALL",
                                          "IMETHODRESPONSE",
                                          "INSTANCE",
                                          "INSTANCENAME",
                                          "INSTANCEPATH",
                                          "IPARAMVALUE",
                                          "IRETURNVALUE",
                                          "KEYBINDING",
                                          "KEYVALUE",
                                          "LOCALCLASSPATH",
                                          "LOCALINSTANCEPATH",
                                          "LOCALNAMESPACEPATH",
                                          "MESSAGE",
                                          "METHOD",
                                          "METHODCALL",
                                          "METHODRESPONSE",
                                          "MULTIEXPREQ",
                                          "MULTIEXPRSP",
                                          "MULTIREQ",
                                          "MULTIRSP",
                                          "NAMESPACE",
                                          "NAMESPACEPATH",
                                          "OBJECTPATH",
                                          "PARAMETER",
                                          "PARAMETER.ARRAY",
                                          "PARAMETER.REFARRAY",
                                          "PARAMETER.REFERENCE",
                                          "PARAMVALUE",
                                          "PROPERTY",
                                          "PROPERTY.ARRAY",
                                          "PROPERTY.REFARRAY",
                                          "PROPERTY.REFERENCE",
                                          "QUALIFIER",
                                          "QUALIFIER.DECLARATION",
                                          "RESPONSEDESTINATION",
                                          "RETURNVALUE",
                                          "SCOPE",
                                          "SIMPLEEXPREQ",
                                          "SIMPLEEXPRSP",
                                          "SIMPLEREQ",
                                          "SIMPLERSP",
                                          "VALUE",
                                          "VALUE.ARRAY",
                                          "VALUE.INSTANCEWITHPATH",
                                          "VALUE.NAMEDINSTANCE",
                                          "VALUE.NAMEDOBJECT",
                                          "VALUE.NULL",
                                          "VALUE.OBJECT",
                                          "VALUE.OBJECTWITHLOCALPATH",
                                          "VALUE.OBJECTWITHPATH",
                                          "VALUE.REFARRAY",
                                          "VALUE.REFERENCE"};

constexpr std::string_view kAttributes[] = {
    "ARRAYSIZE",  "ASSOCIATION",  "CLASS",     "CLASSNAME",      "CODE",        "DESCRIPTION",
    "INDICATION", "ISARRAY",      "METHOD",    "NAME",           "OVERRIDABLE", "PARAMETER",
    "PROPAGATED", "PROPERTY",     "REFERENCE", "REFERENCECLASS", "SUPERCLASS",  "TOINSTANCE",
    "TOSUBCLASS", "TRANSLATABLE", "TYPE",      "VALUETYPE"};

template <typename TNames>
std::string_view FindIn(const TNames& names, std::string_view name) {
  const auto* const found = std::lower_bound(std::begin(names), std::end(names), name);
  return found != std::end(names) && *found == name ? *found : std::string_view();
}

}  // namespace

std::string_view KnownElement(std::string_view name) { return FindIn(kElements, name); }

std::string_view KnownAttribute(std::string_view name) { return FindIn(kAttributes, name); }

const std::string* TElement::Find(std::string_view attribute) const {
  for (const TAttribute& each : fAttributes) {
    if (each.fName == attribute) return &each.fValue;
  }
  return nullptr;
}

const std::string& TElement::Get(std::string_view attribute) const {
  const std::string* const value = Find(attribute);
  if (value == nullptr) {
    Refuse("<" + std::string(fName) + "> has no " + std::string(attribute));
  }
  return *value;
}

bool TElement::GetFlag(std::string_view attribute, bool absent) const {
  const std::string* const value = Find(attribute);
  if (value == nullptr) return absent;
  const bool isTrue = NModel::EqualIgnoringCase(*value, "true");
  if (!isTrue && !NModel::EqualIgnoringCase(*value, "false")) {
    Refuse(std::string(attribute) + " is neither true nor false, but " + Shown(*value));
  }
  return isTrue;
}

const TElement* TElement::Child(std::string_view name) const {
  for (const TElement& child : fChildren) {
    if (child.Is(name)) return &child;
  }
  return nullptr;
}

std::size_t TElement::Bytes() const {
  constexpr std::size_t kLinks = 4 * sizeof(void*);  // list links and the allocator's overhead
  std::size_t bytes = sizeof(TElement) + kLinks;
  for (const TAttribute& attribute : fAttributes) {
    bytes += sizeof(TAttribute) + attribute.fValue.size();
  }
  return bytes;
}

const TElement& TElement::OnlyChild() const {
  if (fChildren.size() != 1) {
    Refuse("<" + std::string(fName) + "> must hold exactly one element");
  }
  return fChildren.front();
}

void TElement::RefuseChild(const TElement& child) const {
  child.Refuse("<" + std::string(child.fName) + "> does not belong into <" + std::string(fName) +
               ">");
}

TDocumentError TooMuchHeld(TPosition position) {
  TDocumentError error("the document needs more than " + InMiB(kMaxHeldBytes) + " of memory",
                       position);
  error.fIsFatal = true;
  return error;
}

std::string AtPosition(const TPosition& position) {
  return ": line " + std::to_string(position.fLine) + ", column " +
         std::to_string(position.fColumn);
}

std::string Shown(std::string_view text) {
  std::string shown = NModel::Quoted(text);
  std::replace_if(
      shown.begin(), shown.end(), [](unsigned char c) { return c < ' '; }, ' ');
  return shown;
}

std::string Plain(std::string_view text) {
  const std::string shown = Shown(text);
  return shown.substr(1, shown.size() - 2);
}

}  // namespace NVORNQDX20::NCIMXML
