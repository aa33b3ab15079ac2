// SPDX-License-Identifier: Apache-2.0
#include "value_writer.h"

#include <qdxcore/reference.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "array_sizes.h"
#include "xml/literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

std::string_view ValueTypeOf(TCIMType type) {
  if (type == TCIMType::kCIMTypeBoolean) return "boolean";
  const bool isText = type == TCIMType::kCIMTypeString || type == TCIMType::kCIMTypeDateTime;
  return isText ? "string" : "numeric";
}

/// Returns why CIM-XML has no element for the value; null if it has one. The elements of an array
/// are checked one by one elsewhere.
const char* Obstacle(const TCIMValue& value) {
  if (value.IsNull() || value.IsArray()) return nullptr;
  const TCIMReference* const reference = value.FindReference();
  if (reference == nullptr) {
    return value.FindString() != nullptr ? nullptr : TLiteral(value).GetObstacle();
  }
  for (const auto& [name, key] : reference->GetBody()->GetKeyBindings()) {
    const char* const obstacle = TValueWriter::ObstacleToKey(key);
    if (obstacle != nullptr) return obstacle;
  }
  return nullptr;
}

bool HasNullElement(const TCIMValue& array) {
  const std::vector<TCIMValue>& elements = array;
  return std::any_of(elements.begin(), elements.end(), [](const TCIMValue& element) {
    return IsAbsent(element) || Obstacle(element) != nullptr;
  });
}

}  // namespace

const char* TValueWriter::PropertyElement(TCIMType type) {
  if (type == TCIMType::kCIMTypeReference) return "PROPERTY.REFERENCE";
  return IsArray(type) ? "PROPERTY.ARRAY" : "PROPERTY";
}

const char* TValueWriter::ObstacleToKey(const TCIMValue& value) {
  return IsAbsent(value) ? "a key that is null" : Obstacle(value);
}

void TValueWriter::LeaveOut(const std::string& member, const char* reason) {
  std::string where = fNamespace.GetName({}) + ":";
  if (!fClassName.empty()) where += fClassName + ".";
  fLeftOut.Add(where + member + ": " + reason);
}

void TValueWriter::Value(const std::string& member, const TCIMValue& value) {
  if (CanHold(member, value)) Element(member, value);
}

bool TValueWriter::CanHold(const std::string& member, const TCIMValue& value) {
  if (IsAbsent(value)) return false;
  const char* obstacle = Obstacle(value);
  if (fReaders == kOldReaders && value.IsArray() && HasNullElement(value)) {
    obstacle = "an array with null elements";
  }
  if (obstacle != nullptr) LeaveOut(member, obstacle);
  return obstacle == nullptr;
}

void TValueWriter::Element(const std::string& member, const TCIMValue& value) {
  if (value.IsArray()) {
    Array(member, value);
  } else if (const TCIMReference* const reference = value.FindReference()) {
    Reference(*reference);
  } else {
    fXML.Markup("<VALUE>");
    Literal(value);
    fXML.Markup("</VALUE>");
  }
}

void TValueWriter::Literal(const TCIMValue& value) {
  if (const std::string* const text = value.FindString()) {
    fXML.Text(*text);
  } else {
    fXML.Markup(TLiteral(value).GetText());
  }
}

void TValueWriter::TypeAttribute(TCIMType type, NDescribe::EStringKind kind) {
  const bool isCharacter =
      kind == NDescribe::EStringKind::kCharacter && ElementType(type) == TCIMType::kCIMTypeString;
  fXML.Attribute("TYPE", KeywordOf(isCharacter ? TCIMType(TCIMType::kCIMTypeChar) : type));
}

void TValueWriter::PropertyAttributes(const std::string& name, const TCIMValue& value,
                                      const TDeclaredProperty& declared, bool withClass) {
  fXML.Attribute("NAME", name);
  if (!value.IsReference()) TypeAttribute(value.GetType(), declared.fStringKind);
  if (declared.fFixedSize != 0) fXML.Attribute("ARRAYSIZE", std::to_string(declared.fFixedSize));
  const bool isEmbedded = declared.fStringKind >= NDescribe::EStringKind::kEmbeddedObject;
  if (isEmbedded && fReaders == kCurrentReaders) {
    fXML.Attribute("EmbeddedObject", NDescribe::KeywordOf(declared.fStringKind));
  }
  const auto referenced = withClass ? value.GetReferencedClass() : nullptr;
  if (referenced) fXML.Attribute("REFERENCECLASS", referenced->GetName({}));
}

