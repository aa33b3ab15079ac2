// SPDX-License-Identifier: Apache-2.0
/// The file that a document goes to, compressed if its name asks for it.
#ifndef LIB_CIMXML_XML_OUTPUT_H_
#define LIB_CIMXML_XML_OUTPUT_H_

#include <qdxsystem/descriptor.h>

#include <memory>
#include <string>
#include <string_view>

namespace NVORNQDX20::NCIMXML {

class TCompressor;

/// Every failure is logged with the file and the reason, and throws kQDXStatusFileSystemError.
class TOutput {
 public:
  /// "-" is standard output. A file that exists is emptied and keeps its mode; a new one is the
  /// owner's alone. A name that ends in ".gz" makes it a gzip file, without name and time, so that
  /// equal contents give equal files.
  explicit TOutput(const std::string& file);
  /// Leaves what was written so far as it is: only Close() makes it whole.
  ~TOutput();
  TOutput(const TOutput&) = delete;
  TOutput& operator=(const TOutput&) = delete;

  void Write(std::string_view text) {
    fBuffer += text;
    if (fBuffer.size() >= kBufferSize) Flush();
  }
  void Close();
  const std::string& File() const { return fFile; }

 private:
  static constexpr std::size_t kBufferSize = 1 << 16;

  void Flush();
  void WriteToFile(std::string_view bytes);
  void Require(bool done) const;

  const std::string fFile;
  std::string fBuffer;
  const std::unique_ptr<TCompressor> fCompressor;
  TDescriptor fDescriptor;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_OUTPUT_H_
