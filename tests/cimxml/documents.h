// SPDX-License-Identifier: Apache-2.0
/// Documents, written and read.
#ifndef TESTS_CIMXML_DOCUMENTS_H_
#define TESTS_CIMXML_DOCUMENTS_H_

#include <qdxcimxml/document_reader.h>
#include <qdxcimxml/document_writer.h>

#include <cstdio>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

#include <algorithm>

namespace NVORNQDX20 {

using TNames = std::vector<std::string>;

/// As a plug-in has it: one for all that is read.
inline NCIMXML::TDocumentCache& Documents() {
  static NCIMXML::TDocumentCache documents;
  return documents;
}

inline TNames NamesIn(const std::string& file) {
  TNames names;
  const auto add = [&](const std::string& name) { return names.push_back(name), true; };
  Documents().Read(file)->EnumerateNamespaceNames(add, {});
  return names;
}

inline TNamespace Read(const std::string& file, const std::string& name = "root/cimv2") {
  return Documents().Read(file)->GetNamespace(name, {});
}

inline void Write(const std::string& file, const std::vector<TNamespace>& namespaces) {
  NCIMXML::TDocumentWriter writer(file);
  for (const TNamespace& ns : namespaces) writer.AddNamespace(*ns);
  writer.Close();
}

/// Returns "2:68 REASON" for the message "N cimxml: FILE: line 2, column 68: REASON", and what
/// follows the file for others.
inline std::string Placed(const std::string& message, const std::string& file) {
  const std::size_t start = message.find(file + ": ");
  if (start == std::string::npos) return message;
  const std::string rest = message.substr(start + file.size() + 2);
  unsigned int line = 0, column = 0;
  int end = 0;
  std::sscanf(rest.c_str(), "line %u, column %u:%n", &line, &column, &end);
  if (end == 0) return rest;
  return std::to_string(line) + ":" + std::to_string(column) +
         rest.substr(static_cast<std::size_t>(end));
}

/// A document of its own in a folder of its own.
struct TDocumentFile : public TTempDir {
  explicit TDocumentFile(const std::string& content) { Write("d.xml", content); }
  std::string Path() const { return (TTempDir::Path() / "d.xml").string(); }
};

/// All namespaces in one document.
inline std::string Written(const std::vector<TNamespace>& namespaces) {
  const TDocumentFile file("");
  Write(file.Path(), namespaces);
  return ReadWholeFile(file.Path());
}

inline std::string ReadAndWritten(const std::string& file) {
  std::vector<TNamespace> namespaces;
  for (const std::string& name : NamesIn(file)) namespaces.push_back(Read(file, name));
  return Written(namespaces);
}

/// Reads a document that is taken, perhaps not whole: one line for each warning, as Placed() has
/// it.
inline TNames WarningsOf(const std::string& content) {
  const TDocumentFile file(content);
  const TLogCapture log;
  EXPECT_NO_THROW(NamesIn(file.Path())) << content.substr(0, 300);
  TNames warnings;
  for (const std::string& message : log.Messages()) {
    warnings.push_back(Placed(message, file.Path()));
  }
  return warnings;
}

/// Expects these parts, with ' for ", in the document that is written of what was read.
inline void ExpectRead(const std::string& document, const TNames& parts, const std::string& name) {
  const TDocumentFile file(document);
  const TLogCapture log;
  std::string written = ReadAndWritten(file.Path());
  std::replace(written.begin(), written.end(), '"', '\'');
  for (const std::string& part : parts) {
    EXPECT_NE(written.find(part), std::string::npos) << name << ": " << part << " in\n" << written;
  }
}

inline std::string Tag(const std::string& name, const std::string& attributes,
                       const std::string& content = "") {
  return "<" + name + " " + attributes + ">" + content + "</" + name + ">";
}

/// The document around objects, each an element or two.
inline std::string Document(const TNames& objects) {
  std::string text = "<CIM CIMVERSION='2.0' DTDVERSION='2.4'><DECLARATION><DECLGROUP.WITHNAME>\n";
  for (const auto& each : objects) text += "<VALUE.NAMEDOBJECT>" + each + "</VALUE.NAMEDOBJECT>\n";
  return text + "</DECLGROUP.WITHNAME></DECLARATION></CIM>";
}

inline std::string Binding(const std::string& name, const std::string& type,
                           const std::string& value) {
  return Tag("KEYBINDING", "NAME='" + name + "'", Tag("KEYVALUE", type, value));
}

inline std::string Class(const std::string& content, const std::string& attributes = "NAME='C'") {
  return Tag("CLASS", attributes, content);
}

inline std::string Instance(const std::string& properties, const std::string& keys = "") {
  return Tag("INSTANCENAME", "CLASSNAME='C'", keys) + Tag("INSTANCE", "CLASSNAME='C'", properties);
}

/// Of a property "p".
inline std::string Property(const std::string& type, const std::string& value) {
  return Tag("PROPERTY", "NAME='p' TYPE='" + type + "'", "<VALUE>" + value + "</VALUE>");
}

/// A class, and an instance whose property has the value.
inline std::string WithValue(const std::string& type, const std::string& value) {
  const std::string declared = "<PROPERTY NAME='p' TYPE='" + type + "'/>";
  return Document({Class(declared), Instance(Property(type, value))});
}

}  // namespace NVORNQDX20

#endif  // TESTS_CIMXML_DOCUMENTS_H_