TWrittenProperty TValueWriter::Prepare(const std::string& name, TCIMType type,
                                       const TDeclaredProperty& declared) const {
  const bool isReference = type == TCIMType::kCIMTypeReference;
  TWrittenProperty prepared{name, type, declared, !IsArray(type) && !isReference, {}, {}};
  if (IsArray(type)) return prepared;
  TXMLWriter tag(prepared.fTag);
  tag.Markup("<").Markup(PropertyElement(type));
  TValueWriter(tag, fNamespace, fReaders, fLeftOut)
      .PropertyAttributes(name, TCIMValue(type, 0), {0, declared.fStringKind}, false);
  TXMLWriter key(prepared.fKey);
  if (isReference) {
    key.Markup("<KEYBINDING").Attribute("NAME", name).Markup(">");
  } else {
    TValueWriter(key, fNamespace, fReaders, fLeftOut).KeyStart(name, type, declared.fStringKind);
  }
  return prepared;
}

void TValueWriter::Property(const TWrittenProperty& property, const TCIMValue& value) {
  if (!property.fIsPlain || value.GetType() != property.fType)
    return OtherProperty(property, value);
  fXML.Prepared(property.fTag);
  if (!Scalar(property.fName, value, "><VALUE>", "</VALUE></PROPERTY>\n")) fXML.Markup("/>\n");
}

void TValueWriter::TextProperty(const TWrittenProperty& property, std::string_view text) {
  fXML.Prepared(property.fTag).Markup("><VALUE>").Text(text).Markup("</VALUE></PROPERTY>\n");
}

void TValueWriter::ReferenceProperty(const TWrittenProperty& property,
                                     const TPreparedXML& reference) {
  fXML.Prepared(property.fTag).Markup(">").Prepared(reference);
  fXML.Markup("</PROPERTY.REFERENCE>\n");
}

bool TValueWriter::Scalar(const std::string& member, const TCIMValue& value,
                          std::string_view before, std::string_view after) {
  if (const std::string* const text = value.FindString()) {
    fXML.Markup(before).Text(*text).Markup(after);
    return true;
  }
  const TLiteral literal(value);
  if (literal.IsAbsent()) return false;
  if (literal.GetObstacle() != nullptr) {
    LeaveOut(member, literal.GetObstacle());
    return false;
  }
  fXML.Markup(before).Markup(literal.GetText()).Markup(after);
  return true;
}

void TValueWriter::OtherProperty(const TWrittenProperty& property, const TCIMValue& value) {
  const char* const element = PropertyElement(value.GetType());
  const TDeclaredProperty& declared = property.fDeclared;
  fXML.Markup("<").Markup(element);
  // A non-null reference has its class in its path.
  const bool isFixed =
      declared.fFixedSize != 0 && TArraySizes::SizeOf(value) == declared.fFixedSize;
  PropertyAttributes(property.fName, value,
                     {isFixed ? declared.fFixedSize : 0, declared.fStringKind}, value.IsNull());
  if (!CanHold(property.fName, value)) {
    fXML.Markup("/>\n");
    return;
  }
  fXML.Markup(">");
  Element(property.fName, value);
  fXML.Markup("</").Markup(element).Markup(">\n");
}

void TValueWriter::NamespacePath(const std::string& name) {
  fXML.Markup("<LOCALNAMESPACEPATH>");
  std::string_view rest = name;
  for (std::size_t slash = 0; slash != std::string_view::npos; rest.remove_prefix(slash + 1)) {
    slash = rest.find('/');
    fXML.Markup("<NAMESPACE").Attribute("NAME", rest.substr(0, slash)).Markup("/>");
    if (slash == std::string_view::npos) break;
  }
  fXML.Markup("</LOCALNAMESPACEPATH>");
}

void TValueWriter::Key(const TWrittenProperty& property, const TCIMValue& value) {
  if (property.fIsPlain && value.GetType() == property.fType) {
    fXML.Prepared(property.fKey);
    Literal(value);
    fXML.Markup("</KEYVALUE></KEYBINDING>");
  } else {
    KeyBinding(property.fName, value, property.fDeclared.fStringKind);
  }
}

void TValueWriter::TextKey(const TWrittenProperty& property, std::string_view text) {
  fXML.Prepared(property.fKey).Text(text).Markup("</KEYVALUE></KEYBINDING>");
}

void TValueWriter::ReferenceKey(const TWrittenProperty& property, const TPreparedXML& reference) {
  fXML.Prepared(property.fKey).Prepared(reference).Markup("</KEYBINDING>");
}

