// SPDX-License-Identifier: Apache-2.0
/// A file that is written from its start to its end, compressed if its name ends in ".gz".
#ifndef QDXOUTPUT_OUTPUT_FILE_H_
#define QDXOUTPUT_OUTPUT_FILE_H_

#include <qdxsystem/descriptor.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace NVORNQDX20 {

class TCompressor;

/// Failures are logged with the file and the reason, and throw kQDXStatusFileSystemError.
class TOutputFile {
 public:
  /// "-" is standard output. An existing file is truncated and keeps its mode; a new one gets mode
  /// 0600. A gzip file has no name and time in its header, so that equal contents give equal files.
  /// Messages begin with the name of the service that writes.
  TOutputFile(const std::string& file, const std::string& service);
  /// Leaves an incomplete file unless Close() was called.
  ~TOutputFile();
  TOutputFile(const TOutputFile&) = delete;
  TOutputFile& operator=(const TOutputFile&) = delete;

  /// Inline, since a document is written in pieces of a few bytes.
  void Write(std::string_view text) {
    if (text.size() > kBufferSize - fUsed) return WriteLong(text);
    std::memcpy(fBuffer.get() + fUsed, text.data(), text.size());
    fUsed += text.size();
  }
  void Close();
  const std::string& GetFile() const { return fFile; }

 private:
  static constexpr std::size_t kBufferSize = 1 << 16;

  /// Writes what does not fit into the rest of the buffer.
  void WriteLong(std::string_view text);
  void Flush();
  void Pass(std::string_view bytes);
  void WriteToFile(std::string_view bytes);
  void Require(bool done) const;

  const std::string fFile;
  const std::string fService;
  const std::unique_ptr<char[]> fBuffer;
  std::size_t fUsed = 0;
  const std::unique_ptr<TCompressor> fCompressor;
  TDescriptor fDescriptor;
};

}  // namespace NVORNQDX20

#endif  // QDXOUTPUT_OUTPUT_FILE_H_
