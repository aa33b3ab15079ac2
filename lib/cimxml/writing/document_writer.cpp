// SPDX-License-Identifier: Apache-2.0
#include <qdxcimxml/document_writer.h>

#include <qdxcore/logger.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/property_reader.h>
#include <qdxoutput/output_file.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "array_sizes.h"
#include "schema_writer.h"
#include "value_writer.h"
#include "xml/counted_warning.h"
#include "xml/xml_writer.h"

namespace NVORNQDX20::NCIMXML {
namespace {

using TQualifierDecls = std::vector<boost::shared_ptr<ICIMQualifierDecl>>;
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
  TInstanceWriter(TXMLWriter& xml, TValueWriter& values, const TArraySizes& sizes,
                  const ICIMClass& cimClass)
      : fXML(xml), fValues(values), fReader(cimClass) {
    const std::string className = cimClass.GetName({});
    fValues.BeginClass(className);
    for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
      fProperties.push_back(
          fValues.Prepare(decl->GetName(), decl->GetType(),
                          {sizes.Declared(*decl), NDescribe::StringKindOf(*decl)}));
    }
    TXMLWriter(fNameTag)
        .Markup("<VALUE.NAMEDOBJECT><INSTANCENAME")
        .Attribute("CLASSNAME", className)
        .Markup(">");
    TXMLWriter(fInstanceTag)
        .Markup("</INSTANCENAME>\n<INSTANCE")
        .Attribute("CLASSNAME", className)
        .Markup(">\n");
  }

  void Write(const ICIMInstance& instance) {
    fReader.Begin(instance);
    if (!ReadKeys()) return;
    const std::size_t replaced = fXML.GetReplaced();
    fXML.Prepared(fNameTag);
    for (std::size_t i = 0; i < fProperties.size(); ++i) {
      if (IsKey(i)) WriteKey(fProperties[i], fKeys[i]);
    }
    fXML.SetReplaced(replaced);  // counted again below
    fXML.Prepared(fInstanceTag);
    for (std::size_t i = 0; i < fProperties.size(); ++i) {
      const TWrittenProperty& property = fProperties[i];
      if (!HasPropertyElement(property.fType)) continue;
      if (IsKey(i)) {
        WriteProperty(property, fKeys[i]);
      } else if (FindText(i, fText)) {
        fValues.TextProperty(property, fText);
      } else {
        fReader.Read(i, [&](const TCIMValue& value) { fValues.Property(property, value); });
      }
    }
    fXML.Markup("</INSTANCE></VALUE.NAMEDOBJECT>\n");
  }

 private:
  /// A key of the instance that is being written.
  struct TKey {
    enum { kText, kReference, kOther } fKind = kOther;
    std::string fText = {};
    TPreparedXML fReference = {};
    TCIMValue fValue = {};
  };

  bool IsKey(std::size_t property) const {
    const auto& [name, type, isKey] = fReader.GetProperties()[property];
    return isKey && HasPropertyElement(type);
  }

  /// Returns whether they can be written.
  bool ReadKeys() {
    fKeys.resize(fProperties.size());
    for (std::size_t i = 0; i < fProperties.size(); ++i) {
      if (!IsKey(i)) continue;
      TKey& key = fKeys[i];
      if (FindText(i, fText)) {
        key.fText.assign(fText);  // what is read by name may end it
        key.fKind = TKey::kText;
        continue;
      }
      if (fReader.FindPlainReference(i, fReference) &&
          fValues.TryReference(fReference, key.fReference)) {
        key.fKind = TKey::kReference;
        continue;
      }
      key.fKind = TKey::kOther;
      fReader.Read(i, [&key](const TCIMValue& value) { key.fValue.Set(value); });
      const char* const obstacle = TValueWriter::ObstacleToKey(key.fValue);
      if (obstacle == nullptr) continue;
      fValues.LeaveOut(fProperties[i].fName, obstacle);
      return false;
    }
    return true;
  }

  /// Sets the text of a property if it has one at hand. Most properties are texts.
  bool FindText(std::size_t property, std::string_view& text) const {
    TPlainValue plain;
    if (fProperties[property].fType != TCIMValue::TCIMType::kCIMTypeString) return false;
    if (!fReader.FindPlain(property, plain) || plain.fIsNull) return false;
    text = plain.fBytes;
    return true;
  }

