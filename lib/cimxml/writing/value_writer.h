// SPDX-License-Identifier: Apache-2.0
/// Writes values, properties and instance names of one namespace.
#ifndef LIB_CIMXML_WRITING_VALUE_WRITER_H_
#define LIB_CIMXML_WRITING_VALUE_WRITER_H_

#include <qdxcimxml/document_writer.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/values.h>
#include <qdxdescribe/string_kind.h>

#include <string>
#include <string_view>

#include "xml/cim_type.h"
#include "xml/counted_warning.h"
#include "xml/xml_writer.h"

namespace NVORNQDX20::NCIMXML {

/// What a class declares, and the elements of its instances repeat.
struct TDeclaredProperty {
  unsigned int fFixedSize = 0;  ///< 0 if the number of elements may change.
  NDescribe::EStringKind fStringKind = NDescribe::EStringKind::kText;
};

/// A property of many instances, with what is the same for all of them.
struct TWrittenProperty {
  std::string fName;
  TCIMType fType;
  TDeclaredProperty fDeclared;
  bool fIsPlain;      ///< A scalar, no reference.
  TPreparedXML fTag;  ///< The start tag of its element, without the end of the tag. Not for arrays.
  TPreparedXML fKey;  ///< What comes before its value in the name of an instance. Not for arrays.
};

/// A value that CIM-XML cannot express becomes null, and is counted in `leftOut`.
class TValueWriter {
 public:
  /// Paths contain a namespace only if it is not `ns`.
  TValueWriter(TXMLWriter& xml, const ICIMNamespace& ns, EReaders readers, TCountedWarning& leftOut)
      : fXML(xml), fNamespace(ns), fReaders(readers), fLeftOut(leftOut) {}

  /// Returns "PROPERTY", "PROPERTY.ARRAY" or "PROPERTY.REFERENCE".
  static const char* PropertyElement(TCIMType type);
  /// Returns why an instance name cannot contain the key; null if it can.
  static const char* ObstacleToKey(const TCIMValue& value);

  /// Sets the class of the following members, for messages.
  void BeginClass(const std::string& name) { fClassName = name; }
  void LeaveOut(const std::string& member, const char* reason);

  /// Writes VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for a null value. `member` is the owner
  /// of the value, for messages.
  void Value(const std::string& member, const TCIMValue& value);
  /// Writes the attributes of a property's start tag; ARRAYSIZE unless the fixed size is 0.
  void PropertyAttributes(const std::string& name, const TCIMValue& value,
                          const TDeclaredProperty& declared, bool withClass);
  TWrittenProperty Prepare(const std::string& name, TCIMType type,
                           const TDeclaredProperty& declared) const;
  /// Writes a complete property of an instance.
  void Property(const TWrittenProperty& property, const TCIMValue& value);
  /// The same for a text.
  void TextProperty(const TWrittenProperty& property, std::string_view text);
  /// The same for the reference that TryReference() prepared.
  void ReferenceProperty(const TWrittenProperty& property, const TPreparedXML& reference);
  /// Prepares the VALUE.REFERENCE of a reference with keys that are texts. Returns false for any
  /// other, or one to another namespace.
  bool TryReference(const TPlainReference& reference, TPreparedXML& prepared) const;
  void NamespacePath(const std::string& name);
  /// Writes a key in the name of an instance. REQUIRES: ObstacleToKey() is null for the value.
  void Key(const TWrittenProperty& property, const TCIMValue& value);
  /// The same for a text, which has no obstacle.
  void TextKey(const TWrittenProperty& property, std::string_view text);
  /// The same for the reference that TryReference() prepared.
  void ReferenceKey(const TWrittenProperty& property, const TPreparedXML& reference);
  /// Writes the attribute TYPE; not for references.
  void TypeAttribute(TCIMType type, NDescribe::EStringKind kind);

 private:
  /// Returns whether CIM-XML can express the value; counts a value that it cannot express.
  bool CanHold(const std::string& member, const TCIMValue& value);
  void Element(const std::string& member, const TCIMValue& value);
  /// Writes a scalar that is no reference: what comes before it, its VALUE and what comes after it.
  /// Returns false, and writes nothing, if it is null or CIM-XML cannot express it.
  bool Scalar(const std::string& member, const TCIMValue& value, std::string_view before,
              std::string_view after);
  void OtherProperty(const TWrittenProperty& property, const TCIMValue& value);
  void KeyBinding(const std::string& name, const TCIMValue& value,
                  NDescribe::EStringKind kind = NDescribe::EStringKind::kText);
  void KeyStart(const std::string& name, TCIMType type, NDescribe::EStringKind kind);
  void Array(const std::string& member, const TCIMValue& value);
  void Literal(const TCIMValue& value);
  void Reference(const TCIMReference& reference);
  void ClassOrInstanceName(const TCIMReference& reference, bool hasKeys);
  bool IsOwnNamespace(const TCIMReference& reference) const;

  TXMLWriter& fXML;
  const ICIMNamespace& fNamespace;
  const EReaders fReaders;
  TCountedWarning& fLeftOut;
  std::string fClassName;  // empty outside a class
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_WRITING_VALUE_WRITER_H_
