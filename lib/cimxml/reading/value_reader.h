// SPDX-License-Identifier: Apache-2.0
/// Reads values.
#ifndef LIB_CIMXML_READING_VALUE_READER_H_
#define LIB_CIMXML_READING_VALUE_READER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/value.h>

#include <string>

#include "namespace_reader.h"
#include "xml/cim_type.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// Returns the type in TYPE; a missing or unknown one is an error.
TCIMType TypeAttribute(const TElement& element);
/// Returns the type of a PROPERTY, PROPERTY.ARRAY or PROPERTY.REFERENCE.
TCIMType TypeOfProperty(const TElement& property);
unsigned int ArraySizeOf(const TElement& element);

/// Reads the value among the children of the element; null of that type if there is none.
TCIMValue ReadValue(TNamespaceReader& ns, TCIMType type, const TElement& holder);
/// Reads the value of a property; a null reference gets its class if the element names one.
TCIMValue ReadPropertyValue(TNamespaceReader& ns, const TElement& property);
/// Reads a KEYVALUE or VALUE.REFERENCE; never null.
TCIMValue ReadKeyValue(TNamespaceReader& ns, TCIMType type, const TElement& value);

/// Returns the declaration of a property; a missing one is an error.
boost::shared_ptr<const ICIMPropertyDecl> DeclOf(const ICIMClass& cimClass, const std::string& name,
                                                 const TElement& usedBy);
/// Returns the only key of a class, for a binding without a name.
std::string OnlyKeyOf(const ICIMClass& cimClass, const TElement& usedBy);

/// Calls `work`; turns an exception of the repository into an error of the element.
template <typename TWork>
auto AsPartOf(const TElement& element, const std::string& what, TWork&& work) {
  try {
    return work();
  } catch (const TExplainedException& e) {
    element.Refuse(what + ": " + e.GetReason());
  } catch (const TQDXException& e) {
    element.Refuse(what + ": " + e.what());
  }
}

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_VALUE_READER_H_
