// SPDX-License-Identifier: Apache-2.0
/// Reads values.
#ifndef LIB_CIMXML_READING_VALUE_READER_H_
#define LIB_CIMXML_READING_VALUE_READER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>
#include <qdxcore/value.h>
#include <qdxdescribe/string_kind.h>

#include <string>
#include <vector>

#include "space.h"
#include "xml/cim_type.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// Names the holder of a value for a message: <PROPERTY> "p".
std::string NameOfHolder(const TElement& holder);

/// Returns the type in TYPE; a missing or unknown one is an error.
TCIMType TypeAttribute(const TElement& element);
/// Returns the type of any kind of PROPERTY.
TCIMType TypeOfProperty(const TElement& property);
/// Returns the attribute EmbeddedObject of a property, which some programs write in capital
/// letters; null if there is none.
const std::string* FindEmbeddedObject(const TElement& property);
/// Returns what the strings of a property, parameter or method are; kText for other types.
NDescribe::EStringKind StringKindOf(const TElement& declaration);
/// Returns the type of a KEYVALUE or VALUE.REFERENCE; a number without type gets the largest one.
TCIMType TypeOfKey(const TElement& value);

/// Returns the first child that can be a value; null if there is none.
const TElement* FindValueOf(const TElement& holder);

/// Reads the value among the children of the element; null of that type if there is none.
TCIMValue ReadValue(TSpace& space, TCIMType type, const TElement& holder);
/// Returns the VALUE of an element that has a scalar and no reference; null if it has none.
const TElement* FindScalar(TSpace& space, const TElement& holder);
/// Counts the memory for the text of a VALUE or KEYVALUE. Returns whether it is null because it is
/// empty, and warns of that; a string never is.
bool IsNullText(TSpace& space, TCIMType type, const TElement& element, const TElement& holder);
[[noreturn]] void RefuseText(TCIMType type, const TElement& element);

/// Reads the value of a property of TypeOfProperty(); a null reference gets its class if the
/// element names one.
TCIMValue ReadPropertyValue(TSpace& space, TCIMType type, const TElement& property);
/// Reads a KEYVALUE or VALUE.REFERENCE; never null.
TCIMValue ReadKeyValue(TSpace& space, TCIMType type, const TElement& value);

/// Returns the VALUE of each well-formed date-time that was read as null.
std::vector<TUnheldDateTime> FindUnheldDateTimes(const TCIMValue& value, const TElement& holder);
/// Formats a place such as: line 12, PROPERTY "InstallDate".
std::string PlaceOf(const TElement& value, const TElement& holder);

/// Returns the declaration of a property; null if the class has none.
boost::shared_ptr<const ICIMPropertyDecl> FindDecl(const ICIMClass& cimClass,
                                                   const std::string& name);
/// Returns the declaration of a property; a missing one is an error.
boost::shared_ptr<const ICIMPropertyDecl> DeclOf(const ICIMClass& cimClass, const std::string& name,
                                                 const TElement& usedBy);
/// Returns the only key of a class, for a binding without a name.
std::string OnlyKeyOf(const ICIMClass& cimClass, const TElement& usedBy);

/// Calls `work`; turns an exception of the repository into an error of the element.
template <typename TWork>
auto AsPartOf(const TElement& element, TWork&& work) {
  try {
    return work();
  } catch (const TExplainedException& e) {
    element.Refuse(e.GetReason());
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() == kQDXStatusOutOfMemory) throw;
    element.Refuse(e.what());
  }
}

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_VALUE_READER_H_
