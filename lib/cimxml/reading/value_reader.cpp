// SPDX-License-Identifier: Apache-2.0
#include "value_reader.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxmodel/classes.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "object_path.h"
#include "xml/literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

TCIMValue ReadText(TSpace& space, TCIMType type, const TElement& element, const TElement& holder) {
  if (IsNullText(space, type, element, holder)) return TCIMValue(type, 0);
  std::optional<TCIMValue> value = ReadLiteral(type, element.fText);
  if (!value || !element.fChildren.empty()) RefuseText(type, element);
  // A date-time may have wildcards; another one that is null has fields that are out of range.
  const bool isBad = type == TCIMType::kCIMTypeDateTime && value->IsNull() &&
                     element.fText.find('*') == std::string::npos;
  if (isBad) {
    space.GetState().fDefects.Add(element.fPosition, Shown(element.fText) + " of " +
                                                         NameOfHolder(holder) + " is no date-time");
  }
  return std::move(*value);
}

void Note(TSpace& space, const TSpace& target, const TCIMReference& reference,
          const TElement& element) {
  TDefects& defects = space.GetState().fDefects;
  if (!defects.AreWanted()) return;
  const TElement* const host = FindHost(element);
  TNotedReference noted{reference, target.GetNamespace()->GetName({}),
                        host == nullptr ? "" : host->fText, element.fPosition,
                        defects.CurrentObject()};
  space.GetMemory().AddHeld(
      sizeof noted + noted.fNamespace.size() + noted.fHost.size() + noted.fObject.size(), element);
  defects.NoteReference(std::move(noted));
}

/// Returns a class of the same name that has the keys of a reference, for a reference by other
/// properties than those of the class. It is in a namespace of its own, so that no one else finds
/// it.
const TTarget& StandInFor(TSpace& space, const ICIMClass& declared,
                          const std::vector<TKeyBinding>& bindings) {
  const std::string& className = declared.GetName({});
  std::vector<std::pair<std::string, TCIMType>> keys;
  std::string signature = className;
  for (const TKeyBinding& binding : bindings) {
    const auto decl = FindDecl(declared, *binding.fName);
    keys.emplace_back(*binding.fName, decl ? decl->GetType() : TypeOfKey(*binding.fValue));
    // A key that is a reference could own the namespace that owns it.
    if (keys.back().second == TCIMType::kCIMTypeReference) {
      binding.fValue->Refuse("class " + Shown(className) + " has no property " +
                             Shown(*binding.fName));
    }
    signature += '.' + *binding.fName + ':' + std::string(KeywordOf(keys.back().second));
  }
  TTarget& standIn = space.StandIn(signature);
  if (standIn.fClass) return standIn;
  constexpr std::size_t kStandInBytes = 4096;
  constexpr std::size_t kKeyBytes = 1024;
  space.GetMemory().AddHeld(kStandInBytes + keys.size() * kKeyBytes + signature.size(),
                            *bindings.front().fValue);
  const auto ns = MakeRepositoryNamespace(space.GetNamespace()->GetName({}));
  const auto made = ns->CreateClass(className, nullptr, {});
  for (const auto& [key, type] : keys) {
    if (!FindDecl(*made, key)) made->CreatePropertyDecl(key, TCIMValue(type, 0), {})->Commit();
  }
  made->Commit({});
  standIn = {ns, made};
  return standIn;
}

/// Returns the class that has the keys of a reference, and its namespace.
TTarget TargetOf(TSpace& space, const TElement& name, const std::vector<TKeyBinding>& bindings) {
  const auto declared = space.GetClass(ClassNameOf(name), name).fClass;
  const bool hasAll = std::all_of(bindings.begin(), bindings.end(), [&](const auto& binding) {
    return !binding.HasName() || FindDecl(*declared, *binding.fName);
  });
  if (hasAll) return {space.GetNamespace(), declared};
  return StandInFor(space, *declared, bindings);
}

TCIMValue ReadReference(TSpace& space, const TElement& element) {
  const TElement& name = NameOf(element);
  TSpace& target = space.GetSpaces().SpaceOf(element, space);
  const TElement* const host = FindHost(element);
  if (host != nullptr) space.GetState().fHosts.AddOfReference(*host);
  constexpr std::size_t kReferenceBytes = 256;
  space.GetMemory().AddHeld(kReferenceBytes, element);
  const std::vector<TKeyBinding> bindings = KeyBindingsOf(name);
  const auto [ns, cimClass] = TargetOf(target, name, bindings);
  TCIMReference reference(ns, {});
  reference.SetClass(cimClass);
  for (const TKeyBinding& binding : bindings) {
    const std::string& key = binding.HasName() ? *binding.fName : OnlyKeyOf(*cimClass, name);
    const auto decl = DeclOf(*cimClass, key, *binding.fValue);
    reference.AddKeyValue(decl->GetName(), ReadKeyValue(target, decl->GetType(), *binding.fValue));
  }
  if (name.Is("INSTANCENAME")) Note(space, target, reference, element);
  return TCIMValue(reference);
}

