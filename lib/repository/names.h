// SPDX-License-Identifier: Apache-2.0
/// A table of named elements.
#ifndef LIB_REPOSITORY_NAMES_H_
#define LIB_REPOSITORY_NAMES_H_

#include <qdxmodel/names.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hash_index.h"

namespace NVORNQDX20::NRepository {

/// Returns the bits in which the words at two places differ.
template <typename TWord>
TWord DifferenceOf(const char* left, const char* right) noexcept {
  TWord words[2];
  std::memcpy(&words[0], left, sizeof(TWord));
  std::memcpy(&words[1], right, sizeof(TWord));
  return words[0] ^ words[1];
}

/// Like left == right, but without a call of memcmp(), which reads a short text at once: most names
/// are looked up right after they were written in parts, and the processor waits for those.
inline bool IsSameText(std::string_view left, std::string_view right) noexcept {
  const std::size_t size = left.size();
  if (size != right.size()) return false;
  const char* const l = left.data();
  const char* const r = right.data();
  // The last words overlap with those before.
  if (size >= 8) {
    auto difference = DifferenceOf<std::uint64_t>(l + size - 8, r + size - 8);
    for (std::size_t at = 0; at + 8 < size; at += 8) {
      difference |= DifferenceOf<std::uint64_t>(l + at, r + at);
    }
    return difference == 0;
  }
  if (size >= 4) {
    return (DifferenceOf<std::uint32_t>(l, r) |
            DifferenceOf<std::uint32_t>(l + size - 4, r + size - 4)) == 0;
  }
  return size == 0 || (l[0] == r[0] && l[size / 2] == r[size / 2] && l[size - 1] == r[size - 1]);
}

/// Elements in the order in which they were added, with a look-up by GetName(). Does not own them;
/// they must outlive the table.
template <typename TElement>
class TNameTable {
 public:
  std::size_t Size() const { return fElements.size(); }
  TElement& At(std::size_t position) const { return *fElements[position]; }

  /// Returned where there is no such element. A std::optional would be passed through memory, and
  /// reading it back as a whole waits for its parts: that took longer than the rest of a look-up.
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::size_t Position(std::string_view name) const {
    // Most callers go through the elements in their order, and spell the names as declared.
    if (IsAt(fLast + 1, name)) return ++fLast;
    return PositionElsewhere(name);
  }

  /// Returns null if there is no element with this name.
  TElement* Find(std::string_view name) const {
    const std::size_t position = Position(name);
    return position == kNone ? nullptr : fElements[position];
  }

  /// Returns false and does nothing if the name is taken.
  [[nodiscard]] bool Add(TElement& element) {
    const std::size_t hash = fHash(element.GetName());
    if (PositionOf(element.GetName(), hash)) return false;
    fIndex.Reserve();
    fElements.push_back(&element);
    fIndex.Add(hash);
    return true;
  }

  /// REQUIRES: the new element has the same name as the replaced one.
  void Replace(std::size_t position, TElement& element) { fElements[position] = &element; }

  /// Calls `visit` for the elements present at the call, until it returns false: elements that
  /// `visit` adds are not visited.
  template <typename TVisit>
  void ForEach(TVisit&& visit) const {
    const std::size_t end = fElements.size();
    for (std::size_t i = 0; i < end && visit(*fElements[i]); ++i) {
    }
  }

 private:
  bool IsAt(std::size_t position, std::string_view name) const {
    return position < fElements.size() && IsSameText(fElements[position]->GetName(), name);
  }

  // Not inline: what comes before would save registers for them at each call.

  [[gnu::noinline]] std::size_t PositionElsewhere(std::string_view name) const {
    // Others ask for an element twice, or begin again.
    if (IsAt(fLast, name)) return fLast;
    if (IsAt(0, name)) return fLast = 0;
    return PositionByHash(name);
  }

  [[gnu::noinline]] std::size_t PositionByHash(std::string_view name) const {
    const std::optional<std::size_t> position = PositionOf(name, fHash(name));
    return position ? fLast = *position : kNone;
  }

  std::optional<std::size_t> PositionOf(std::string_view name, std::size_t hash) const {
    return fIndex.Find(hash, [&](std::size_t position) {
      return NModel::EqualIgnoringCase(fElements[position]->GetName(), name);
    });
  }

  NModel::TNameHash fHash;
  std::vector<TElement*> fElements;
  THashIndex fIndex;
  mutable std::size_t fLast = 0;  // the position that was found last
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_NAMES_H_
