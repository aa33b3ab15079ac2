// SPDX-License-Identifier: Apache-2.0
/// Writes declarations of qualifiers and classes.
#ifndef LIB_CIMXML_WRITING_SCHEMA_WRITER_H_
#define LIB_CIMXML_WRITING_SCHEMA_WRITER_H_

#include <qdxcore/interfaces.h>

#include <string_view>

#include "array_sizes.h"
#include "value_writer.h"
#include "xml/counted_warning.h"
#include "xml/xml_writer.h"

namespace NVORNQDX20::NCIMXML {

/// CIM-XML has no elements for properties that are arrays of references, and for methods that
/// return references; these are left out.
///
/// Scopes and flavors are the bits of <qdxrepository/repository.h>; others are left out and
/// counted.
///
/// The PROPERTY of a class's own value has the qualifier "Static". If the class declares the
/// property, it is the declaration, with the value in place of the default, which is left out if it
/// is another one. If the property is inherited, it is propagated. Other inherited declarations are
/// not repeated.
///
/// What a string is declared as is written as such: as the type char16, or as the attribute
/// EmbeddedObject, which older readers do not know.
class TSchemaWriter {
 public:
  /// Adds the properties of classes to `sizes`.
  TSchemaWriter(TXMLWriter& xml, TValueWriter& values, TArraySizes& sizes,
                TCountedWarning& unknownBits)
      : fXML(xml), fValues(values), fSizes(sizes), fUnknownBits(unknownBits) {}

  void QualifierDecl(const ICIMQualifierDecl& decl);
  void Class(const ICIMClass& cimClass);

 private:
  void Flavor(std::uint32_t flavor);
  void Scope(std::uint32_t scope);
  void Qualifier(const ICIMQualifier& qualifier);
  /// Writes a qualifier of xml/marks.h.
  void Mark(std::string_view name);
  template <typename TQualified>
  void Qualifiers(const TQualified& element);
  void Properties(const ICIMClass& cimClass);
  /// `staticValue` is null if the class has no value of its own for the property.
  void PropertyDecl(const ICIMPropertyDecl& decl, const TCIMValue* staticValue,
                    unsigned int fixedSize);
  void StaticProperty(const ICIMProperty& property);
  void Method(const ICIMMethodDecl& method);
  void Parameter(const ICIMParameterDecl& parameter);

  TXMLWriter& fXML;
  TValueWriter& fValues;
  TArraySizes& fSizes;
  TCountedWarning& fUnknownBits;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_WRITING_SCHEMA_WRITER_H_
