// SPDX-License-Identifier: Apache-2.0
/// The output file of a document, compressed if its name ends in ".gz".
#ifndef LIB_CIMXML_XML_OUTPUT_H_
#define LIB_CIMXML_XML_OUTPUT_H_

#include <qdxsystem/descriptor.h>

#include <memory>
#include <string>
#include <string_view>

namespace NVORNQDX20::NCIMXML {

class TCompressor;

/// Failures are logged with the file and the reason, and throw kQDXStatusFileSystemError.
class TOutput {
 public:
  /// "-" is standard output. An existing file is truncated and keeps its mode; a new one gets mode
  /// 0600. A gzip file has no name and time in its header, so that equal contents give equal files.
  explicit TOutput(const std::string& file);
  /// Leaves an incomplete file unless Close() was called.
  ~TOutput();
  TOutput(const TOutput&) = delete;
  TOutput& operator=(const TOutput&) = delete;

  void Write(std::string_view text) {
    fBuffer += text;
    if (fBuffer.size() >= kBufferSize) Flush();
  }
  void Close();
  const std::string& GetFile() const { return fFile; }

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
