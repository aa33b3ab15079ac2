// SPDX-License-Identifier: Apache-2.0
#include "input.h"

#include <qdxoutput/gzip_format.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/read.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include <zlib.h>

#include "document_error.h"
#include "document_limits.h"

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr unsigned char kMagic[] = {0x1F, 0x8B};

/// The first bytes of other compressions, which no XML document has.
constexpr std::pair<std::string_view, const char*> kOtherMagic[] = {
    {"\xFD\x37zXZ", "xz"}, {"\x28\xB5\x2F\xFD", "zstd"}, {"BZh", "bzip2"}, {"PK\x03\x04", "zip"}};
constexpr std::size_t kLongestMagic = 5;

void RefuseOtherCompression(std::string_view start) {
  for (const auto& [magic, name] : kOtherMagic) {
    if (start.substr(0, magic.size()) != magic) continue;
    throw TDocumentError(std::string("it is compressed with ") + name +
                         ", and only gzip is understood: unpack it first");
  }
}

/// A position in compressed data: a byte, without a line.
TDocumentError GzipDefect(const std::string& reason, std::size_t bytes, EQDXStatusCode status) {
  return TDocumentError("gzip: " + reason + ", after " + std::to_string(bytes) + " bytes", {},
                        status);
}

}  // namespace

/// Decompresses one gzip member after the other.
class TDecompressor {
 public:
  TDecompressor() {
    if (inflateInit2(&fStream, kGzipWindowBits) != Z_OK) {
      throw TQDXException(kQDXStatusOutOfMemory);
    }
    inflateGetHeader(&fStream, &fHeader);
  }
  ~TDecompressor() { inflateEnd(&fStream); }
  TDecompressor(const TDecompressor&) = delete;
  TDecompressor& operator=(const TDecompressor&) = delete;

  bool IsAtEndOfMember() const { return fIsAtEnd; }

  /// Decompresses from one buffer into the other, and advances both.
  void Inflate(const unsigned char*& in, std::size_t inSize, char*& out, std::size_t outSize) {
    if (fIsAtEnd) inflateReset(&fStream);
    fStream.next_in = const_cast<Bytef*>(in);  // zlib only reads it
    fStream.avail_in = static_cast<uInt>(inSize);
    fStream.next_out = reinterpret_cast<Bytef*>(out);
    fStream.avail_out = static_cast<uInt>(outSize);
    const int result = inflate(&fStream, Z_NO_FLUSH);
    fConsumed += static_cast<std::size_t>(fStream.next_in - in);
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) Refuse();
    fIsAtEnd = result == Z_STREAM_END;
    in = fStream.next_in;
    out = reinterpret_cast<char*>(fStream.next_out);
  }

 private:
  [[noreturn]] void Refuse() const {
    const bool inHeader = fHeader.done != 1;
    throw GzipDefect(fStream.msg == nullptr ? "bad data" : fStream.msg, fConsumed,
                     inHeader ? kQDXStatusInvalidGzipFile : kQDXStatusCorruptGzipFile);
  }

  z_stream fStream{};
  gz_header fHeader{};  // the header of the first member
  bool fIsAtEnd = false;
  std::size_t fConsumed = 0;  // bytes of all members
};

TInput::TInput(int descriptor, const TReadingLimits& limits)
    : fDescriptor(descriptor), fLimits(limits), fBuffer(new unsigned char[kBufferSize]) {}

TInput::~TInput() = default;

std::size_t TInput::Read(char* buffer, std::size_t size) {
  if (!fIsProbed) Probe();
  const std::size_t length = fDecompressor ? Inflate(buffer, size) : Copy(buffer, size);
  fDelivered += length;
  RequireWithinLimits();
  return length;
}

void TInput::Probe() {
  while (fEnd < kLongestMagic && Fill()) {  // a pipe gives as few bytes as were written at once
  }
  if (fEnd >= sizeof(kMagic) && std::equal(kMagic, kMagic + sizeof(kMagic), fBuffer.get())) {
    fDecompressor = std::make_unique<TDecompressor>();
  }
  RefuseOtherCompression({reinterpret_cast<const char*>(fBuffer.get()), fEnd});
  fIsProbed = true;
}

bool TInput::Fill() {
  if (fBegin == fEnd) fBegin = fEnd = 0;
  const std::size_t length =
      ReadFile(reinterpret_cast<char*>(fBuffer.get()) + fEnd, kBufferSize - fEnd);
  fEnd += length;
  return length > 0;
}

std::size_t TInput::ReadFile(char* buffer, std::size_t size) {
  const ssize_t length = ReadSome(fDescriptor, buffer, size);
  if (length < 0) throw TDocumentError(ErrorText(errno), {}, kQDXStatusFileSystemError);
  fConsumed += static_cast<std::size_t>(length);
  return static_cast<std::size_t>(length);
}

std::size_t TInput::Copy(char* buffer, std::size_t size) {
  if (fBegin == fEnd) return ReadFile(buffer, size);  // without a copy
  const std::size_t length = std::min(size, fEnd - fBegin);
  std::memcpy(buffer, fBuffer.get() + fBegin, length);
  fBegin += length;
  return length;
}

std::size_t TInput::Inflate(char* buffer, std::size_t size) {
  char* out = buffer;
  while (out == buffer) {
    if (fBegin == fEnd && !Fill()) {
      RequireMember();
      return 0;
    }
    if (fDecompressor->IsAtEndOfMember()) SkipPadding();
    if (fBegin == fEnd) continue;
    const unsigned char* in = fBuffer.get() + fBegin;
    fDecompressor->Inflate(in, fEnd - fBegin, out, size);
    fBegin = static_cast<std::size_t>(in - fBuffer.get());
  }
  return static_cast<std::size_t>(out - buffer);
}

/// Tapes and archives pad a file with zeros; no member begins with one.
void TInput::SkipPadding() {
  while (fBegin != fEnd && fBuffer[fBegin] == 0) ++fBegin;
}

void TInput::RequireMember() {
  if (fDecompressor->IsAtEndOfMember()) return;
  throw GzipDefect("the file ends too early", fConsumed, kQDXStatusCorruptGzipFile);
}

void TInput::RequireWithinLimits() const {
  if (fDelivered > fLimits.DocumentBytes()) {
    throw fLimits.Exceeded("larger than " + InMiB(fLimits.DocumentBytes()));
  }
  if (fDelivered > kSmallDocumentBytes && fDelivered / kMaxInflation > fConsumed) {
    throw TDocumentError("more than " + std::to_string(kMaxInflation) +
                         " times its compressed size");
  }
}

}  // namespace NVORNQDX20::NCIMXML
