// SPDX-License-Identifier: Apache-2.0
#include "lvm_metadata.h"

#include <qdxdescribe/numbers.h>
#include <qdxdescribe/text.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

namespace NVORNQDX20 {
namespace {

/// Groups, volumes, and segments are at the fourth level.
constexpr int kMaxDepth = 8;
/// Some 5,000 volumes have as many.
constexpr std::size_t kMaxSettings = 100'000;
/// LVM's own names have up to 127 characters.
constexpr std::size_t kMaxName = 128;
constexpr std::uint64_t kSector = 512;

bool IsBlank(char character) {
  return std::string_view(" \t\r\n").find(character) != std::string::npos;
}

/// Whether a word has it: a name or a number.
bool IsOfWord(char character) {
  return !IsBlank(character) && std::string_view("={}[],\"#").find(character) == std::string::npos;
}

class TParser {
 public:
  explicit TParser(std::string_view text) : fText(text) {}

  TReading<TLVMSection> Parse() {
    TLVMSection top;
    ParseSettings(top, 0);
    if (!fError.empty()) return Missing("line " + std::to_string(Line()) + ": " + fError);
    return top;
  }

 private:
  void ParseSettings(TLVMSection& section, int depth) {
    while (fError.empty()) {
      Skip();
      if (IsAtEnd() || Peek() == '}') {
        if (IsAtEnd() != (depth == 0)) fError = depth == 0 ? "'}' without '{'" : "no '}'";
        return;
      }
      std::string name = TakeWord();
      if (name.empty() || name.size() > kMaxName) return Fail("no name");
      if (++fSettings > kMaxSettings) return Fail("too many settings");
      Skip();
      if (Take('=')) {
        ParseValue(section.fValues[std::move(name)]);
      } else if (Take('{')) {
        if (depth + 1 == kMaxDepth) return Fail("too many sections in each other");
        TLVMSection inner;
        inner.fName = std::move(name);
        ParseSettings(inner, depth + 1);
        if (fError.empty() && !Take('}')) return Fail("no '}'");
        section.fSections.push_back(std::move(inner));
      } else {
        return Fail("neither '=' nor '{'");
      }
    }
  }

  void ParseValue(std::vector<std::string>& values) {
    values.clear();
    Skip();
    if (!Take('[')) return ParseScalar(values);
    for (Skip(); !Take(']'); Skip()) {
      if (!values.empty() && !Take(',')) return Fail("neither ',' nor ']'");
      Skip();
      if (++fSettings > kMaxSettings) return Fail("too many settings");
      ParseScalar(values);
      if (!fError.empty()) return;
    }
  }

  void ParseScalar(std::vector<std::string>& values) {
    if (Take('"')) return ParseString(values);
    values.push_back(TakeWord());
    if (values.back().empty()) Fail("no value");
  }

  void ParseString(std::vector<std::string>& values) {
    std::string text;
    while (!IsAtEnd() && Peek() != '"') {
      if (Peek() == '\\' && fAt + 1 < fText.size()) ++fAt;
      text += fText[fAt++];
    }
    if (!Take('"')) return Fail("a text without an end");
    values.push_back(std::move(text));
  }

  std::string TakeWord() {
    const std::size_t begin = fAt;
    while (!IsAtEnd() && IsOfWord(Peek())) ++fAt;
    return std::string(fText.substr(begin, fAt - begin));
  }

  void Skip() {
    while (!IsAtEnd() && (IsBlank(Peek()) || Peek() == '#')) {
      fAt = Peek() == '#' ? std::min(fText.find('\n', fAt), fText.size()) : fAt + 1;
    }
  }

  bool IsAtEnd() const { return fAt >= fText.size(); }
  char Peek() const { return fText[fAt]; }
  bool Take(char character) {
    if (IsAtEnd() || Peek() != character) return false;
    ++fAt;
    return true;
  }
  void Fail(const char* error) { fError = error; }
  std::size_t Line() const {
    const std::string_view before = fText.substr(0, fAt);
    return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  }

