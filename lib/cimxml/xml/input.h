// SPDX-License-Identifier: Apache-2.0
/// The input of a document; decompresses gzip files, which it detects by their first bytes.
#ifndef LIB_CIMXML_XML_INPUT_H_
#define LIB_CIMXML_XML_INPUT_H_

#include <cstddef>
#include <memory>

#include "document_limits.h"

namespace NVORNQDX20::NCIMXML {

class TDecompressor;

class TInput {
 public:
  /// Reads from the current position of the descriptor. Does not close it.
  TInput(int descriptor, const TReadingLimits& limits);
  ~TInput();
  TInput(const TInput&) = delete;
  TInput& operator=(const TInput&) = delete;

  /// Reads up to `size` bytes of the document and returns their number; 0 at the end. Throws
  /// TDocumentError: kQDXStatusFileSystemError if the file cannot be read,
  /// kQDXStatusInvalidGzipFile for a bad gzip header, kQDXStatusCorruptGzipFile for other errors in
  /// the compression, and its default status if the document is too large.
  std::size_t Read(char* buffer, std::size_t size);

 private:
  static constexpr std::size_t kBufferSize = 1 << 16;

  void Probe();
  /// Reads more into the buffer; returns false at the end of the file.
  bool Fill();
  /// Returns 0 at the end of the file.
  std::size_t ReadFile(char* buffer, std::size_t size);
  std::size_t Copy(char* buffer, std::size_t size);
  std::size_t Inflate(char* buffer, std::size_t size);
  void SkipPadding();
  void RequireMember();
  void RequireWithinLimits() const;

  const int fDescriptor;
  const TDocumentLimits fLimits;
  const std::unique_ptr<unsigned char[]> fBuffer;
  std::size_t fBegin = 0;  // start of the unused part of the buffer
  std::size_t fEnd = 0;
  bool fIsProbed = false;
  std::unique_ptr<TDecompressor> fDecompressor;
  std::size_t fConsumed = 0;
  std::size_t fDelivered = 0;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_INPUT_H_
