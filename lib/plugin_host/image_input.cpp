// SPDX-License-Identifier: Apache-2.0
#include "image_input.h"

#include <qdxcore/status.h>
#include <qdxsystem/utf8.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace NVORNQDX20::NPluginHost {
namespace {

constexpr std::size_t kAtOnce = std::size_t{1} << 16U;
constexpr std::size_t kLongestText = std::size_t{128} << 20U;

bool IsWhiteSpace(char32_t character) {
  return character == '\t' || character == '\n' || character == '\r';
}

bool IsHeld(char32_t character) {
  return (character >= 0x20 && character != 0xFFFE && character != 0xFFFF) ||
         IsWhiteSpace(character);
}

bool IsPlain(char byte) { return byte >= 0x20; }  // ASCII: bytes from 128 on are negative

}  // namespace

void TImageInput::Fail(const std::string& what) const {
  throw TExplainedException(kQDXStatusInvalidPlugin,
                            what + ", before byte " + std::to_string(fOffset - fBytes.size()));
}

void TImageInput::FailForLackOfRoom() const {
  throw TExplainedException(kQDXStatusInvalidPlugin, "it needs too much memory");
}

/// Gets more bytes until so many are there. Only what was read takes memory, not what is claimed.
void TImageInput::Fill(std::size_t size) {
  while (fBytes.size() < size) {
    if (!Refill()) Fail("it ends early");
  }
}

bool TImageInput::Refill() {
  const std::size_t left = fBytes.size();
  // Twice as much each time, so that a long text is not moved too often.
  const std::size_t wanted = left + std::max(kAtOnce, left);
  if (fCapacity < wanted) {
    std::unique_ptr<char[]> larger(new char[wanted]);  // not initialised: most images are short
    std::copy_n(fBytes.data(), left, larger.get());
    fBuffer = std::move(larger);
    fCapacity = wanted;
  } else {
    std::memmove(fBuffer.get(), fBytes.data(), left);
  }
  fBytes = {fBuffer.get(), left};
  const std::size_t count = fRead(fBuffer.get() + left, fCapacity - left);
  fBytes = {fBuffer.get(), left + count};
  fOffset += count;
  return count != 0;
}

std::uint64_t TImageInput::ReadNumber() {
  std::uint64_t number = 0;
  for (unsigned int shift = 0; shift < 64; shift += 7) {
    const std::uint64_t byte = Byte();
    number |= (byte & 0x7FU) << shift;
    if (byte < 0x80) return number;
  }
  Fail("a number without end");
}

std::string_view TImageInput::TextView() {
  const auto size = Number<std::size_t>();
  if (size > kLongestText) Fail("a text that is too long");
  Hold(size);
  std::string_view text = Take(size);
  if (std::all_of(text.begin(), text.end(), IsPlain)) return text;
  std::string held;
  const std::size_t replacedBefore = fReplaced;
  for (std::string_view rest = text; !rest.empty();) {
    const auto [bytes, codePoint] = TakeCharacter(rest);
    if (codePoint && IsHeld(*codePoint)) {
      held += bytes;
    } else {
      for (std::size_t i = 0; i < bytes.size(); ++i) held += "\xEF\xBF\xBD";
      fReplaced += bytes.size();
    }
  }
  if (fReplaced == replacedBefore) return text;
  Hold(3 * size);
  fReplacing = std::move(held);
  return fReplacing;
}

}  // namespace NVORNQDX20::NPluginHost