  std::string_view fText;
  std::size_t fAt = 0;
  std::size_t fSettings = 0;
  std::string fError;
};

/// The sum; null if 64 bits are not enough.
std::optional<std::uint64_t> Sum(std::uint64_t one, std::uint64_t other) {
  if (one > std::numeric_limits<std::uint64_t>::max() - other) return std::nullopt;
  return one + other;
}

/// The extents that are in use, by the names of the physical volumes: a striped segment has equally
/// many in each. What other kinds of segments are made of are volumes with segments themselves.
using TUsed = std::map<std::string, TNumber>;

void AddSegment(const TLVMSection& segment, TUsed& used) {
  const std::vector<std::string> stripes = segment.GetList("stripes");
  const TNumber each = Scaled(segment.GetNumber("extent_count"), 1, stripes.size() / 2);
  for (std::size_t i = 0; i + 1 < stripes.size(); i += 2) {
    const auto found = used.find(stripes[i]);
    if (found == used.end()) continue;
    found->second = found->second.and_then([&each](std::uint64_t before) {
      return each.and_then([before](std::uint64_t more) -> TNumber {
        const auto sum = Sum(before, more);
        return sum ? TNumber(*sum) : TNumber(Missing("the extents are out of range"));
      });
    });
  }
}

TUsed CountUsed(const TLVMSection& group, const TLVMSection& physical) {
  TUsed used;
  for (const TLVMSection& each : physical.fSections) used[each.fName] = std::uint64_t{0};
  const TLVMSection* const volumes = group.Find("logical_volumes");
  if (volumes == nullptr) return used;
  for (const TLVMSection& volume : volumes->fSections) {
    for (const TLVMSection& segment : volume.fSections) AddSegment(segment, used);
  }
  return used;
}

/// Adds all numbers; missing if one is.
TNumber SumOf(const std::vector<TPhysicalVolume>& volumes, TNumber TPhysicalVolume::*number) {
  TNumber sum = std::uint64_t{0};
  for (const TPhysicalVolume& volume : volumes) {
    const TNumber& each = volume.*number;
    if (!each) return each;
    const auto more = Sum(*sum, *each);
    if (!more) return Missing("the extents are out of range");
    sum = *more;
  }
  return sum;
}

std::vector<TPhysicalVolume> PhysicalVolumesOf(const TLVMSection& group) {
  std::vector<TPhysicalVolume> volumes;
  const TLVMSection* const physical = group.Find("physical_volumes");
  if (physical == nullptr) return volumes;
  const TUsed used = CountUsed(group, *physical);
  volumes.reserve(physical->fSections.size());
  for (const TLVMSection& each : physical->fSections) {
    volumes.push_back({PrintableText(each.fName), each.Get("id"), each.Get("device"),
                       Scaled(each.GetNumber("dev_size"), kSector), each.GetNumber("pe_count"),
                       used.at(each.fName), each.GetList("status")});
  }
  return volumes;
}

/// Those that LVM makes for itself are not visible.
std::vector<std::string> LogicalVolumesOf(const TLVMSection& group) {
  std::vector<std::string> names;
  const TLVMSection* const volumes = group.Find("logical_volumes");
  if (volumes == nullptr) return names;
  for (const TLVMSection& volume : volumes->fSections) {
    const std::vector<std::string> status = volume.GetList("status");
    if (std::find(status.begin(), status.end(), "VISIBLE") == status.end()) continue;
    names.push_back(PrintableText(volume.fName));
  }
  return names;
}

}  // namespace

const TLVMSection* TLVMSection::Find(std::string_view name) const {
  const auto found =
      std::find_if(fSections.begin(), fSections.end(),
                   [name](const TLVMSection& section) { return section.fName == name; });
  return found == fSections.end() ? nullptr : &*found;
}

TText TLVMSection::Get(const std::string& name) const {
  const auto found = fValues.find(name);
  if (found == fValues.end() || found->second.empty())
    return Missing("the saved text has no " + name);
  return PrintableText(found->second.front());
}

TNumber TLVMSection::GetNumber(const std::string& name) const { return ToNumber(Get(name), name); }

std::vector<std::string> TLVMSection::GetList(const std::string& name) const {
  std::vector<std::string> list;
  const auto found = fValues.find(name);
  if (found == fValues.end()) return list;
  for (const std::string& text : found->second) list.push_back(PrintableText(text));
  return list;
}

TReading<TLVMSection> ParseLVMText(std::string_view text) { return TParser(text).Parse(); }

TReading<TVolumeGroup> ParseVolumeGroup(const std::string& source, std::string_view text) {
  const TReading<TLVMSection> parsed = ParseLVMText(text);
  if (!parsed) return Failed(source + ": " + parsed.GetReason());
  if (parsed->fSections.size() != 1) return Failed(source + ": is not of one volume group");
  const TLVMSection& section = parsed->fSections.front();
  TVolumeGroup group;
  group.fName = PrintableText(section.fName);
  group.fUUID = section.Get("id");
  group.fSequence = section.GetNumber("seqno");
  group.fExtentSize = Scaled(section.GetNumber("extent_size"), kSector);
  group.fStatus = section.GetList("status");
  group.fLogicalVolumes = LogicalVolumesOf(section);
  group.fPhysicalVolumes = PhysicalVolumesOf(section);
  group.fExtents = SumOf(group.fPhysicalVolumes, &TPhysicalVolume::fExtents);
  const TNumber used = SumOf(group.fPhysicalVolumes, &TPhysicalVolume::fUsedExtents);
  group.fFreeExtents = group.fExtents.and_then([&](std::uint64_t all) {
    return used.and_then([&](std::uint64_t taken) -> TNumber {
      if (taken <= all) return all - taken;
      return Missing(source + ": has more extents in use than there are");
    });
  });
  return group;
}

TLVMNames ParseLVMMapperUUID(std::string_view uuid) {
  constexpr std::string_view kPrefix = "LVM-";
  constexpr std::size_t kSize = 32;
  if (uuid.substr(0, kPrefix.size()) != kPrefix) return {};
  uuid.remove_prefix(kPrefix.size());
  const std::string_view both = uuid.substr(0, 2 * kSize);
  const bool isWhole = both.size() == 2 * kSize && both.find('-') == std::string_view::npos;
  const bool isEnded = uuid.size() == both.size() || uuid[both.size()] == '-';
  if (!isWhole || !isEnded) return {};
  return {std::string(both.substr(0, kSize)), std::string(both.substr(kSize))};
}

std::string WithoutHyphens(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '-'), text.end());
  return text;
}

}  // namespace NVORNQDX20
