// SPDX-License-Identifier: Apache-2.0
#include "schema_format.h"

#include <qdxmodel/type.h>

#include <utility>

#include <qdxsnapshot/mof.h>

#include "cli/json_stream.h"
#include "cli/output.h"
#include "cli/terminal.h"

namespace NVORNQDX20 {
namespace {

using NDescribe::EStringKind;
using TType = TCIMValue::TCIMType;

std::string SchemaLine(std::size_t indent, const std::string& text,
                       TTableRow::EStyle style = TTableRow::kPlain) {
  return FormatLine(std::string(indent, ' ') + text, style);
}

std::string Heading(const std::string& name, const std::string& provider) {
  return SchemaLine(0, name + (provider.empty() ? "" : "  (provider " + provider + ")"),
                    TTableRow::kHeading);
}

/// Sanitises every line for the terminal: names are not escaped.
std::string Sanitised(const std::string& text) {
  std::string lines;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find('\n', start);
    lines += ForTerminal(text.substr(start, end - start)) + '\n';
    start = end == std::string::npos ? text.size() : end + 1;
  }
  return lines;
}

/// Returns a type such as "uint8[]" or "CIM_Disk reference".
std::string TypeOf(TType type, EStringKind kind, const std::string& referencedClass = "") {
  const std::string text = NModel::TypeText(type);
  if (kind == EStringKind::kCharacter) {
    return NDescribe::KeywordOf(kind) + (NModel::IsArray(type) ? "[]" : "");
  }
  return referencedClass.empty() ? text : referencedClass + " " + text;
}

/// Returns "object" or "instance"; empty if the strings are something else.
std::string EmbeddedIn(const TPropertySchema& property) {
  const bool isEmbedded = property.fStringKind >= EStringKind::kEmbeddedObject;
  return isEmbedded ? NDescribe::KeywordOf(property.fStringKind) : "";
}

std::string PropertySignature(const TPropertySchema& property, const std::string& ns) {
  const TCIMValue& value = property.fDefault;
  std::string text = TypeOf(value.GetType(), property.fStringKind, property.fReferencedClass);
  if (value.IsArray() && value.GetMaxArraySize() != 0) {
    text.insert(text.size() - 1, std::to_string(value.GetMaxArraySize()));
  }
  text += " " + property.fName;
  return value.IsNull() ? text : text + " = " + PlainText(ToJSON(value, ns));
}

/// Adds to a remark such as "key, from C".
void AddRemark(std::string& remark, const std::string& text) {
  remark += (remark.empty() ? "" : ", ") + text;
}

/// Returns what is to be said about the value of a property.
std::string RemarkOnValue(const TPropertySchema& property) {
  std::string remark;
  const std::string embedded = EmbeddedIn(property);
  if (property.fIsKey) AddRemark(remark, "key");
  if (property.fIsStatic) AddRemark(remark, "static");
  if (!embedded.empty()) AddRemark(remark, "embedded " + embedded);
  return remark;
}

/// Returns what is to be said about a property or method of the class besides its signature,
/// beginning with `remark`.
std::string RemarkOn(const TFeatureOrigin& origin, const std::string& className,
                     std::string remark = "") {
  if (origin.fClass != className) AddRemark(remark, "from " + origin.fClass);
  if (!origin.fOverridden.empty()) AddRemark(remark, "overrides " + origin.fOverridden);
  return remark.empty() ? "" : "  (" + remark + ")";
}

std::string FormatQualifiers(const std::vector<TQualifierValue>& qualifiers, std::size_t indent,
                             const std::string& ns) {
  std::vector<TTableRow> rows;
  rows.reserve(qualifiers.size());
  for (const auto& [name, value] : qualifiers) {
    rows.push_back(
        {{std::string(indent, ' ') + name, PlainText(ToJSON(value, ns))}, TTableRow::kDim});
  }
  return FormatTable(rows);
}

std::string FormatMethod(const TMethodSchema& method, const std::string& className,
                         const std::string& ns) {
  std::string text = SchemaLine(4, TypeOf(method.fReturnType, method.fStringKind) + " " +
                                       method.fName + "()" + RemarkOn(method.fOrigin, className));
  text += FormatQualifiers(method.fQualifiers, 6, ns);
  for (const TParameterSchema& parameter : method.fParameters) {
    text +=
        SchemaLine(6, TypeOf(parameter.fType, parameter.fStringKind, parameter.fReferencedClass) +
                          " " + parameter.fName);
    text += FormatQualifiers(parameter.fQualifiers, 8, ns);
  }
  return text;
}

std::string FormatDeclaration(const TClassSchema& cimClass, const std::string& ns) {
  const std::string& superclass = cimClass.fSuperclass;
  std::string text = SchemaLine(
      2, cimClass.fName + (superclass.empty() ? "" : "  (subclass of " + superclass + ")"));
  text += FormatQualifiers(cimClass.fQualifiers, 4, ns);
  for (const TPropertySchema& property : cimClass.fProperties) {
    text += SchemaLine(4, PropertySignature(property, ns) +
                              RemarkOn(property.fOrigin, cimClass.fName, RemarkOnValue(property)));
    text += FormatQualifiers(property.fQualifiers, 6, ns);
  }
  for (const TMethodSchema& method : cimClass.fMethods) {
    text += FormatMethod(method, cimClass.fName, ns);
  }
  return text;
}

TJSON TextOrNull(const std::string& text) { return text.empty() ? TJSON() : TJSON(text); }

TJSON QualifiersAsJSON(const std::vector<TQualifierValue>& qualifiers, const std::string& ns) {
  TJSON json = TJSON::object();
  for (const auto& [name, value] : qualifiers) json[name] = ToJSON(value, ns);
  return json;
}

TJSON PropertyAsJSON(const TPropertySchema& property, const std::string& ns) {
  const TCIMValue& value = property.fDefault;
  TJSON json = {{"property", property.fName},
                {"type", TypeOf(value.GetType(), property.fStringKind)}};
  if (value.IsArray() && value.GetMaxArraySize() != 0) json["size"] = value.GetMaxArraySize();
  if (!property.fReferencedClass.empty()) json["referencedClass"] = property.fReferencedClass;
  json["key"] = property.fIsKey;
  if (property.fIsStatic) json["static"] = true;
  const std::string embedded = EmbeddedIn(property);
  if (!embedded.empty()) json["embedded"] = embedded;
  json["default"] = ToJSON(value, ns);
  json["declaredIn"] = property.fOrigin.fClass;
  json["overrides"] = TextOrNull(property.fOrigin.fOverridden);
  json["qualifiers"] = QualifiersAsJSON(property.fQualifiers, ns);
  return json;
}

TJSON ParameterAsJSON(const TParameterSchema& parameter, const std::string& ns) {
  TJSON json = {{"parameter", parameter.fName},
                {"type", TypeOf(parameter.fType, parameter.fStringKind)}};
  if (!parameter.fReferencedClass.empty()) json["referencedClass"] = parameter.fReferencedClass;
  json["qualifiers"] = QualifiersAsJSON(parameter.fQualifiers, ns);
  return json;
}

TJSON MethodAsJSON(const TMethodSchema& method, const std::string& ns) {
  TJSON parameters = TJSON::array();
  for (const TParameterSchema& parameter : method.fParameters) {
    parameters.push_back(ParameterAsJSON(parameter, ns));
  }
  return {{"method", method.fName},
          {"type", TypeOf(method.fReturnType, method.fStringKind)},
          {"declaredIn", method.fOrigin.fClass},
          {"overrides", TextOrNull(method.fOrigin.fOverridden)},
          {"qualifiers", QualifiersAsJSON(method.fQualifiers, ns)},
          {"parameters", std::move(parameters)}};
}

TJSON DeclarationAsJSON(const TClassSchema& cimClass, const std::string& ns) {
  TJSON properties = TJSON::array();
  for (const auto& each : cimClass.fProperties) properties.push_back(PropertyAsJSON(each, ns));
  TJSON methods = TJSON::array();
  for (const auto& each : cimClass.fMethods) methods.push_back(MethodAsJSON(each, ns));
  return {{"class", cimClass.fName},
          {"superclass", TextOrNull(cimClass.fSuperclass)},
          {"association", cimClass.fIsAssociation},
          {"qualifiers", QualifiersAsJSON(cimClass.fQualifiers, ns)},
          {"properties", std::move(properties)},
          {"methods", std::move(methods)}};
}

class TSchemaText final : public ISchemaFormat {
 public:
  void BeginNamespace(const std::string& name, const std::string& provider,
                      const std::vector<TQualifierSchema>&) override {
    fNamespace = name;
    fOutput.Add(Heading(name, provider));
  }
  void AddClass(const TClassSchema& cimClass) override {
    fOutput.Add(FormatDeclaration(cimClass, fNamespace));
  }
  void EndNamespace() override {}
  void End() override { fOutput.Flush(); }

