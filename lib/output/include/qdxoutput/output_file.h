// SPDX-License-Identifier: Apache-2.0
/// A file that is written from its start to its end, compressed if its name ends in ".gz".
#ifndef QDXOUTPUT_OUTPUT_FILE_H_
#define QDXOUTPUT_OUTPUT_FILE_H_

#include <qdxsystem/descriptor.h>

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
  const std::string fService;
  std::string fBuffer;
  const std::unique_ptr<TCompressor> fCompressor;
  TDescriptor fDescriptor;
};

}  // namespace NVORNQDX20

#endif  // QDXOUTPUT_OUTPUT_FILE_H_