TCIMValue ReadArray(TSpace& space, TCIMType type, unsigned int size, const TElement& array,
                    const TElement& holder) {
  const TCIMType elementType = ElementType(type);
  std::vector<TCIMValue> elements;
  elements.reserve(array.fChildren.size());
  for (const TElement& child : array.fChildren) {
    if (child.Is("VALUE.NULL")) {
      space.GetMemory().AddContents(sizeof(TCIMValue), child);
      elements.emplace_back(elementType, 0U);
    } else if (elementType == TCIMType::kCIMTypeReference && child.Is("VALUE.REFERENCE")) {
      elements.push_back(ReadReference(space, child));
    } else if (elementType != TCIMType::kCIMTypeReference && child.Is("VALUE")) {
      elements.push_back(ReadText(space, elementType, child, holder));
    } else {
      array.RefuseChild(child);
    }
  }
  return TCIMValue(elementType, size, elements);
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

void WarnOfOtherValues(TSpace& space, const TElement& holder, const TElement& first) {
  for (const TElement& child : holder.fChildren) {
    const bool isOther = &child != &first && !child.Is("QUALIFIER") && !child.Is("SCOPE");
    if (!isOther) continue;
    space.GetState().Warn(child, "a second value of " + NameOfHolder(holder) + " is ignored");
  }
}

/// Returns the first child that can be a value, which must have this name; null if there is none.
/// Warns of others.
const TElement* FindOnlyValue(TSpace& space, const TElement& holder, std::string_view name) {
  const TElement* const value = FindValueOf(holder);
  if (value == nullptr) return nullptr;
  if (holder.fChildren.size() > 1) WarnOfOtherValues(space, holder, *value);
  if (!value->Is(name)) holder.RefuseChild(*value);
  return value;
}

}  // namespace

std::string NameOfHolder(const TElement& holder) {
  const std::string* const name = holder.Find("NAME");
  return "<" + std::string(holder.fName) + ">" + (name == nullptr ? "" : " " + Shown(*name));
}

TCIMType TypeAttribute(const TElement& element) {
  const std::string& keyword = element.Get("TYPE");
  const TCIMType type = TypeOf(keyword);
  if (type == TCIMType::kCIMTypeNone) element.Refuse(Shown(keyword) + " is no type");
  return type;
}

TCIMType TypeOfProperty(const TElement& property) {
  if (property.Is("PROPERTY.REFERENCE")) return TCIMType::kCIMTypeReference;
  if (property.Is("PROPERTY.REFARRAY")) return ArrayOf(TCIMType::kCIMTypeReference);
  const TCIMType type = TypeAttribute(property);
  return property.Is("PROPERTY.ARRAY") ? ArrayOf(type) : type;
}

const std::string* FindEmbeddedObject(const TElement& property) {
  constexpr std::size_t kUsual = 2;  // NAME and TYPE
  if (property.fAttributes.size() <= kUsual) return nullptr;
  const std::string* const found = property.Find("EmbeddedObject");
  return found != nullptr ? found : property.Find("EMBEDDEDOBJECT");
}

NDescribe::EStringKind StringKindOf(const TElement& declaration) {
  using NDescribe::EStringKind;
  const std::string* const type = declaration.Find("TYPE");
  if (type == nullptr) return EStringKind::kText;
  if (*type == KeywordOf(TCIMType::kCIMTypeChar)) return EStringKind::kCharacter;
  const std::string* const embedded = FindEmbeddedObject(declaration);
  if (embedded == nullptr || *type != KeywordOf(TCIMType::kCIMTypeString)) {
    return EStringKind::kText;
  }
  const EStringKind kind = NDescribe::StringKindOf(*embedded);
  return kind == EStringKind::kCharacter ? EStringKind::kText : kind;
}

TCIMType TypeOfKey(const TElement& value) {
  if (value.Is("VALUE.REFERENCE")) return TCIMType::kCIMTypeReference;
  if (value.Find("TYPE") != nullptr) return TypeAttribute(value);
  const std::string* const valueType = value.Find("VALUETYPE");
  if (valueType == nullptr || *valueType == "string") return TCIMType::kCIMTypeString;
  if (*valueType == "boolean") return TCIMType::kCIMTypeBoolean;
  for (const TCIMType type :
       {TCIMType::kCIMTypeUint64, TCIMType::kCIMTypeSint64, TCIMType::kCIMTypeReal64}) {
    if (ReadLiteral(type, value.fText)) return type;
  }
  value.Refuse(Shown(value.fText) + " is no number");
}

