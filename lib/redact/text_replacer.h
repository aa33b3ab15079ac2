// SPDX-License-Identifier: Apache-2.0
/// Replaces many strings in texts, whatever the case of their letters.
#ifndef LIB_REDACT_TEXT_REPLACER_H_
#define LIB_REDACT_TEXT_REPLACER_H_

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace NVORNQDX20::NRedact {

/// What may be beside a string that is replaced.
enum class EBeside {
  kAnything,
  kNoWord,         ///< No letter and no digit.
  kNoIPv4,         ///< Nothing that makes a dotted number longer.
  kNoHexadecimal,  ///< No hexadecimal digit, nor a colon between it and one.
};

struct TReplacement {
  std::string fFrom;
  std::string fTo;
  EBeside fBeside = EBeside::kAnything;
  /// Returns what replaces the string in another case than that of fFrom. If empty, fTo does, in
  /// capitals for one that has capitals.
  std::function<std::string(const std::string&)> fOtherCase = {};
  /// Returns what replaces the names with dots directly before the string, without the last dot.
  /// If empty, they stay.
  std::function<std::string(const std::string&)> fBefore = {};
};

class TTextReplacer {
 public:
  /// Of two with the same fFrom, whatever its case, the first one counts; but the one without
  /// regard to what is beside it counts before one that has. Strings of fewer than two characters
  /// are ignored.
  void Add(TReplacement replacement);

  /// Of all strings that begin at one place the longest is replaced. What replaces them is not
  /// searched.
  std::string Replace(std::string_view text) const;

 private:
  const TReplacement* FindAt(std::string_view text, std::size_t at) const;

  static constexpr std::size_t kPairs = 1U << 16;

  std::vector<TReplacement> fAll;
  std::unordered_map<std::string, std::size_t> fByText;  // the index of each in lower case
  /// The lengths of those with the same first four bytes in lower case, the greatest first; of
  /// three bytes or two, the rest is zero.
  std::unordered_map<std::uint32_t, std::vector<std::size_t>> fByStart;
  std::bitset<kPairs> fPairs;  // which pairs of bytes in lower case one begins with
};

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_TEXT_REPLACER_H_
