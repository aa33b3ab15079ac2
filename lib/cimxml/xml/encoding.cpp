// SPDX-License-Identifier: Apache-2.0
#include "encoding.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include <iconv.h>

namespace NVORNQDX20::NCIMXML {
namespace {

class TConverter {
 public:
  explicit TConverter(const char* encoding) : fHandle(::iconv_open("UTF-32LE", encoding)) {}
  ~TConverter() {
    if (IsOpen()) ::iconv_close(fHandle);
  }
  TConverter(const TConverter&) = delete;
  TConverter& operator=(const TConverter&) = delete;

  // iconv_open() returns -1 as a pointer.
  bool IsOpen() const { return reinterpret_cast<std::intptr_t>(fHandle) != -1; }

  enum class EResult { kCharacter, kNone, kPart };

  EResult Convert(char byte, int& codePoint) {
    unsigned char converted[4] = {};
    char* in = &byte;
    char* out = reinterpret_cast<char*>(converted);
    std::size_t inSize = 1;
    std::size_t outSize = sizeof(converted);
    ::iconv(fHandle, nullptr, nullptr, nullptr, nullptr);
    errno = 0;
    const bool isDone =
        ::iconv(fHandle, &in, &inSize, &out, &outSize) != static_cast<std::size_t>(-1);
    if (!isDone && errno == EINVAL) return EResult::kPart;
    if (!isDone) return EResult::kNone;
    if (outSize != 0) return EResult::kPart;  // the state of the encoding changed
    codePoint = converted[0] | converted[1] << 8 | converted[2] << 16;
    return EResult::kCharacter;
  }

 private:
  const iconv_t fHandle;
};

}  // namespace

bool FillEncoding(const char* name, int (&map)[256]) {
  TConverter converter(name);
  if (!converter.IsOpen()) return false;
  for (int byte = 0; byte < 256; ++byte) {
    map[byte] = -1;
    const auto result = converter.Convert(static_cast<char>(byte), map[byte]);
    if (result == TConverter::EResult::kPart) return false;
  }
  return true;
}

}  // namespace NVORNQDX20::NCIMXML
