// SPDX-License-Identifier: Apache-2.0
/// Values, properties and instance names of one namespace as XML.
#ifndef LIB_CIMXML_WRITING_VALUE_WRITER_H_
#define LIB_CIMXML_WRITING_VALUE_WRITER_H_

#include <qdxcore/interfaces.h>

#include <string>

#include "xml/cim_type.h"
#include "xml/counted_warning.h"
#include "xml/xml_writer.h"

namespace NVORNQDX20::NCIMXML {

/// A value that CIM-XML cannot hold becomes null, and is added to `leftOut`.
class TValueWriter {
 public:
  /// Paths name a namespace only where it is another than `ns`.
  TValueWriter(TXMLWriter& xml, const ICIMNamespace& ns, TCountedWarning& leftOut)
      : fXML(xml), fNamespace(ns), fLeftOut(leftOut) {}

  /// "PROPERTY", "PROPERTY.ARRAY" or "PROPERTY.REFERENCE".
  static const char* PropertyElement(TCIMType type);
  /// Why no instance name can have the key; null if one can.
  static const char* ObstacleToKey(const TCIMValue& value);

  /// The class whose members follow, for what is said of them.
  void BeginClass(const std::string& name) { fClassName = name; }
  void LeaveOut(const std::string& member, const char* reason);

  /// VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for what is absent. `member` has the value.
  void Value(const std::string& member, const TCIMValue& value);
  /// The attributes of a property's start tag.
  void PropertyAttributes(const std::string& name, const TCIMValue& value, bool withClass);
  /// A whole property of an instance.
  void Property(const std::string& name, const TCIMValue& value);
  void NamespacePath(const std::string& name);
  /// There must be no obstacle to the key.
  void KeyBinding(const std::string& name, const TCIMValue& value);

 private:
  /// Whether there is an element for it; what has none though it is not absent is left out.
  bool CanHold(const std::string& member, const TCIMValue& value);
  void Element(const std::string& member, const TCIMValue& value);
  void Array(const std::string& member, const TCIMValue& value);
  void Reference(const TCIMReference& reference);
  void ClassOrInstanceName(const TCIMReference& reference, bool hasKeys);
  bool IsOwnNamespace(const TCIMReference& reference) const;

  TXMLWriter& fXML;
  const ICIMNamespace& fNamespace;
  TCountedWarning& fLeftOut;
  std::string fClassName;  // empty outside of classes
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_WRITING_VALUE_WRITER_H_
