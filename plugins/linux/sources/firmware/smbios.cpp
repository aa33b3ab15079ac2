// SPDX-License-Identifier: Apache-2.0
#include "smbios.h"

#include <qdxdescribe/numbers.h>
#include <qdxdescribe/text.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <utility>

#include "placeholders.h"

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kHeaderSize = 4;
constexpr std::uint8_t kEndOfTable = 127;
/// Handles have 16 bits, and no two structures of a sound table share one.
constexpr std::size_t kMaxStructures = 65536;
/// The strings of sound tables have some dozen characters.
constexpr std::size_t kMaxString = 4096;
const char* const kFolder = "/sys/firmware/dmi";

std::uint8_t ByteOf(std::string_view bytes, std::size_t offset) {
  return offset < bytes.size() ? static_cast<std::uint8_t>(bytes[offset]) : std::uint8_t{0};
}

/// Some firmware writes the digits of its version as one number, as in 2.51 for 2.5.1.
std::uint16_t MendVersion(std::uint16_t version) {
  if (version == 0x021F || version == 0x0221) return 0x0203;
  return version == 0x0233 ? std::uint16_t{0x0206} : version;
}

/// Returns where the structure's strings end: after two zeros. Sets isWhole to false if the table
/// ends before.
std::size_t FindEnd(std::string_view table, std::size_t begin, bool& isWhole) {
  const std::size_t strings = begin + ByteOf(table, begin + 1);
  const std::size_t zeros = table.find(std::string_view("\0\0", 2), strings);
  isWhole = zeros != std::string_view::npos;
  return isWhole ? zeros + 2 : table.size();
}

/// Numbers of type and instance, since names sort "17-10" before "17-2".
std::pair<std::uint64_t, std::uint64_t> EntryNumbers(const std::string& name) {
  const std::size_t hyphen = std::min(name.find('-'), name.size() - 1);
  const auto number = [](const std::string& digits) {
    return ParseNumber(digits).value_or(UINT64_MAX);
  };
  return {number(name.substr(0, hyphen)), number(name.substr(hyphen + 1))};
}

/// Returns the structures one after the other, as in the table.
TReading<std::string> ReadEntries(const TFiles& folder, std::string& flaw) {
  const TReading<std::vector<std::string>> listed = folder.List("entries");
  if (!listed) return Missing(listed.GetReason());
  std::vector<std::string> names = *listed;
  std::sort(names.begin(), names.end(), [](const std::string& one, const std::string& other) {
    return EntryNumbers(one) < EntryNumbers(other);
  });
  std::string table;
  TReason reason;
  for (const std::string& name : names) {
    const TReading<std::string> entry = folder.Read("entries/" + name + "/raw");
    if (reason.empty()) reason = entry.GetReason();
    const std::string bytes = entry.ValueOr("");
    // The end of the table is not the last in this order.
    if (ByteOf(bytes, 0) != kEndOfTable) table += bytes;
    if (table.size() > TFiles::kMaxTableSize) return folder.MissingFrom("entries", "too large");
  }
  if (reason.IsError()) flaw = reason;
  if (!table.empty()) return table;
  return reason.empty() ? folder.MissingFrom("entries", "empty") : Missing(reason);
}

}  // namespace

TReading<std::string> TSMBIOSStructure::ReadString(std::size_t offset) const {
  const TReading<std::uint8_t> number = ReadNumber<std::uint8_t>(offset);
  if (!number) return Missing(number.GetReason());
  if (*number == 0) return MissingFrom("not specified");
  std::string_view strings(*fTable);
  strings = strings.substr(fBegin + GetLength(), fEnd - fBegin - GetLength());
  for (unsigned int index = 1;; ++index) {
    const std::size_t end = strings.find('\0');
    // A string that the end of the table cuts off has no zero.
    if (end == std::string_view::npos || end == 0) {
      return Damaged("has no string " + std::to_string(*number));
    }
    if (index == *number) {
      if (end > kMaxString) return Damaged("string " + std::to_string(index) + " is too long");
      std::string text = PrintableText(strings.substr(0, end));
      if (text.empty()) return MissingFrom("not specified");
      if (IsPlaceholder(text)) return MissingFrom("placeholder text '" + text + "'");
      return text;
    }
    strings.remove_prefix(end + 1);
  }
}

TReading<std::string> TSMBIOSStructure::ReadBytes(std::size_t offset, std::size_t count) const {
  if (!Has(offset, count)) return TooShortFor(offset);
  return fTable->substr(fBegin + offset, count);
}

TMissing TSMBIOSStructure::MissingFrom(const std::string& reason) const {
  return Missing("SMBIOS structure of type " + std::to_string(GetType()) + ": " + reason);
}

