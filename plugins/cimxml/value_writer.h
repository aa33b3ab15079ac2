// SPDX-License-Identifier: Apache-2.0
/// Values, properties and instance names of one namespace as XML.
#ifndef QDXCIMXML_VALUE_WRITER_H_
#define QDXCIMXML_VALUE_WRITER_H_

#include <qdxcore/interfaces.h>

#include <string>

#include "cim_type.h"
#include "xml_writer.h"

namespace NVORNQDX20::NCIMXML {

class TValueWriter {
 public:
  /// Paths name a namespace only where it is another than `ns`.
  TValueWriter(TXMLWriter& xml, const ICIMNamespace& ns) : fXML(xml), fNamespace(ns) {}

  /// "PROPERTY", "PROPERTY.ARRAY" or "PROPERTY.REFERENCE". Logs and throws kQDXStatusNotSupported
  /// for arrays of references, which CIM does not have.
  static const char* PropertyElement(const std::string& name, TCIMType type);

  /// VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for what is absent.
  void Value(const TCIMValue& value);
  /// The attributes of a property's start tag.
  void PropertyAttributes(const std::string& name, const TCIMValue& value, bool withClass);
  /// A whole property of an instance.
  void Property(const std::string& name, const TCIMValue& value);
  void NamespacePath(const std::string& name);
  void KeyBinding(const std::string& name, const TCIMValue& value);

 private:
  void Array(const TCIMValue& value);
  void Reference(const TCIMReference& reference);
  void ClassOrInstanceName(const TCIMReference& reference, bool hasKeys);
  bool IsOwnNamespace(const TCIMReference& reference) const;

  TXMLWriter& fXML;
  const ICIMNamespace& fNamespace;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // QDXCIMXML_VALUE_WRITER_H_
