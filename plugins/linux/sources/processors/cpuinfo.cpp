// SPDX-License-Identifier: Apache-2.0
#include "cpuinfo.h"

#include <optional>
#include <utility>
#include <vector>

namespace NVORNQDX20 {
namespace {

/// The first line of a block.
struct TBlockStart {
  std::size_t fOffset;
  unsigned fProcessor;
  bool fIsDetailed;  // describes a processor again that had a single line before
};

std::optional<unsigned> ParseProcessor(std::string_view digits) {
  const auto number = ParseNumber<unsigned>(digits);
  return number && *number < kMaxCPUs ? number : std::nullopt;
}

/// Returns the number after the prefix: 7 in "CPU7".
std::optional<unsigned> NumberAfter(std::string_view name, std::string_view prefix) {
  if (name.substr(0, prefix.size()) != prefix) return std::nullopt;
  return ParseProcessor(name.substr(prefix.size()));
}

std::optional<TBlockStart> ParseBlockStart(std::string_view line, std::size_t offset) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const std::string name = PrintableText(line.substr(0, colon));
  // Most lines begin otherwise; their values can be long.
  if (name.substr(0, 9) != "processor" && name.substr(0, 3) != "CPU" && name != "cpu number") {
    return std::nullopt;
  }
  const std::string value = PrintableText(line.substr(colon + 1));
  const bool isDetailed = name == "cpu number";
  std::optional<unsigned> number;
  if (isDetailed || name == "processor") {
    number = ParseProcessor(value);
  } else if (name.substr(0, 3) == "CPU") {
    number = value == "online" ? NumberAfter(name, "CPU") : std::nullopt;
  } else {
    number = NumberAfter(name, "processor ");
  }
  if (!number) return std::nullopt;
  return TBlockStart{offset, *number, isDetailed};
}

std::vector<TBlockStart> FindStarts(std::string_view text) {
  std::vector<TBlockStart> starts;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t offset = text.size() - rest.size();
    if (const auto start = ParseBlockStart(TakeLine(rest), offset)) starts.push_back(*start);
  }
  return starts;
}

}  // namespace

TText TCPUFields::Get(std::initializer_list<const char*> names) const {
  for (const char* name : names) {
    if (TText value = fOwn.Get(name)) return value;
    if (TText value = fCommon->Get(name)) return value;
  }
  return fOwn.Get(*names.begin());
}

TCPUInfo::TCPUInfo(TText file) : fFile(std::move(file)), fCommon(kPath, fFile, ':') {
  if (!fFile || fFile->find(':') == std::string::npos) return;
  FindBlocks();
  if (!fProcessors.empty()) return;
  const unsigned count = fCommon.GetNumber<unsigned>("cpus active").ValueOr(1);
  for (unsigned i = 0; i < count && i < kMaxCPUs; ++i) fProcessors.insert(i);
}

void TCPUInfo::FindBlocks() {
  const std::string_view text = *fFile;
  const std::vector<TBlockStart> starts = FindStarts(text);
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t end = i + 1 < starts.size() ? starts[i + 1].fOffset : text.size();
    const std::string_view block = text.substr(starts[i].fOffset, end - starts[i].fOffset);
    const auto added = fBlocks.try_emplace(starts[i].fProcessor, block);
    if (starts[i].fIsDetailed) added.first->second = block;
    fProcessors.insert(starts[i].fProcessor);
  }
  if (starts.empty()) return;
  std::string common(text.substr(0, starts.front().fOffset));
  common += text.substr(starts.back().fOffset);
  fCommon = TFields(kPath, std::string_view(common), ':');
}

TCPUFields TCPUInfo::FieldsOf(unsigned processor) const {
  if (!fFile) return {fCommon, &fCommon};
  const auto block = fBlocks.find(processor);
  const std::string_view own = block == fBlocks.end() ? std::string_view() : block->second;
  return {TFields(kPath, own, ':'), &fCommon};
}

}  // namespace NVORNQDX20