const TElement* FindValueOf(const TElement& holder) {
  for (const TElement& child : holder.fChildren) {
    if (!child.Is("QUALIFIER") && !child.Is("SCOPE")) return &child;
  }
  return nullptr;
}

TCIMValue ReadValue(TSpace& space, TCIMType type, const TElement& holder) {
  const bool isReference = ElementType(type) == TCIMType::kCIMTypeReference;
  if (!isReference && !IsArray(type)) {
    const TElement* const scalar = FindScalar(space, holder);
    return scalar == nullptr ? TCIMValue(type, 0) : ReadText(space, type, *scalar, holder);
  }
  const unsigned int size = ArraySizeOf(holder);
  const char* const array = isReference ? "VALUE.REFARRAY" : "VALUE.ARRAY";
  const TElement* const value =
      FindOnlyValue(space, holder, IsArray(type) ? array : "VALUE.REFERENCE");
  if (value == nullptr) return IsArray(type) ? TCIMValue(type, size) : TCIMValue(type, 0);
  return IsArray(type) ? ReadArray(space, type, size, *value, holder)
                       : ReadReference(space, *value);
}

const TElement* FindScalar(TSpace& space, const TElement& holder) {
  (void)ArraySizeOf(holder);  // for its faults
  return FindOnlyValue(space, holder, "VALUE");
}

bool IsNullText(TSpace& space, TCIMType type, const TElement& element, const TElement& holder) {
  constexpr std::size_t kBody = 48;  // with the allocator's overhead
  space.GetMemory().AddContents(sizeof(TCIMValue) + kBody + element.fText.size(), element);
  const bool isNull =
      type != TCIMType::kCIMTypeString && IsBlank(element.fText) && element.fChildren.empty();
  if (isNull) {
    space.GetState().Warn(element, "an empty value of " + NameOfHolder(holder) + " is no " +
                                       std::string(KeywordOf(type)) + "; it is read as null");
  }
  return isNull;
}

void RefuseText(TCIMType type, const TElement& element) {
  element.Refuse(Shown(element.fText) + " is no " + std::string(KeywordOf(type)));
}

TCIMValue ReadPropertyValue(TSpace& space, TCIMType type, const TElement& property) {
  TCIMValue value = ReadValue(space, type, property);
  const std::string* const className = property.Find("REFERENCECLASS");
  if (value.IsReference() && value.IsNull() && className != nullptr) {
    value.SetReferencedClass(space.GetClass(*className, property).fClass);
  }
  return value;
}

TCIMValue ReadKeyValue(TSpace& space, TCIMType type, const TElement& value) {
  const bool isReference = type == TCIMType::kCIMTypeReference;
  if (value.Is("VALUE.REFERENCE") != isReference) {
    value.Refuse("the key is declared as " + std::string(KeywordOf(type)));
  }
  if (isReference) return ReadReference(space, value);
  TCIMValue key = ReadText(space, type, value, value);
  if (key.IsNull()) value.Refuse("a key cannot be null");
  return key;
}

std::vector<TUnheldDateTime> FindUnheldDateTimes(const TCIMValue& value, const TElement& holder) {
  std::vector<TUnheldDateTime> unheld;
  const bool isTime = ElementType(value.GetType()) == TCIMType::kCIMTypeDateTime;
  const TElement* const given = isTime ? FindValueOf(holder) : nullptr;
  if (given == nullptr || value.IsArray() == value.IsNull()) return unheld;
  if (!value.IsArray()) {
    if (!IsBlank(given->fText)) unheld.push_back({given, std::nullopt});
    return unheld;
  }
  const std::vector<TCIMValue>& elements = value;
  std::size_t index = 0;
  for (const TElement& child : given->fChildren) {
    if (elements[index].IsNull() && !IsBlank(child.fText)) unheld.push_back({&child, index});
    ++index;
  }
  return unheld;
}

std::string PlaceOf(const TElement& value, const TElement& holder) {
  const std::string* const name = holder.Find("NAME");
  return "line " + std::to_string(value.fPosition.fLine) +
         (name == nullptr ? "" : ", " + std::string(holder.fName) + " " + Shown(*name));
}

boost::shared_ptr<const ICIMPropertyDecl> FindDecl(const ICIMClass& cimClass,
                                                   const std::string& name) {
  try {
    return cimClass.GetPropertyDecl(name, {});
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() != kQDXStatusNotFound) throw;
    return nullptr;
  }
}

boost::shared_ptr<const ICIMPropertyDecl> DeclOf(const ICIMClass& cimClass, const std::string& name,
                                                 const TElement& usedBy) {
  auto decl = FindDecl(cimClass, name);
  if (!decl) {
    usedBy.Refuse("class " + Shown(cimClass.GetName({})) + " has no property " + Shown(name));
  }
  return decl;
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
