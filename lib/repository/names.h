// SPDX-License-Identifier: Apache-2.0
/// CIM names: their syntax, and a table of what bears them.
#ifndef LIB_REPOSITORY_NAMES_H_
#define LIB_REPOSITORY_NAMES_H_

#include <qdxmodel/names.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace NVORNQDX20::NRepository {

/// A letter, an underscore or a non-ASCII character, then also digits. An ASCII-only rule for the
/// case, so that the outcome is the same in every locale.
bool IsCIMName(std::string_view name);
/// Throws kQDXStatusInvalidCIMName if it is none.
void RequireCIMName(std::string_view name);

/// Elements in the order they were added, each found by its Name(). Owns none of them; they must
/// outlive the table, whose keys are views of their names.
template <typename TElement>
class TNameTable {
 public:
  std::size_t Size() const { return fElements.size(); }
  TElement& At(std::size_t position) const { return *fElements[position]; }

  std::optional<std::size_t> Position(std::string_view name) const {
    const auto found = fPositions.find(name);
    if (found == fPositions.end()) return std::nullopt;
    return found->second;
  }

  /// Null if there is none of that name.
  TElement* Find(std::string_view name) const {
    const std::optional<std::size_t> position = Position(name);
    return position ? fElements[*position] : nullptr;
  }

  /// False, and nothing done, if the name is taken.
  [[nodiscard]] bool Add(TElement& element) {
    if (!fPositions.emplace(element.Name(), fElements.size()).second) return false;
    fElements.push_back(&element);
    return true;
  }

  /// The name of the new element must equal that of the one it replaces.
  void Replace(std::size_t position, TElement& element) { fElements[position] = &element; }

  /// Calls `visit` until it answers false, for the elements that are there now: what it adds
  /// itself is not seen.
  template <typename TVisit>
  void ForEach(TVisit&& visit) const {
    const std::size_t end = fElements.size();
    for (std::size_t i = 0; i < end && visit(*fElements[i]); ++i) {
    }
  }

 private:
  std::vector<TElement*> fElements;
  std::unordered_map<std::string_view, std::size_t, NModel::TNameHash, NModel::TNameEqual>
      fPositions;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_NAMES_H_