 private:
  TOutputBuffer fOutput;
  std::string fNamespace;
};

class TSchemaMOF final : public ISchemaFormat {
 public:
  void BeginNamespace(const std::string& name, const std::string&,
                      const std::vector<TQualifierSchema>& qualifiers) override {
    Add("#pragma namespace (" + QuotedForMOF(name) + ")\n");
    for (const TQualifierSchema& qualifier : qualifiers) Add("\n" + QualifierAsMOF(qualifier));
  }
  void AddClass(const TClassSchema& cimClass) override { Add("\n" + ClassAsMOF(cimClass)); }
  void EndNamespace() override {}
  void End() override { fOutput.Flush(); }

 private:
  void Add(const std::string& text) { fOutput.Add(Sanitised(text)); }

  TOutputBuffer fOutput;
};

class TSchemaJSON final : public ISchemaFormat {
 public:
  TSchemaJSON() {
    fStream.BeginObject();
    fStream.BeginArray("namespaces");
  }
  void BeginNamespace(const std::string& name, const std::string& provider,
                      const std::vector<TQualifierSchema>&) override {
    fNamespace = name;
    fStream.BeginObject();
    fStream.Add("namespace", name);
    fStream.Add("provider", TextOrNull(provider));
    fStream.BeginArray("classes");
  }
  void AddClass(const TClassSchema& cimClass) override {
    fStream.Add("", DeclarationAsJSON(cimClass, fNamespace));
  }
  void EndNamespace() override {
    fStream.End();
    fStream.End();
  }
  void End() override {
    fStream.End();
    fStream.End();
  }

