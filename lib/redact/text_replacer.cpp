// SPDX-License-Identifier: Apache-2.0
#include "text_replacer.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <utility>

namespace NVORNQDX20::NRedact {
namespace {

constexpr std::size_t kStart = 4;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsHexadecimal(char c) {
  const char lower = NModel::Lower(c);
  return IsDigit(c) || (lower >= 'a' && lower <= 'f');
}

/// Bytes above 127 are part of letters.
bool IsWord(char c) {
  const char lower = NModel::Lower(c);
  return IsDigit(c) || (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(c) > 127;
}

std::uint32_t ByteAt(std::string_view text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(NModel::Lower(text[at])) : 0;
}

std::size_t PairAt(std::string_view text, std::size_t at) {
  return ByteAt(text, at) << 8 | ByteAt(text, at + 1);
}

/// Returns the first bytes as a number, at most `size` of them.
std::uint32_t StartAt(std::string_view text, std::size_t at, std::size_t size) {
  std::uint32_t start = 0;
  for (std::size_t i = 0; i < kStart; ++i)
    start = start << 8 | (i < size ? ByteAt(text, at + i) : 0);
  return start;
}

/// Returns whether what is beside the characters from `begin` to `end` may be there.
bool MayBeBeside(EBeside beside, std::string_view text, std::size_t begin, std::size_t end) {
  const auto at = [text](std::size_t place) { return place < text.size() ? text[place] : '\0'; };
  const auto isBefore = [&](std::size_t distance, const auto& is) {
    return begin >= distance && is(text[begin - distance]);
  };
  const auto isChar = [](char wanted) { return [wanted](char c) { return c == wanted; }; };
  switch (beside) {
    case EBeside::kAnything:
      return true;
    case EBeside::kNoWord:
      return !isBefore(1, IsWord) && !IsWord(at(end));
    case EBeside::kNoIPv4:
      return !isBefore(1, IsDigit) && !(isBefore(1, isChar('.')) && isBefore(2, IsDigit)) &&
             !IsDigit(at(end)) && !(at(end) == '.' && IsDigit(at(end + 1)));
    case EBeside::kNoHexadecimal:
      return !isBefore(1, IsHexadecimal) &&
             !(isBefore(1, isChar(':')) &&
               (isBefore(2, IsHexadecimal) || isBefore(2, isChar(':')))) &&
             !IsHexadecimal(at(end)) &&
             !(at(end) == ':' && (IsHexadecimal(at(end + 1)) || at(end + 1) == ':'));
  }
  return true;
}

std::string Capitals(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

bool HasCapitals(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

/// Returns where the names begin that end with a dot before `end`; `end` if there are none.
std::size_t BeginOfNames(std::string_view text, std::size_t least, std::size_t end) {
  if (end < least + 2 || text[end - 1] != '.') return end;
  const auto isName = [](char c) { return IsWord(c) || c == '-' || c == '_' || c == '.'; };
  std::size_t begin = end;
  while (begin > least && isName(text[begin - 1])) --begin;
  while (begin + 1 < end && text[begin] == '.') ++begin;
  return begin + 1 < end ? begin : end;
}

std::string ReplacementOf(const TReplacement& replacement, std::string_view found) {
  if (found == replacement.fFrom) return replacement.fTo;
  if (replacement.fOtherCase) return replacement.fOtherCase(std::string(found));
  return HasCapitals(found) ? Capitals(replacement.fTo) : replacement.fTo;
}

}  // namespace

void TTextReplacer::Add(TReplacement replacement) {
  const std::string& from = replacement.fFrom;
  if (from.size() < 2) return;
  const auto [known, isNew] = fByText.try_emplace(NModel::Folded(from), fAll.size());
  if (!isNew) {
    TReplacement& other = fAll[known->second];
    if (replacement.fBeside == EBeside::kAnything) other.fBeside = EBeside::kAnything;
    if (!other.fBefore) other.fBefore = std::move(replacement.fBefore);
    return;
  }
  fPairs.set(PairAt(from, 0));
  auto& lengths = fByStart[StartAt(from, 0, from.size())];
  const auto place =
      std::lower_bound(lengths.begin(), lengths.end(), from.size(), std::greater<>());
  if (place == lengths.end() || *place != from.size()) lengths.insert(place, from.size());
  fAll.push_back(std::move(replacement));
}

const TReplacement* TTextReplacer::FindAt(std::string_view text, std::size_t at) const {
  for (std::size_t size = kStart; size >= 2; --size) {
    const auto found = fByStart.find(StartAt(text, at, size));
    if (found == fByStart.end()) continue;
    for (const std::size_t length : found->second) {
      if (length > text.size() - at) continue;
      const auto known = fByText.find(NModel::Folded(text.substr(at, length)));
      if (known == fByText.end()) continue;
      const TReplacement& each = fAll[known->second];
      if (MayBeBeside(each.fBeside, text, at, at + length)) return &each;
    }
  }
  return nullptr;
}

std::string TTextReplacer::Replace(std::string_view text) const {
  std::string result;
  std::size_t copied = 0;
  for (std::size_t at = 0; at + 1 < text.size();) {
    const TReplacement* const found = fPairs.test(PairAt(text, at)) ? FindAt(text, at) : nullptr;
    if (found == nullptr) {
      ++at;
      continue;
    }
    const std::size_t size = found->fFrom.size();
    const std::size_t begin = found->fBefore ? BeginOfNames(text, copied, at) : at;
    result.append(text, copied, begin - copied);
    if (begin != at)
      result += found->fBefore(std::string(text.substr(begin, at - begin - 1))) + ".";
    result += ReplacementOf(*found, text.substr(at, size));
    at += size;
    copied = at;
  }
  return result.append(text, copied, std::string_view::npos);
}

}  // namespace NVORNQDX20::NRedact
