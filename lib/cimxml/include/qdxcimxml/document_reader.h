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

/// Reads the file behind the descriptor, from its position on, into namespaces: one for each path
/// that the document's groups and objects have, "root/cimv2" where they have none. The descriptor
/// stays open; `name` is for messages.
///
/// What the document uses but does not declare is declared after its use: a qualifier by its first
/// one, a class at the end of the document, by its instances and the key bindings that name it.
///
/// Failures are logged. A bad document throws kQDXStatusInvalidDataCollectionDocument, with "line
/// L, column C" in the reason. A file that cannot be read throws kQDXStatusFileSystemError, one
/// with a bad gzip header kQDXStatusInvalidGzipFile, one that is compressed wrongly elsewhere
/// kQDXStatusCorruptGzipFile.
boost::shared_ptr<TRepositoryProvider> ReadDocument(const std::string& name, int descriptor);

/// Reads documents by the names of their files, and keeps the last one.
class TDocumentCache {
 public:
  /// The document in the file, "-" for standard input. It is read again only if the file has
  /// changed since the last call; a pipe is read once. Throws kQDXStatusFileNotFound for a file
  /// that cannot be opened, kQDXStatusAccessDenied where the right is missing, both logged, and
  /// what ReadDocument() throws.
  boost::shared_ptr<TRepositoryProvider> Read(const std::string& file);

 private:
  /// What tells one content of a file from another.
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
