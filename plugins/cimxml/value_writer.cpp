// SPDX-License-Identifier: Apache-2.0
#include "value_writer.h"

#include <qdxcore/logger.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <string_view>
#include <utility>
#include <vector>

#include "literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

std::string_view ValueTypeOf(TCIMType type) {
  if (type == TCIMType::kCIMTypeBoolean) return "boolean";
  const bool isText = type == TCIMType::kCIMTypeString || type == TCIMType::kCIMTypeDateTime;
  return isText ? "string" : "numeric";
}

bool HasKeys(const TCIMReference& reference) {
  bool hasKeys = false;
  reference.EnumerateKeyBindings([&](const std::pair<std::string, TCIMValue>&) {
    hasKeys = true;
    return false;
  });
  return hasKeys;
}

}  // namespace

const char* TValueWriter::PropertyElement(const std::string& name, TCIMType type) {
  if (type == TCIMType::kCIMTypeReference) return "PROPERTY.REFERENCE";
  if (type == ArrayOf(TCIMType::kCIMTypeReference)) {
    LogErrorAndThrow(kQDXStatusNotSupported,
                     {"cimxml: property ", name, " is an array of references"});
  }
  return IsArray(type) ? "PROPERTY.ARRAY" : "PROPERTY";
}

void TValueWriter::Value(const TCIMValue& value) {
  if (IsAbsent(value)) return;
  if (value.IsArray()) {
    Array(value);
  } else if (value.IsReference()) {
    Reference(value);
  } else {
    fXML.Markup("<VALUE>").Text(WriteLiteral(value)).Markup("</VALUE>");
  }
}

void TValueWriter::PropertyAttributes(const std::string& name, const TCIMValue& value,
                                      bool withClass) {
  fXML.Attribute("NAME", name);
  if (!value.IsReference()) fXML.Attribute("TYPE", KeywordOf(value.GetType()));
  if (value.IsArray() && value.GetMaxArraySize() != 0) {
    fXML.Attribute("ARRAYSIZE", std::to_string(value.GetMaxArraySize()));
  }
  const auto referenced = withClass ? value.GetReferencedClass() : nullptr;
  if (referenced) fXML.Attribute("REFERENCECLASS", referenced->GetName({}));
}

void TValueWriter::Property(const std::string& name, const TCIMValue& value) {
  const char* const element = PropertyElement(name, value.GetType());
  fXML.Markup("<").Markup(element);
  // A reference names its class itself.
  PropertyAttributes(name, value, value.IsNull());
  if (IsAbsent(value)) {
    fXML.Markup("/>\n");
    return;
  }
  fXML.Markup(">");
  Value(value);
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

void TValueWriter::KeyBinding(const std::string& name, const TCIMValue& value) {
  if (IsAbsent(value)) {
    LogErrorAndThrow(kQDXStatusValueIsNULL, {"cimxml: key ", name, " is null"});
  }
  fXML.Markup("<KEYBINDING").Attribute("NAME", name).Markup(">");
  if (value.IsReference()) {
    Reference(value);
  } else {
    const TCIMType type = value.GetType();
    fXML.Markup("<KEYVALUE").Attribute("VALUETYPE", ValueTypeOf(type));
    fXML.Attribute("TYPE", KeywordOf(type)).Markup(">");
    fXML.Text(WriteLiteral(value)).Markup("</KEYVALUE>");
  }
  fXML.Markup("</KEYBINDING>");
}

void TValueWriter::Array(const TCIMValue& value) {
  fXML.Markup("<VALUE.ARRAY>");
  const std::vector<TCIMValue>& elements = value;
  for (const TCIMValue& element : elements) {
    if (IsAbsent(element)) {
      fXML.Markup("<VALUE.NULL/>");
    } else {
      Value(element);
    }
  }
  fXML.Markup("</VALUE.ARRAY>");
}

void TValueWriter::Reference(const TCIMReference& reference) {
  const bool hasKeys = HasKeys(reference);
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

void TValueWriter::ClassOrInstanceName(const TCIMReference& reference, bool hasKeys) {
  if (!hasKeys) {
    fXML.Markup("<CLASSNAME").Attribute("NAME", reference.GetClassName()).Markup("/>");
    return;
  }
  fXML.Markup("<INSTANCENAME").Attribute("CLASSNAME", reference.GetClassName()).Markup(">");
  reference.EnumerateKeyBindings([this](const std::pair<std::string, TCIMValue>& binding) {
    KeyBinding(binding.first, binding.second);
    return true;
  });
  fXML.Markup("</INSTANCENAME>");
}

bool TValueWriter::IsOwnNamespace(const TCIMReference& reference) const {
  const auto ns = reference.GetNamespace();
  return !ns || ns.get() == &fNamespace || ns->GetName({}) == fNamespace.GetName({});
}

}  // namespace NVORNQDX20::NCIMXML