 private:
  TJSONStream fStream;
  std::string fNamespace;
};

}  // namespace

std::unique_ptr<ISchemaFormat> MakeSchemaText() { return std::make_unique<TSchemaText>(); }

std::unique_ptr<ISchemaFormat> MakeSchemaJSON() { return std::make_unique<TSchemaJSON>(); }

std::unique_ptr<ISchemaFormat> MakeSchemaMOF() { return std::make_unique<TSchemaMOF>(); }

std::string FormatTree(const std::vector<TNamespaceTree>& namespaces) {
  std::string text;
  for (const TNamespaceTree& ns : namespaces) {
    text += Heading(ns.fName, ns.fProvider);
    for (const TClassNode& node : ns.fNodes) {
      const std::size_t count = node.fInstanceCount;
      const std::string instances = count == 0   ? ""
                                    : count == 1 ? "  (1 instance)"
                                                 : "  (" + std::to_string(count) + " instances)";
      text += SchemaLine(2 + 2 * node.fDepth, node.fName + instances);
    }
  }
  return text;
}

TJSON TreeAsJSON(const std::vector<TNamespaceTree>& namespaces) {
  TJSON all = TJSON::array();
  for (const TNamespaceTree& ns : namespaces) {
    TJSON classes = TJSON::array();
    for (const TClassNode& node : ns.fNodes) {
      classes.push_back({{"class", node.fName},
                         {"superclass", TextOrNull(node.fSuperclass)},
                         {"instanceCount", node.fInstanceCount}});
    }
    all.push_back({{"namespace", ns.fName},
                   {"provider", TextOrNull(ns.fProvider)},
                   {"classes", std::move(classes)}});
  }
  return {{"namespaces", std::move(all)}};
}

}  // namespace NVORNQDX20
