// SPDX-License-Identifier: Apache-2.0
#include <qdxcimxml/document_writer.h>

#include <qdxcore/logger.h>
#include <qdxmodel/classes.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "schema_writer.h"
#include "value_writer.h"
#include "xml/counted_warning.h"
#include "xml/output.h"
#include "xml/xml_writer.h"

namespace NVORNQDX20::NCIMXML {
namespace {

using TQualifierDecls = std::vector<boost::shared_ptr<ICIMQualifierDecl>>;
using ENames = TDocumentWriter::ENames;
using TClasses = std::vector<boost::shared_ptr<ICIMClass>>;

TQualifierDecls SortedQualifierDecls(const ICIMNamespace& ns) {
  TQualifierDecls decls;
  ns.EnumerateQualifierDecls(TAddToVectorCallback(decls), {});
  std::sort(decls.begin(), decls.end(),
            [](const auto& left, const auto& right) { return left->GetName() < right->GetName(); });
  return decls;
}

/// In descending order, for use as a stack: the first class of the document is the last element.
void SortForStack(TClasses& classes) {
  std::sort(classes.begin(), classes.end(), [](const auto& left, const auto& right) {
    return left->GetName({}) > right->GetName({});
  });
}

/// Returns each class before its subclasses, siblings by name.
TClasses SortedClasses(const ICIMNamespace& ns) {
  TClasses sorted;
  TClasses open;
  ns.EnumerateClasses(TAddToVectorCallback(open), {});
  SortForStack(open);
  while (!open.empty()) {
    sorted.push_back(open.back());
    open.pop_back();
    TClasses derived;
    sorted.back()->EnumerateSubclasses(TAddToVectorCallback(derived), false, {});
    SortForStack(derived);
    open.insert(open.end(), derived.begin(), derived.end());
  }
  return sorted;
}

/// Writes the instances of one class.
class TInstanceWriter {
 public:
  TInstanceWriter(TXMLWriter& xml, TValueWriter& values, ENames names, const ICIMClass& cimClass)
      : fXML(xml), fValues(values), fNames(names), fClassName(cimClass.GetName({})) {
    for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
      if (HasPropertyElement(decl->GetDefaultValue().GetType())) {
        fProperties.push_back({decl->GetName(), isKey});
      }
    }
    fValues.BeginClass(fClassName);
  }

  void Write(const ICIMInstance& instance) {
    if (!CanName(instance)) return;
    if (fNames == ENames::kLeftOut) return WriteContents(instance);
    fXML.Markup("<VALUE.NAMEDOBJECT>");
    const std::size_t replaced = fXML.GetReplaced();
    fXML.Markup("<INSTANCENAME").Attribute("CLASSNAME", fClassName).Markup(">");
    for (const TProperty& property : fProperties) {
      if (!property.fIsKey) continue;
      fValues.KeyBinding(property.fName, instance.GetProperty(property.fName, {})->GetValue());
    }
    fXML.Markup("</INSTANCENAME>\n");
    fXML.SetReplaced(replaced);  // counted again below
    WriteContents(instance);
    fXML.Markup("</VALUE.NAMEDOBJECT>\n");
  }

 private:
  struct TProperty {
    std::string fName;
    bool fIsKey;
  };

  void WriteContents(const ICIMInstance& instance) {
    fXML.Markup("<INSTANCE").Attribute("CLASSNAME", fClassName).Markup(">\n");
    for (const TProperty& property : fProperties) {
      fValues.Property(property.fName, instance.GetProperty(property.fName, {})->GetValue());
    }
    fXML.Markup("</INSTANCE>");
  }

  bool CanName(const ICIMInstance& instance) {
    for (const TProperty& property : fProperties) {
      if (!property.fIsKey) continue;
      const auto key = instance.GetProperty(property.fName, {});
      const char* const obstacle = TValueWriter::ObstacleToKey(key->GetValue());
      if (obstacle == nullptr) continue;
      fValues.LeaveOut(property.fName, obstacle);
      return false;
    }
    return true;
  }

  TXMLWriter& fXML;
  TValueWriter& fValues;
  const ENames fNames;
  const std::string fClassName;
  std::vector<TProperty> fProperties;
};

void WriteInstances(TXMLWriter& xml, TValueWriter& values, ENames names,
                    const ICIMClass& cimClass) {
  TInstanceWriter writer(xml, values, names, cimClass);
  NModel::ForEachInstance(cimClass,
                          [&writer](const ICIMInstance& instance) { writer.Write(instance); });
}

}  // namespace

struct TDocumentWriter::TParts {
  explicit TParts(const std::string& file) : fOutput(file) {}
  TParts(TDescriptor file, const std::string& name, ENames names)
      : fNames(names), fOutput(std::move(file), name) {}

  const ENames fNames = ENames::kWritten;
  TOutput fOutput;
  TXMLWriter fXML{fOutput};
  TCountedWarning fLeftOut;
  TCountedWarning fUnknownBits;
};

TDocumentWriter::TDocumentWriter(const std::string& file) : fParts(std::make_unique<TParts>(file)) {
  Begin();
}

TDocumentWriter::TDocumentWriter(TDescriptor file, const std::string& name, ENames names)
    : fParts(std::make_unique<TParts>(std::move(file), name, names)) {
  Begin();
}

TDocumentWriter::~TDocumentWriter() = default;

void TDocumentWriter::Begin() {
  fParts->fXML.Markup("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n")
      .Markup("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.4\">\n<DECLARATION>\n");
}

void TDocumentWriter::AddNamespace(const ICIMNamespace& ns) { AddNamespace(ns, ns.GetName({})); }

void TDocumentWriter::AddNamespace(const ICIMNamespace& ns, const std::string& name) {
  TXMLWriter& xml = fParts->fXML;
  TValueWriter values(xml, ns, fParts->fLeftOut);
  TSchemaWriter schema(xml, values, fParts->fUnknownBits);
  xml.Markup("<DECLGROUP.WITHNAME>");
  values.NamespacePath(name);
  xml.Markup("\n");
  for (const auto& decl : SortedQualifierDecls(ns)) schema.QualifierDecl(*decl);
  const TClasses classes = SortedClasses(ns);
  for (const auto& cimClass : classes) {
    xml.Markup("<VALUE.NAMEDOBJECT>");
    schema.Class(*cimClass);
    xml.Markup("</VALUE.NAMEDOBJECT>\n");
  }
  for (const auto& cimClass : classes) {
    WriteInstances(xml, values, fParts->fNames, *cimClass);
  }
  xml.Markup("</DECLGROUP.WITHNAME>\n");
}

void TDocumentWriter::Close() {
  fParts->fXML.Markup("</DECLARATION>\n</CIM>\n");
  fParts->fOutput.Close();
  fParts->fLeftOut.Report("values that CIM-XML cannot hold were left out of", GetFile());
  fParts->fUnknownBits.Report("qualifiers lost unknown bits of scope or flavor in", GetFile());
  const std::size_t replaced = fParts->fXML.GetReplaced();
  if (replaced == 0) return;
  LogMessage(ILogger::kLogWarning,
             {"cimxml: ", std::to_string(replaced),
              " characters that XML cannot hold were replaced in ", GetFile()});
}

const std::string& TDocumentWriter::GetFile() const { return fParts->fOutput.GetFile(); }

}  // namespace NVORNQDX20::NCIMXML
