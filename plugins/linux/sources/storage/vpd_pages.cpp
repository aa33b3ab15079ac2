// SPDX-License-Identifier: Apache-2.0
#include "vpd_pages.h"

#include <algorithm>
#include <array>

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kHeaderSize = 4;

unsigned ByteAt(std::string_view bytes, std::size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}

/// Returns what follows the header, as long as it says; nothing of another page, since a copy that
/// was taken for text has other bytes.
std::string_view PayloadOf(std::string_view page, unsigned code) {
  if (page.size() < kHeaderSize || ByteAt(page, 1) != code) return {};
  return page.substr(kHeaderSize, ByteAt(page, 2) * 256U + ByteAt(page, 3));
}

std::string Hexadecimal(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    text += digits[ByteAt(bytes, i) >> 4U];
    text += digits[ByteAt(bytes, i) & 15U];
  }
  return text;
}

constexpr std::size_t kIdentifyOffset = 60 - kHeaderSize;
constexpr std::size_t kIdentifySize = 512;

/// Words of 16 bits, the low byte first.
unsigned WordAt(std::string_view identify, std::size_t index) {
  return ByteAt(identify, index * 2) | ByteAt(identify, index * 2 + 1) << 8U;
}

/// In texts of ATA, the first character is the high byte of the word.
std::string TextAt(std::string_view identify, std::size_t firstWord, std::size_t words) {
  std::string text;
  for (std::size_t i = firstWord; i < firstWord + words; ++i) {
    text += static_cast<char>(WordAt(identify, i) >> 8U);
    text += static_cast<char>(WordAt(identify, i) & 0xffU);
  }
  return PrintableText(text);
}

std::uint64_t LinkSpeedOf(std::string_view identify) {
  constexpr std::array<std::uint64_t, 4> kSpeeds = {0, 1'500'000'000, 3'000'000'000, 6'000'000'000};
  const unsigned generation = WordAt(identify, 77) >> 1U & 7U;
  return generation < kSpeeds.size() ? kSpeeds[generation] : 0;
}

}  // namespace

std::string ParseSerialNumberPage(std::string_view page) {
  // Some bridges give a length that is too small, so the whole rest counts.
  return page.size() > kHeaderSize ? PrintableText(page.substr(kHeaderSize)) : std::string();
}

std::string ParseIdentificationPage(std::string_view page) {
  constexpr unsigned kEUI64 = 2, kNAA = 3;
  std::string_view names[4];  // by type; only those of the disk itself, not of its port
  for (std::string_view rest = PayloadOf(page, 0x83); rest.size() >= kHeaderSize;) {
    const std::string_view name = rest.substr(kHeaderSize, ByteAt(rest, 3));
    const unsigned type = ByteAt(rest, 1) & 15U;
    const bool isOfDisk = (ByteAt(rest, 1) >> 4U & 3U) == 0;
    if (isOfDisk && (type == kEUI64 || type == kNAA) && name.size() > names[type].size()) {
      names[type] = name;
    }
    rest.remove_prefix(std::min(kHeaderSize + name.size(), rest.size()));
  }
  if (!names[kNAA].empty()) return "naa." + Hexadecimal(names[kNAA]);
  return names[kEUI64].empty() ? std::string() : "eui." + Hexadecimal(names[kEUI64]);
}

TDiskBuild ParseCharacteristicsPage(std::string_view page) {
  const std::string_view payload = PayloadOf(page, 0xb1);
  return {static_cast<std::uint16_t>(ByteAt(payload, 0) << 8U | ByteAt(payload, 1)),
          static_cast<std::uint8_t>(ByteAt(payload, 3) & 15U)};
}

TATAIdentity ParseATAPage(std::string_view page) {
  const std::string_view payload = PayloadOf(page, 0x89);
  if (payload.size() < kIdentifyOffset + kIdentifySize) return {};
  const std::string_view identify = payload.substr(kIdentifyOffset, kIdentifySize);
  return {TextAt(identify, 27, 20), TextAt(identify, 10, 10), TextAt(identify, 23, 4),
          TDiskBuild{static_cast<std::uint16_t>(WordAt(identify, 217)),
                     static_cast<std::uint8_t>(WordAt(identify, 168) & 15U)},
          LinkSpeedOf(identify)};
}

}  // namespace NVORNQDX20
