// SPDX-License-Identifier: Apache-2.0
/// Writes CIM-XML documents (DMTF DSP0201): namespaces with all their contents.
#ifndef QDXCIMXML_DOCUMENT_WRITER_H_
#define QDXCIMXML_DOCUMENT_WRITER_H_

#include <qdxcore/interfaces.h>

#include <memory>
#include <string>

namespace NVORNQDX20::NCIMXML {

/// The readers that a document is for.
enum EReaders {
  kCurrentReaders,
  /// Those of the first versions of the DTD, and those that insist on the type of a method. An
  /// array with null elements is null, and is counted as left out. A method that returns nothing
  /// returns uint32. The values of keys have no type besides that of their property.
  kOldReaders,
};

/// Streams: nothing of a namespace is kept in memory. Classes are sorted by name, instances are in
/// the order of the namespace, so that equal contents give equal documents.
///
/// A failed write is logged with the reason, and throws kQDXStatusFileSystemError.
class TDocumentWriter {
 public:
  /// Opens the file, or standard output for "-", and begins the document. An existing file is
  /// truncated and keeps its mode; a new one gets mode 0600. A name that ends in ".gz" gives a gzip
  /// file.
  explicit TDocumentWriter(const std::string& file, EReaders readers = kCurrentReaders);
  /// Leaves an incomplete file unless Close() was called.
  ~TDocumentWriter();

  void AddNamespace(const ICIMNamespace& ns);
  /// The same under another name than its own.
  void AddNamespace(const ICIMNamespace& ns, const std::string& name);
  /// Completes the document and closes the file. Warns about replaced characters, and about values
  /// and bits of qualifiers that were left out.
  void Close();

  const std::string& GetFile() const;

 private:
  struct TParts;

  void Begin();

  const std::unique_ptr<TParts> fParts;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // QDXCIMXML_DOCUMENT_WRITER_H_
