// SPDX-License-Identifier: Apache-2.0
#include "value_reader.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxmodel/classes.h>

#include <charconv>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "document.h"
#include "object_path.h"
#include "xml/literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

/// Formats a place such as: line 12, PROPERTY "InstallDate".
std::string PlaceOf(const TElement& value, const TElement& holder) {
  const std::string* const name = holder.Find("NAME");
  return "line " + std::to_string(value.fPosition.fLine) +
         (name == nullptr ? "" : ", " + std::string(holder.fName) + " " + Shown(*name));
}

TCIMValue ReadText(TNamespaceReader& ns, TCIMType type, const TElement& element,
                   const TElement& holder) {
  std::optional<TCIMValue> value = ReadLiteral(type, element.fText);
  if (!value || !element.fChildren.empty()) {
    element.Refuse(Shown(element.fText) + " is no " + std::string(KeywordOf(type)));
  }
  constexpr std::size_t kBody = 48;  // with the allocator's overhead
  ns.GetState().AddContents(sizeof(TCIMValue) + kBody + element.fText.size(), element);
  if (value->IsNull()) ns.GetState().fUnheldDateTimes.Add(PlaceOf(element, holder));
  return std::move(*value);
}

TCIMValue ReadArray(TNamespaceReader& ns, TCIMType type, unsigned int size, const TElement& array,
                    const TElement& holder) {
  const TCIMType elementType = ElementType(type);
  std::vector<TCIMValue> elements;
  elements.reserve(array.fChildren.size());
  for (const TElement& child : array.fChildren) {
    if (child.Is("VALUE.NULL")) {
      ns.GetState().AddContents(sizeof(TCIMValue), child);
      elements.emplace_back(elementType, 0U);
    } else if (child.Is("VALUE")) {
      elements.push_back(ReadText(ns, elementType, child, holder));
    } else {
      array.RefuseChild(child);
    }
  }
  return TCIMValue(elementType, size, elements);
}

TCIMValue ReadReference(TNamespaceReader& ns, const TElement& element) {
  const TElement& name = NameOf(element);
  TNamespaceReader& target = ns.GetDocument().NamespaceOf(element, ns);
  constexpr std::size_t kReferenceBytes = 256;
  ns.GetState().AddHeld(kReferenceBytes, element);
  TCIMReference reference(target.GetNamespace(), {});
  const boost::shared_ptr<ICIMClass> cimClass = target.ClassNamed(ClassNameOf(name), name).fClass;
  reference.SetClass(cimClass);
  for (const TKeyBinding& binding : KeyBindingsOf(name)) {
    const std::string& key = binding.fName.empty() ? OnlyKeyOf(*cimClass, name) : binding.fName;
    const auto decl = DeclOf(*cimClass, key, *binding.fValue);
    reference.AddKeyValue(decl->GetName(), ReadKeyValue(target, decl->GetType(), *binding.fValue));
  }
  return TCIMValue(reference);
}

const TElement* FindValue(const TElement& holder) {
  for (const TElement& child : holder.fChildren) {
    if (!child.Is("QUALIFIER") && !child.Is("SCOPE")) return &child;
  }
  return nullptr;
}

}  // namespace

TCIMType TypeAttribute(const TElement& element) {
  const std::string& keyword = element.Get("TYPE");
  const TCIMType type = TypeOf(keyword);
  if (type == TCIMType::kCIMTypeNone) element.Refuse(Shown(keyword) + " is no type");
  return type;
}

TCIMType TypeOfProperty(const TElement& property) {
  if (property.Is("PROPERTY.REFERENCE")) return TCIMType::kCIMTypeReference;
  const TCIMType type = TypeAttribute(property);
  return property.Is("PROPERTY.ARRAY") ? ArrayOf(type) : type;
}

unsigned int ArraySizeOf(const TElement& element) {
  const std::string* const text = element.Find("ARRAYSIZE");
  if (text == nullptr) return 0;
  unsigned int size = 0;
  const char* const end = text->data() + text->size();
  const auto result = std::from_chars(text->data(), end, size);
  if (result.ec != std::errc() || result.ptr != end) {
    element.Refuse(Shown(*text) + " is no size of an array");
  }
  return size;
}

TCIMValue ReadValue(TNamespaceReader& ns, TCIMType type, const TElement& holder) {
  const unsigned int size = ArraySizeOf(holder);
  const TElement* const value = FindValue(holder);
  if (value == nullptr) return IsArray(type) ? TCIMValue(type, size) : TCIMValue(type, 0);
  const bool isReference = type == TCIMType::kCIMTypeReference;
  const char* const expected =
      IsArray(type) ? "VALUE.ARRAY" : (isReference ? "VALUE.REFERENCE" : "VALUE");
  if (!value->Is(expected)) holder.RefuseChild(*value);
  if (isReference) return ReadReference(ns, *value);
  return IsArray(type) ? ReadArray(ns, type, size, *value, holder)
                       : ReadText(ns, type, *value, holder);
}

TCIMValue ReadPropertyValue(TNamespaceReader& ns, const TElement& property) {
  TCIMValue value = ReadValue(ns, TypeOfProperty(property), property);
  const std::string* const className = property.Find("REFERENCECLASS");
  if (value.IsReference() && value.IsNull() && className != nullptr) {
    value.SetReferencedClass(ns.ClassNamed(*className, property).fClass);
  }
  return value;
}

TCIMValue ReadKeyValue(TNamespaceReader& ns, TCIMType type, const TElement& value) {
  const bool isReference = type == TCIMType::kCIMTypeReference;
  if (value.Is("VALUE.REFERENCE") != isReference) {
    value.Refuse("the key is declared as " + std::string(KeywordOf(type)));
  }
  if (isReference) return ReadReference(ns, value);
  TCIMValue key = ReadText(ns, type, value, value);
  if (key.IsNull()) value.Refuse("a key cannot be null");
  return key;
}

boost::shared_ptr<const ICIMPropertyDecl> DeclOf(const ICIMClass& cimClass, const std::string& name,
                                                 const TElement& usedBy) {
  try {
    return cimClass.GetPropertyDecl(name, {});
  } catch (const TQDXException&) {
    usedBy.Refuse("class " + Shown(cimClass.GetName({})) + " has no property " + Shown(name));
  }
}

std::string OnlyKeyOf(const ICIMClass& cimClass, const TElement& usedBy) {
  std::vector<std::string> keys;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
    if (isKey) keys.push_back(decl->GetName());
  }
  if (keys.size() != 1) usedBy.Refuse("a key without name");
  return keys.front();
}

}  // namespace NVORNQDX20::NCIMXML
