// SPDX-License-Identifier: Apache-2.0
/// Reads CIM-XML documents (DMTF DSP0201), plain or compressed with gzip.
#ifndef QDXCIMXML_DOCUMENT_READER_H_
#define QDXCIMXML_DOCUMENT_READER_H_

#include <qdxrepository/repository.h>

#include <ctime>
#include <string>

#include <sys/types.h>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NCIMXML {

/// Reads a document from the current position of the descriptor. Returns one namespace for each
/// namespace path in the document; objects without a path are in "root/cimv2". Does not close the
/// descriptor; `name` is used in messages.
///
/// Undeclared qualifiers and classes are declared from their uses: a qualifier from its first use,
/// a class at the end of the document, from its instances and the key bindings of references to it.
///
/// Failures are logged. Throws kQDXStatusInvalidDataCollectionDocument for a bad document, with
/// "line L, column C" in the reason; kQDXStatusFileSystemError if the file cannot be read;
/// kQDXStatusInvalidGzipFile for a bad gzip header; kQDXStatusCorruptGzipFile for other errors in
/// the compression.
boost::shared_ptr<TRepositoryProvider> ReadDocument(const std::string& name, int descriptor);

/// Reads documents by file name, and caches the last one.
class TDocumentCache {
 public:
  /// Returns the document in the file, or on standard input for "-". Reads it again only if the
  /// file has changed since the last call; a pipe is read once. Throws kQDXStatusAccessDenied
  /// without permission and kQDXStatusFileNotFound if the file cannot be opened for another reason,
  /// both logged, and what ReadDocument() throws.
  boost::shared_ptr<TRepositoryProvider> Read(const std::string& file);

 private:
  /// Identifies a state of a file: device, inode, size and time of modification.
  struct TIdentity {
    TIdentity() = default;
    explicit TIdentity(const std::string& file);
    bool operator==(const TIdentity& other) const;

    dev_t fDevice = 0;
    ino_t fInode = 0;
    off_t fSize = 0;
    timespec fTime{};
  };

  boost::shared_ptr<TRepositoryProvider> fLast;
  TIdentity fLastIdentity;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // QDXCIMXML_DOCUMENT_READER_H_
