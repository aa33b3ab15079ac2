// SPDX-License-Identifier: Apache-2.0
#include "schema_writer.h"

#include <qdxcore/reference_parameter.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <vector>

#include "xml/literal.h"
#include "xml/marks.h"
#include "xml/qualifier_flags.h"

namespace NVORNQDX20::NCIMXML {
namespace {

const char* ParameterElement(TCIMType type) {
  const bool isReference = ElementType(type) == TCIMType::kCIMTypeReference;
  if (IsArray(type)) return isReference ? "PARAMETER.REFARRAY" : "PARAMETER.ARRAY";
  return isReference ? "PARAMETER.REFERENCE" : "PARAMETER";
}

bool HasQualifier(const ICIMPropertyDecl& element, const std::string& name) {
  bool isThere = false;
  element.EnumerateQualifiers([&](const boost::shared_ptr<ICIMQualifier>& qualifier) {
    isThere = NModel::EqualIgnoringCase(qualifier->GetDecl()->GetName(), name);
    return !isThere;
  });
  return isThere;
}

template <std::size_t size>
bool AreKnown(std::uint32_t bits, const TFlag (&flags)[size]) {
  for (const TFlag& flag : flags) bits &= ~flag.fBit;
  return bits == 0;
}

}  // namespace

void TSchemaWriter::QualifierDecl(const ICIMQualifierDecl& decl) {
  if (NDescribe::IsStringKindQualifier(decl.GetName())) return;
  if (!AreKnown(decl.GetScope(), kScopes) || !AreKnown(decl.GetFlavor(), kFlavors)) {
    fUnknownBits.Add(decl.GetName());
  }
  const TCIMValue& value = decl.GetDefaultValue();
  fXML.Markup("<QUALIFIER.DECLARATION").Attribute("NAME", decl.GetName());
  fXML.Attribute("TYPE", KeywordOf(value.GetType()));
  if (value.IsArray()) fXML.Attribute("ISARRAY", "true");
  const unsigned int fixedSize = TArraySizes::SizeOf(value);
  if (fixedSize != 0) fXML.Attribute("ARRAYSIZE", std::to_string(fixedSize));
  Flavor(decl.GetFlavor());
  fXML.Markup(">");
  Scope(decl.GetScope());
  fValues.Value(decl.GetName(), value);
  fXML.Markup("</QUALIFIER.DECLARATION>\n");
}

void TSchemaWriter::Class(const ICIMClass& cimClass) {
  fValues.BeginClass(cimClass.GetName({}));
  fXML.Markup("<CLASS").Attribute("NAME", cimClass.GetName({}));
  if (!cimClass.IsRootClass({})) {
    fXML.Attribute("SUPERCLASS", cimClass.GetSuperclass({})->GetName({}));
  }
  fXML.Markup(">\n");
  Qualifiers(cimClass);
  Properties(cimClass);
  cimClass.EnumerateMethodDecls(
      [this](const boost::shared_ptr<ICIMMethodDecl>& method) {
        Method(*method);
        return true;
      },
      {});
  fXML.Markup("</CLASS>");
}

void TSchemaWriter::Properties(const ICIMClass& cimClass) {
  std::vector<boost::shared_ptr<ICIMProperty>> inherited;
  cimClass.EnumerateStaticProperties(TAddToVectorCallback(inherited), {});
  for (const auto& decl : NModel::OwnPropertyDeclsOf(cimClass)) {
    const auto own = std::find_if(inherited.begin(), inherited.end(), [&](const auto& property) {
      return NModel::EqualIgnoringCase(property->GetDecl()->GetName(), decl->GetName());
    });
    if (own == inherited.end()) {
      PropertyDecl(*decl, nullptr, fSizes.Declare(cimClass, decl));
    } else {
      PropertyDecl(*decl, &(*own)->GetValue(), TArraySizes::SizeOf((*own)->GetValue()));
      inherited.erase(own);
    }
  }
  for (const auto& property : inherited) StaticProperty(*property);
}

void TSchemaWriter::Flavor(std::uint32_t flavor) {
  for (const TFlag& flag : kFlavors) {
    const bool isSet = (flavor & flag.fBit) != 0;
    if (isSet != flag.fIsDefault) fXML.Attribute(flag.fAttribute, isSet ? "true" : "false");
  }
}

void TSchemaWriter::Scope(std::uint32_t scope) {
  fXML.Markup("<SCOPE");
  for (const TFlag& flag : kScopes) {
    if ((scope & flag.fBit) != 0) fXML.Attribute(flag.fAttribute, "true");
  }
  fXML.Markup("/>");
}

void TSchemaWriter::Qualifier(const ICIMQualifier& qualifier) {
  const auto decl = qualifier.GetDecl();
  if (NDescribe::IsStringKindQualifier(decl->GetName())) return;
  fXML.Markup("<QUALIFIER").Attribute("NAME", decl->GetName());
  fXML.Attribute("TYPE", KeywordOf(decl->GetDefaultValue().GetType()));
  Flavor(decl->GetFlavor());
  fXML.Markup(">");
  fValues.Value(decl->GetName(), qualifier.GetValue());
  fXML.Markup("</QUALIFIER>\n");
}

void TSchemaWriter::Mark(std::string_view name) {
  fXML.Markup("<QUALIFIER").Attribute("NAME", name).Attribute("TYPE", "boolean");
  fXML.Markup("><VALUE>TRUE</VALUE></QUALIFIER>\n");
}

template <typename TQualified>
void TSchemaWriter::Qualifiers(const TQualified& element) {
  element.EnumerateQualifiers([this](const boost::shared_ptr<ICIMQualifier>& qualifier) {
    Qualifier(*qualifier);
    return true;
  });
}

void TSchemaWriter::PropertyDecl(const ICIMPropertyDecl& decl, const TCIMValue* staticValue,
                                 unsigned int fixedSize) {
  const TCIMValue& declared = decl.GetDefaultValue();
  const TCIMValue& value = staticValue == nullptr ? declared : *staticValue;
  if (!HasPropertyElement(declared.GetType())) {
    fValues.LeaveOut(decl.GetName(), "an array of references");
    return;
  }
  const char* const element = TValueWriter::PropertyElement(value.GetType());
  fXML.Markup("<").Markup(element);
  fValues.PropertyAttributes(decl.GetName(), declared, {fixedSize, NDescribe::StringKindOf(decl)},
                             true);
  fXML.Markup(">\n");
  Qualifiers(decl);
  if (staticValue != nullptr) {
    if (!HasQualifier(decl, kStatic)) Mark(kStatic);
    const bool hasOtherDefault = !IsAbsent(declared) && declared != *staticValue;
    if (hasOtherDefault) fValues.LeaveOut(decl.GetName(), "the default of a static property");
  }
  fValues.Value(decl.GetName(), value);
  fXML.Markup("</").Markup(element).Markup(">\n");
}

void TSchemaWriter::StaticProperty(const ICIMProperty& property) {
  const auto decl = property.GetDecl();
  const TCIMValue& value = property.GetValue();
  if (!HasPropertyElement(value.GetType())) return;
  const char* const element = TValueWriter::PropertyElement(value.GetType());
  fXML.Markup("<").Markup(element);
  fValues.PropertyAttributes(decl->GetName(), value,
                             {TArraySizes::SizeOf(value), NDescribe::StringKindOf(*decl)}, true);
  fXML.Attribute("PROPAGATED", "true").Markup(">\n");
  Mark(kStatic);
  fValues.Value(decl->GetName(), value);
  fXML.Markup("</").Markup(element).Markup(">\n");
}

void TSchemaWriter::Method(const ICIMMethodDecl& method) {
  const TCIMType type = method.GetReturnType();
  if (ElementType(type) == TCIMType::kCIMTypeReference) {
    fValues.LeaveOut(method.GetName(), "a method that returns a reference");
    return;
  }
  fXML.Markup("<METHOD").Attribute("NAME", method.GetName());
  // A TYPE is optional in CIM-XML, but programs refuse methods that lack it. The usual type of a
  // result takes its place, with a mark by which it is not taken for one.
  const bool hasType = type != TCIMType::kCIMTypeNone;
  fValues.TypeAttribute(hasType ? type : TCIMType(TCIMType::kCIMTypeUint32),
                        NDescribe::StringKindOf(method));
  fXML.Markup(">\n");
  Qualifiers(method);
  if (!hasType) Mark(kNoReturnValue);
  method.EnumerateParameterDecls([this](const boost::shared_ptr<ICIMParameterDecl>& parameter) {
    Parameter(*parameter);
    return true;
  });
  fXML.Markup("</METHOD>\n");
}

void TSchemaWriter::Parameter(const ICIMParameterDecl& parameter) {
  const TCIMType type = parameter.GetType();
  const char* const element = ParameterElement(type);
  fXML.Markup("<").Markup(element).Attribute("NAME", parameter.GetName());
  if (ElementType(type) != TCIMType::kCIMTypeReference) {
    fValues.TypeAttribute(type, NDescribe::StringKindOf(parameter));
  } else if (const std::string name = GetReferencedClassName(parameter); !name.empty()) {
    fXML.Attribute("REFERENCECLASS", name);
  }
  fXML.Markup(">\n");
  Qualifiers(parameter);
  fXML.Markup("</").Markup(element).Markup(">\n");
}

}  // namespace NVORNQDX20::NCIMXML
