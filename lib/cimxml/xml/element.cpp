// SPDX-License-Identifier: Apache-2.0
#include "element.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace NVORNQDX20::NCIMXML {
namespace {

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
    "ARRAYSIZE",      "ASSOCIATION",    "CLASS",      "CLASSNAME",    "CODE",      "DESCRIPTION",
    "EMBEDDEDOBJECT", "EmbeddedObject", "INDICATION", "ISARRAY",      "METHOD",    "NAME",
    "OVERRIDABLE",    "PARAMETER",      "PROPAGATED", "PROPERTY",     "REFERENCE", "REFERENCECLASS",
    "SUPERCLASS",     "TOINSTANCE",     "TOSUBCLASS", "TRANSLATABLE", "TYPE",      "VALUETYPE"};

/// The memory that elements keep for the next object: no object can make the pool large.
constexpr std::size_t kUsualAttributes = 4;
constexpr std::size_t kUsualText = 64;
constexpr std::size_t kLargestInPool = std::size_t{16} << 10;
constexpr std::size_t kLargestCopy = std::size_t{64} << 20;

void TrimText(std::string& text) {
  text.clear();
  if (text.capacity() > kUsualText) text.shrink_to_fit();
}

/// Finds names by a hash that is computed when the library is compiled.
template <std::size_t kCount>
class TNameTable {
 public:
  explicit constexpr TNameTable(const std::string_view (&names)[kCount]) : fNames(names) {
    static_assert(kCount < kSlots / 2);
    for (std::size_t i = 0; i < kCount; ++i) {
      std::size_t slot = SlotOf(names[i]);
      while (fSlots[slot] != 0) slot = (slot + 1) % kSlots;
      fSlots[slot] = static_cast<unsigned char>(i + 1);
    }
  }

  std::string_view Find(std::string_view name) const {
    if (name.empty()) return {};
    for (std::size_t slot = SlotOf(name); fSlots[slot] != 0; slot = (slot + 1) % kSlots) {
      const std::string_view& found = fNames[fSlots[slot] - 1U];
      if (found == name) return found;
    }
    return {};
  }

 private:
  static constexpr std::size_t kSlots = 256;
  static constexpr std::size_t SlotOf(std::string_view name) {
    const auto at = [name](std::size_t i) { return static_cast<unsigned char>(name[i]); };
    return (name.size() * 37 + at(0) * 5U + at(name.size() / 2) * 11U + at(name.size() - 1)) %
           kSlots;
  }

  const std::string_view* fNames;     // a reference to the array makes g++ 12 warn of its bounds
  unsigned char fSlots[kSlots] = {};  // 0 for none, else the number of the name from 1
};

constexpr TNameTable kElementTable(kElements);
constexpr TNameTable kAttributeTable(kAttributes);

}  // namespace

std::string_view KnownElement(std::string_view name) { return kElementTable.Find(name); }

std::string_view KnownAttribute(std::string_view name) { return kAttributeTable.Find(name); }

void TElement::RefuseLack(std::string_view attribute) const {
  Refuse("<" + std::string(fName) + "> has no " + std::string(attribute));
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

void TAttributes::Trim() {
  fCount = 0;
  if (fAll.size() > kUsualAttributes) fAll.resize(kUsualAttributes);
  for (TAttribute& each : fAll) {
    if (each.fValue.capacity() > kUsualText) TrimText(each.fValue);
  }
}

TElement& TElementPool::AddChild(TElement& parent) {
  if (fElements.empty()) return parent.fChildren.emplace_back();
  parent.fChildren.splice(parent.fChildren.end(), fElements, fElements.begin());
  TElement& child = parent.fChildren.back();
  child.fAttributes.Trim();
  TrimText(child.fText);
  fElements.splice(fElements.begin(), child.fChildren);
  return child;
}

void TElementPool::Empty(TElement& root, std::size_t bytes) {
  if (bytes > kLargestInPool) {
    root = TElement();
  } else {
    root.fAttributes.Trim();
    TrimText(root.fText);
    fElements.splice(fElements.begin(), root.fChildren);
  }
}

TElement Compact(TElement&& object, std::size_t bytes) {
  // Elements of the pool can have a few times the memory that they need. Of a large object, only a
  // small part comes from there, and a copy would need as much again for a moment.
  if (bytes > kLargestCopy) return std::move(object);
  return TElement(std::as_const(object));
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
