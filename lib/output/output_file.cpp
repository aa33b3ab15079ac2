// SPDX-License-Identifier: Apache-2.0
#include <qdxoutput/output_file.h>

#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxoutput/gzip_format.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/write.h>

#include <cerrno>
#include <cstddef>
#include <utility>

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

namespace NVORNQDX20 {
namespace {

constexpr int kUnknownSystem = 255;

/// How zlib looks for repetitions, as deflateTune() takes it. Documents are full of long ones.
/// Level 3 takes the first good one instead of looking for a better one; but here, unlike by
/// default, it also remembers places inside of most repetitions. Against the default level this
/// takes about half of the time, and documents are 6 to 18 % larger; level 3 as it is makes them 19
/// to 31 % larger, level 1 up to 49 %.
constexpr int kLevel = 3;
constexpr struct { int fGood, fLazy, fNice, fChain; } kSearch = {8, 200, 258, 32};

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

TDescriptor OpenForWriting(const std::string& file) {
  // A duplicate: closing it reports errors, and standard output stays open.
  if (file == "-") return TDescriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
  return TDescriptor(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
}

}  // namespace

class TCompressor {
 public:
  TCompressor() {
    if (deflateInit2(&fStream, kLevel, Z_DEFLATED, kGzipWindowBits, 8, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
      throw TQDXException(kQDXStatusOutOfMemory);
    }
    deflateTune(&fStream, kSearch.fGood, kSearch.fLazy, kSearch.fNice, kSearch.fChain);
    fHeader.os = kUnknownSystem;
    deflateSetHeader(&fStream, &fHeader);
  }
  ~TCompressor() { deflateEnd(&fStream); }
  TCompressor(const TCompressor&) = delete;
  TCompressor& operator=(const TCompressor&) = delete;

  template <typename TWrite>
  void Compress(std::string_view bytes, bool last, TWrite&& write) {
    // zlib's interface lacks a const; it does not write to the input.
    fStream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    fStream.avail_in = static_cast<uInt>(bytes.size());
    do {
      fStream.next_out = fOut;
      fStream.avail_out = sizeof(fOut);
      deflate(&fStream, last ? Z_FINISH : Z_NO_FLUSH);
      write(
          std::string_view(reinterpret_cast<const char*>(fOut), sizeof(fOut) - fStream.avail_out));
    } while (fStream.avail_out == 0);
  }

 private:
  z_stream fStream{};
  gz_header fHeader{};
  Bytef fOut[1 << 16];
};

TOutputFile::TOutputFile(const std::string& file, const std::string& service)
    : fFile(file),
      fService(service),
      fBuffer(new char[kBufferSize]),
      fCompressor(EndsWith(file, ".gz") ? std::make_unique<TCompressor>() : nullptr),
      fDescriptor(OpenForWriting(file)) {
  Require(fDescriptor.IsOpen());
}

TOutputFile::~TOutputFile() = default;

void TOutputFile::Close() {
  Flush();
  if (fCompressor) {
    fCompressor->Compress({}, true, [this](std::string_view bytes) { WriteToFile(bytes); });
  }
  Require(fDescriptor.Close());
}

void TOutputFile::WriteLong(std::string_view text) {
  Flush();
  for (; text.size() > kBufferSize; text.remove_prefix(kBufferSize)) {
    Pass(text.substr(0, kBufferSize));
  }
  Write(text);
}

void TOutputFile::Flush() {
  Pass({fBuffer.get(), fUsed});
  fUsed = 0;
}

void TOutputFile::Pass(std::string_view bytes) {
  if (fCompressor) {
    fCompressor->Compress(bytes, false, [this](std::string_view packed) { WriteToFile(packed); });
  } else {
    WriteToFile(bytes);
  }
}

void TOutputFile::WriteToFile(std::string_view bytes) {
  Require(WriteAll(fDescriptor.Get(), bytes));
}

void TOutputFile::Require(bool done) const {
  if (done) return;
  const std::string reason = ErrorText(errno);
  LogErrorAndThrow(kQDXStatusFileSystemError,
                   {fService, ": ", fFile == "-" ? "standard output" : fFile, ": ", reason});
}

}  // namespace NVORNQDX20