void TValueWriter::KeyBinding(const std::string& name, const TCIMValue& value,
                              NDescribe::EStringKind kind) {
  if (const TCIMReference* const reference = value.FindReference()) {
    fXML.Markup("<KEYBINDING").Attribute("NAME", name).Markup(">");
    Reference(*reference);
  } else {
    KeyStart(name, value.GetType(), kind);
    Literal(value);
    fXML.Markup("</KEYVALUE>");
  }
  fXML.Markup("</KEYBINDING>");
}

/// Writes what comes before the text of a key.
void TValueWriter::KeyStart(const std::string& name, TCIMType type, NDescribe::EStringKind kind) {
  fXML.Markup("<KEYBINDING").Attribute("NAME", name).Markup(">");
  fXML.Markup("<KEYVALUE").Attribute("VALUETYPE", ValueTypeOf(type));
  if (fReaders == kCurrentReaders) TypeAttribute(type, kind);
  fXML.Markup(">");
}

void TValueWriter::Array(const std::string& member, const TCIMValue& value) {
  fXML.Markup("<VALUE.ARRAY>");
  const std::vector<TCIMValue>& elements = value;
  for (const TCIMValue& element : elements) {
    bool isWritten = false;
    if (element.IsReference()) {
      isWritten = CanHold(member, element);
      if (isWritten) Element(member, element);
    } else {
      isWritten = Scalar(member, element, "<VALUE>", "</VALUE>");
    }
    if (!isWritten) fXML.Markup("<VALUE.NULL/>");
  }
  fXML.Markup("</VALUE.ARRAY>");
}

void TValueWriter::Reference(const TCIMReference& reference) {
  const bool hasKeys = !reference.GetBody()->GetKeyBindings().empty();
  const bool isOwn = IsOwnNamespace(reference);
  const char* const path = hasKeys ? "LOCALINSTANCEPATH" : "LOCALCLASSPATH";
  fXML.Markup("<VALUE.REFERENCE>");
  if (!isOwn) {
    fXML.Markup("<").Markup(path).Markup(">");
    NamespacePath(reference.GetNamespace()->GetName({}));
  }
  ClassOrInstanceName(reference, hasKeys);
  if (!isOwn) fXML.Markup("</").Markup(path).Markup(">");
  fXML.Markup("</VALUE.REFERENCE>");
}

bool TValueWriter::TryReference(const TPlainReference& reference, TPreparedXML& prepared) const {
  constexpr auto text = TCIMType::kCIMTypeString;
  const auto& keys = reference.fKeys;
  const bool isPlain = std::all_of(keys.begin(), keys.end(), [](const TPlainKey& key) {
    return key.fType == text && !key.fValue.fIsNull;
  });
  if (!isPlain || keys.empty() || reference.fNamespace != &fNamespace) return false;
  prepared.fText.clear();
  prepared.fReplaced = 0;
  TXMLWriter xml(prepared);
  TValueWriter values(xml, fNamespace, fReaders, fLeftOut);
  xml.Markup("<VALUE.REFERENCE><INSTANCENAME");
  xml.Attribute("CLASSNAME", reference.fClass->GetName({})).Markup(">");
  for (const TPlainKey& key : keys) {
    values.KeyStart(*key.fName, text, NDescribe::EStringKind::kText);
    xml.Text(key.fValue.fBytes).Markup("</KEYVALUE></KEYBINDING>");
  }
  xml.Markup("</INSTANCENAME></VALUE.REFERENCE>");
  return true;
}

void TValueWriter::ClassOrInstanceName(const TCIMReference& reference, bool hasKeys) {
  if (!hasKeys) {
    fXML.Markup("<CLASSNAME").Attribute("NAME", reference.GetClassName()).Markup("/>");
    return;
  }
  fXML.Markup("<INSTANCENAME").Attribute("CLASSNAME", reference.GetClassName()).Markup(">");
  for (const auto& [name, key] : reference.GetBody()->GetKeyBindings()) KeyBinding(name, key);
  fXML.Markup("</INSTANCENAME>");
}

bool TValueWriter::IsOwnNamespace(const TCIMReference& reference) const {
  const auto ns = reference.GetNamespace();
  return !ns || ns.get() == &fNamespace ||
         NModel::EqualIgnoringCase(ns->GetName({}), fNamespace.GetName({}));
}

}  // namespace NVORNQDX20::NCIMXML
