// SPDX-License-Identifier: Apache-2.0
/// Values from their elements.
#ifndef LIB_CIMXML_READING_VALUE_READER_H_
#define LIB_CIMXML_READING_VALUE_READER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/value.h>

#include <string>

#include "namespace_reader.h"
#include "xml/cim_type.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// What TYPE says; a missing or unknown one is a defect.
TCIMType TypeAttribute(const TElement& element);
/// Of PROPERTY, PROPERTY.ARRAY or PROPERTY.REFERENCE.
TCIMType TypeOfProperty(const TElement& property);
unsigned int ArraySizeOf(const TElement& element);

/// The value that stands in the element beside qualifiers and scopes; null of that type if there is
/// none.
TCIMValue ReadValue(TNamespaceReader& ns, TCIMType type, const TElement& holder);
/// The value of a property, and for a null reference its class if the element names one.
TCIMValue ReadPropertyValue(TNamespaceReader& ns, const TElement& property);
/// KEYVALUE or VALUE.REFERENCE; never null.
TCIMValue ReadKeyValue(TNamespaceReader& ns, TCIMType type, const TElement& value);

/// The declaration of a property that the class must have.
boost::shared_ptr<const ICIMPropertyDecl> DeclOf(const ICIMClass& cimClass, const std::string& name,
                                                 const TElement& use);
/// The key that a binding without name means: the only one of its class.
std::string OnlyKeyOf(const ICIMClass& cimClass, const TElement& use);

/// Calls `work`; a failure of the repository becomes a defect of the element.
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
