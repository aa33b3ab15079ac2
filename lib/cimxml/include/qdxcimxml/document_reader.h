// SPDX-License-Identifier: Apache-2.0
/// Reads CIM-XML documents (DMTF DSP0201), plain or compressed with gzip.
#ifndef QDXCIMXML_DOCUMENT_READER_H_
#define QDXCIMXML_DOCUMENT_READER_H_

#include <qdxrepository/repository.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NCIMXML {

/// What a document may need, and what of it is kept. The limits are against documents that are made
/// to exhaust the machine; others stay far below them.
struct TReadingLimits {
  /// Bytes that the objects of a document may need: by default half of the memory of this machine,
  /// but at least 768 MiB and at most 8 GiB. A document may be as large as that, and at least 2
  /// GiB; two thirds of it may be in one object while it is read.
  std::uint64_t fMemory = DefaultMemory();
  /// Follows a message about this limit: how to raise it. May be empty.
  std::string fHowToRaise;
  /// The classes whose instances are kept, with those of their subclasses, and the reasons of
  /// missing values. By default all; with VORNSG_UnavailableValue all, since each can add a reason.
  /// What is not kept needs no memory, and its faults are not reported.
  std::optional<std::vector<std::string>> fInstancesOf = {};

  static std::uint64_t DefaultMemory();
};

/// A fault of a document.
struct TDefect {
  std::size_t fLine = 0;    ///< From 1; 0 if unknown.
  std::size_t fColumn = 0;  ///< From 1; 0 if unknown.
  std::string fObject;  ///< The object with the fault, such as: class "C". Empty outside of one.
  std::string fMessage;
  bool fEndsReading = false;  ///< What follows in the document was not read.
};
/// Receives each defect. What it throws ends the reading and is passed on.
using TDefectListener = std::function<void(const TDefect&)>;

/// Reads a document from the current position of the descriptor. Returns one namespace for each
/// namespace path in the document; objects without a path are in "root/cimv2", and so is nothing if
/// there is no namespace. Does not close the descriptor; `name` is used in messages.
///
/// Undeclared qualifiers and classes are declared from their uses: a qualifier from its first use,
/// a class at the end of the document, from all objects of it and of its subclasses, and the key
/// bindings of references to it.
///
/// An object that cannot be taken is left out, with a warning that names the object, "line L,
/// column C" and the reason; so is a part of an object. Of many warnings, the first 20 are logged
/// one by one. A date-time that TCIMDateTime refuses is null, also in an array; its text is
/// recorded as the reason in class VORNSG_UnavailableValue, if the instance can be identified.
///
/// Failures are logged. Throws kQDXStatusInvalidDataCollectionDocument for what is not well-formed,
/// is no CIM-XML, has no objects but is a request or an error, or exceeds a limit, with "line L,
/// column C" in the reason; kQDXStatusFileSystemError if the file cannot be read;
/// kQDXStatusInvalidGzipFile for a bad gzip header; kQDXStatusCorruptGzipFile for other errors in
/// the compression.
///
/// With `onDefect`, the document is checked: each defect is passed on, in no particular order,
/// instead of the warnings. These are defects, too: a qualifier outside of its declared
/// scope, and a reference to an instance that the document lacks, unless its namespace, its host or
/// its class is not in the document. If a document turns out not to be well-formed or has an
/// unknown element, that is the last defect before the exception.
boost::shared_ptr<TRepositoryProvider> ReadDocument(const std::string& name, int descriptor,
                                                    const TReadingLimits& limits = {},
                                                    const TDefectListener& onDefect = {});

/// The same for a file by name, or standard input for "-". Throws what TDocumentCache::Read()
/// throws.
boost::shared_ptr<TRepositoryProvider> ReadDocumentFile(const std::string& file,
                                                        const TReadingLimits& limits = {},
                                                        const TDefectListener& onDefect = {});

/// Reads documents by file name, and caches the last one.
class TDocumentCache {
 public:
  explicit TDocumentCache(TReadingLimits limits = {}) : fLimits(std::move(limits)) {}

  /// Returns the document in the file, or on standard input for "-". Reads it again only if the
  /// file has changed since the last call; a pipe is read once. Throws kQDXStatusAccessDenied
  /// without permission and kQDXStatusFileNotFound if the file cannot be opened for another reason,
  /// both logged, and what ReadDocument() throws.
  boost::shared_ptr<TRepositoryProvider> Read(const std::string& file);

 private:
  /// Identifies a state of a file. The time of modification alone can be set back.
  struct TIdentity {
    TIdentity() = default;
    explicit TIdentity(const std::string& file);
    bool operator==(const TIdentity& other) const;

    dev_t fDevice = 0;
    ino_t fInode = 0;
    off_t fSize = 0;
    timespec fTime{};
    timespec fChangeTime{};
  };

  const TReadingLimits fLimits;
  boost::shared_ptr<TRepositoryProvider> fLast;
  TIdentity fLastIdentity;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // QDXCIMXML_DOCUMENT_READER_H_
