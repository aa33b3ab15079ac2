// SPDX-License-Identifier: Apache-2.0
/// The file that a document comes from, decompressed if it begins as gzip files do.
#ifndef LIB_CIMXML_XML_INPUT_H_
#define LIB_CIMXML_XML_INPUT_H_

#include <cstddef>
#include <memory>

namespace NVORNQDX20::NCIMXML {

class TDecompressor;

class TInput {
 public:
  /// Reads from the descriptor's position on, and leaves it open.
  explicit TInput(int descriptor);
  ~TInput();
  TInput(const TInput&) = delete;
  TInput& operator=(const TInput&) = delete;

  /// The next bytes of the document, at most `size`; 0 at its end. Throws TDefect:
  /// kQDXStatusFileSystemError for a file that cannot be read, kQDXStatusInvalidGzipFile for a bad
  /// header, kQDXStatusCorruptGzipFile for what else is wrong with the compression, and the usual
  /// status for a document that is too large.
  std::size_t Read(char* buffer, std::size_t size);

 private:
  static constexpr std::size_t kBufferSize = 1 << 16;

  void Probe();
  /// Appends to what is buffered; false at the end of the file.
  bool Fill();
  std::size_t Copy(char* buffer, std::size_t size);
  std::size_t Inflate(char* buffer, std::size_t size);
  void RequireMember();
  void RequireWithinLimits() const;

  const int fDescriptor;
  const std::unique_ptr<unsigned char[]> fBuffer;
  std::size_t fBegin = 0;  // of what is buffered and not used yet
  std::size_t fEnd = 0;
  bool fProbed = false;
  std::unique_ptr<TDecompressor> fDecompressor;
  std::size_t fConsumed = 0;
  std::size_t fDelivered = 0;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_INPUT_H_
