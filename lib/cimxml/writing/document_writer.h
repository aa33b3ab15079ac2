// SPDX-License-Identifier: Apache-2.0
/// A CIM-XML document (DMTF DSP0201): namespaces with all that they hold.
#ifndef LIB_CIMXML_WRITING_DOCUMENT_WRITER_H_
#define LIB_CIMXML_WRITING_DOCUMENT_WRITER_H_

#include <qdxcore/interfaces.h>

#include <string>

#include "xml/output.h"
#include "xml/tally.h"
#include "xml/xml_writer.h"

namespace NVORNQDX20::NCIMXML {

/// Writes as it goes: nothing of a namespace is kept. The order is that of the names, and for the
/// instances of a class that of the namespace, so that equal contents give equal documents.
class TDocumentWriter {
 public:
  /// Opens the file and begins the document.
  explicit TDocumentWriter(const std::string& file);

  void AddNamespace(const ICIMNamespace& ns);
  /// Ends the document and closes the file. Warns of characters that had to be replaced, and of
  /// what had to be left out.
  void Close();

  const std::string& File() const { return fOutput.File(); }

 private:
  TOutput fOutput;
  TXMLWriter fXML;
  TTally fLeftOut;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_WRITING_DOCUMENT_WRITER_H_
