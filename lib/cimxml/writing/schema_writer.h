// SPDX-License-Identifier: Apache-2.0
/// Declarations of qualifiers and classes as XML.
#ifndef LIB_CIMXML_WRITING_SCHEMA_WRITER_H_
#define LIB_CIMXML_WRITING_SCHEMA_WRITER_H_

#include <qdxcore/interfaces.h>

#include "value_writer.h"
#include "xml/xml_writer.h"

namespace NVORNQDX20::NCIMXML {

/// What CIM-XML has no element for is left out: arrays of references as properties, and methods
/// that return references.
///
/// Scopes and flavors are the bits of <qdxrepository/repository.h>.
///
/// The value that a class itself has for a property stands in a property of its own, beside the
/// declaration with its default: propagated, and with the qualifier "Static". An inherited
/// declaration is not repeated.
class TSchemaWriter {
 public:
  TSchemaWriter(TXMLWriter& xml, TValueWriter& values) : fXML(xml), fValues(values) {}

  void QualifierDecl(const ICIMQualifierDecl& decl);
  void Class(const ICIMClass& cimClass);

 private:
  void Flavor(std::uint32_t flavor);
  void Scope(std::uint32_t scope);
  void Qualifier(const ICIMQualifier& qualifier);
  template <typename TQualified>
  void Qualifiers(const TQualified& element);
  void PropertyDecl(const ICIMPropertyDecl& decl);
  void StaticProperty(const ICIMProperty& property);
  void Method(const ICIMMethodDecl& method);
  void Parameter(const ICIMParameterDecl& parameter);

  TXMLWriter& fXML;
  TValueWriter& fValues;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_WRITING_SCHEMA_WRITER_H_