  void WriteKey(const TWrittenProperty& property, const TKey& key) {
    if (key.fKind == TKey::kText) {
      fValues.TextKey(property, key.fText);
    } else if (key.fKind == TKey::kReference) {
      fValues.ReferenceKey(property, key.fReference);
    } else {
      fValues.Key(property, key.fValue);
    }
  }

  void WriteProperty(const TWrittenProperty& property, const TKey& key) {
    if (key.fKind == TKey::kText) {
      fValues.TextProperty(property, key.fText);
    } else if (key.fKind == TKey::kReference) {
      fValues.ReferenceProperty(property, key.fReference);
    } else {
      fValues.Property(property, key.fValue);
    }
  }

  TXMLWriter& fXML;
  TValueWriter& fValues;
  NModel::TPropertyReader fReader;
  std::vector<TWrittenProperty> fProperties;  // in the order of the reader
  TPreparedXML fNameTag;
  TPreparedXML fInstanceTag;
  std::vector<TKey> fKeys;     // by property
  TPlainReference fReference;  // the last one that was found
  std::string_view fText;      // the last one that was found
};

void WriteInstances(TXMLWriter& xml, TValueWriter& values, const TArraySizes& sizes,
                    const ICIMClass& cimClass) {
  std::optional<TInstanceWriter> writer;  // most classes of a schema have no instances
  NModel::ForEachInstance(cimClass, [&](const ICIMInstance& instance) {
    if (!writer) writer.emplace(xml, values, sizes, cimClass);
    writer->Write(instance);
  });
}

}  // namespace

struct TDocumentWriter::TParts {
  TParts(const std::string& file, EReaders readers) : fOutput(file, "cimxml"), fReaders(readers) {}

  TOutputFile fOutput;
  const EReaders fReaders;
  TXMLWriter fXML{fOutput};
  TCountedWarning fLeftOut;
  TCountedWarning fUnknownBits;
};

TDocumentWriter::TDocumentWriter(const std::string& file, EReaders readers)
    : fParts(std::make_unique<TParts>(file, readers)) {
  Begin();
}

TDocumentWriter::~TDocumentWriter() = default;

void TDocumentWriter::Begin() {
  fParts->fXML.Markup("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM")
      .Attribute("CIMVERSION", "2.0")
      .Attribute("DTDVERSION", fParts->fReaders == kOldReaders ? "2.0" : "2.4")
      .Markup(">\n<DECLARATION>\n");
}

void TDocumentWriter::AddNamespace(const ICIMNamespace& ns) { AddNamespace(ns, ns.GetName({})); }

void TDocumentWriter::AddNamespace(const ICIMNamespace& ns, const std::string& name) {
  TXMLWriter& xml = fParts->fXML;
  TValueWriter values(xml, ns, fParts->fReaders, fParts->fLeftOut);
  TArraySizes sizes;
  TSchemaWriter schema(xml, values, sizes, fParts->fUnknownBits);
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
  for (const auto& cimClass : classes) WriteInstances(xml, values, sizes, *cimClass);
  xml.Markup("</DECLGROUP.WITHNAME>\n");
}

void TDocumentWriter::Close() {
  fParts->fXML.Markup("</DECLARATION>\n</CIM>\n");
  fParts->fOutput.Close();
  fParts->fLeftOut.Report("value that CIM-XML cannot hold was left out of",
                          "values that CIM-XML cannot hold were left out of", GetFile());
  fParts->fUnknownBits.Report("qualifier lost unknown bits of scope or flavor in",
                              "qualifiers lost unknown bits of scope or flavor in", GetFile());
  const std::size_t replaced = fParts->fXML.GetReplaced();
  if (replaced == 0) return;
  LogMessage(ILogger::kLogWarning,
             {"cimxml: ",
              NModel::Counted(replaced, "character that XML cannot hold was replaced in ",
                              "characters that XML cannot hold were replaced in "),
              GetFile()});
}

const std::string& TDocumentWriter::GetFile() const { return fParts->fOutput.GetFile(); }

}  // namespace NVORNQDX20::NCIMXML
