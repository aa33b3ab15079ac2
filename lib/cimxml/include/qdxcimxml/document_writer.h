// SPDX-License-Identifier: Apache-2.0
/// Writes CIM-XML documents (DMTF DSP0201): namespaces with all that they hold.
#ifndef QDXCIMXML_DOCUMENT_WRITER_H_
#define QDXCIMXML_DOCUMENT_WRITER_H_

#include <qdxcore/interfaces.h>

#include <memory>
#include <string>

namespace NVORNQDX20::NCIMXML {

/// Writes as it goes: nothing of a namespace is kept. The order is that of the names, and for the
/// instances of a class that of the namespace, so that equal contents give equal documents.
///
/// A file that cannot be written is logged with the reason, and throws kQDXStatusFileSystemError.
class TDocumentWriter {
 public:
  /// Opens the file, "-" for standard output, and begins the document. A file that exists is
  /// emptied and keeps its mode; a new one is the owner's alone. A name that ends in ".gz" makes it
  /// a gzip file.
  explicit TDocumentWriter(const std::string& file);
  /// Leaves what was written so far as it is: only Close() makes it whole.
  ~TDocumentWriter();

  void AddNamespace(const ICIMNamespace& ns);
  /// Ends the document and closes the file. Warns of characters that had to be replaced, and of
  /// what had to be left out.
  void Close();

  const std::string& File() const;

 private:
  struct TParts;

  const std::unique_ptr<TParts> fParts;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // QDXCIMXML_DOCUMENT_WRITER_H_