TMissing TSMBIOSStructure::Damaged(const std::string& reason) const {
  std::array<char, 48> name{};
  std::snprintf(name.data(), name.size(),
                "SMBIOS structure 0x%04X (type %u): ", static_cast<unsigned int>(GetHandle()),
                static_cast<unsigned int>(GetType()));
  return Missing(name.data() + reason);
}

std::uint64_t TSMBIOSStructure::LittleEndian(std::size_t offset, std::size_t count) const {
  std::uint64_t number = 0;
  for (std::size_t i = count; i > 0; --i) number = number << 8U | ByteAt(offset + i - 1);
  return number;
}

TMissing TSMBIOSStructure::TooShortFor(std::size_t offset) const {
  return MissingFrom("has " + std::to_string(GetLength()) + " bytes, none at offset " +
                     std::to_string(offset));
}

TSMBIOS::TEntryPoint TSMBIOS::ParseEntryPoint(std::string_view bytes) {
  const auto word = [bytes](std::size_t high, std::size_t low) {
    return static_cast<std::uint16_t>(ByteOf(bytes, high) << 8U | ByteOf(bytes, low));
  };
  if (bytes.substr(0, 5) == "_SM3_") return {word(7, 8), 0};
  if (bytes.substr(0, 4) == "_SM_") return {MendVersion(word(6, 7)), word(0x1D, 0x1C)};
  if (bytes.substr(0, 5) == "_DMI_") {
    const unsigned int digits = ByteOf(bytes, 0xE);  // a major and a minor one
    return {static_cast<std::uint16_t>((digits & 0xF0U) << 4U | (digits & 0x0FU)), word(0xD, 0xC)};
  }
  return {};
}

TSMBIOS::TSMBIOS(std::string_view entryPoint, std::string table, std::string flaw)
    : fFlaw(std::move(flaw)) {
  const TEntryPoint entry = ParseEntryPoint(entryPoint);
  fVersion = entry.fVersion;
  const auto bytes = std::make_shared<const std::string>(std::move(table));
  bool isWhole = true;
  std::size_t begin = 0;
  while (isWhole && begin < bytes->size()) {
    if (entry.fCount != 0 && fStructures.size() == entry.fCount) return;
    const std::size_t length = ByteOf(*bytes, begin + 1);
    if (bytes->size() - begin < std::max(length, kHeaderSize) || length < kHeaderSize) break;
    if (fStructures.size() == kMaxStructures) break;
    const std::size_t end = FindEnd(*bytes, begin, isWhole);
    fStructures.push_back(TSMBIOSStructure(bytes, begin, end));
    const TSMBIOSStructure& added = fStructures.back();
    fByHandle.emplace(added.GetHandle(), fStructures.size() - 1);
    begin = end;
    // With a count, what follows a stray mark is read as well.
    if (entry.fCount == 0 && added.GetType() == kEndOfTable) return;
  }
  const bool isEnded = !fStructures.empty() && fStructures.back().GetType() == kEndOfTable;
  const bool isShort = begin < bytes->size() || fStructures.size() < entry.fCount;
  if (!isWhole || (isShort && !isEnded)) {
    fFlaw =
        "the SMBIOS table is damaged after " + std::to_string(fStructures.size()) + " structures";
  }
}

std::vector<TSMBIOSStructure> TSMBIOS::OfType(std::uint8_t type) const {
  std::vector<TSMBIOSStructure> found;
  std::copy_if(fStructures.begin(), fStructures.end(), std::back_inserter(found),
               [type](const TSMBIOSStructure& each) { return each.GetType() == type; });
  return found;
}

const TSMBIOSStructure* TSMBIOS::Find(std::uint16_t handle) const {
  const auto found = fByHandle.find(handle);
  return found == fByHandle.end() ? nullptr : &fStructures[found->second];
}

TReading<TSMBIOS> ReadSMBIOS(const TFiles& files) {
  const TFiles folder = files.In(kFolder);
  if (folder.IsAbsent("")) {
    return Missing("no SMBIOS table: " + folder.PathOf("") + " does not exist");
  }
  const TReading<std::string> first = folder.FirstOf({"tables/DMI", "entries"});
  if (!first) return Missing(first.GetReason());
  std::string flaw;
  const TReading<std::string> table =
      *first == "entries" ? ReadEntries(folder, flaw) : folder.Read(*first, TFiles::kMaxTableSize);
  return table.map([&](const std::string& bytes) {
    return TSMBIOS(folder.Read("tables/smbios_entry_point").ValueOr(""), bytes, flaw);
  });
}

}  // namespace NVORNQDX20
