// SPDX-License-Identifier: Apache-2.0
/// Reads the properties of instances by their names; what is missing, null or of another kind is
/// not known.
#ifndef LIB_SUMMARY_FACTS_H_
#define LIB_SUMMARY_FACTS_H_

#include <qdxcore/interfaces.h>
#include <qdxmodel/property_reader.h>
#include <qdxmodel/type.h>
#include <qdxmodel/visit.h>
#include <qdxsummary/summary.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace NVORNQDX20::NSummary {

/// An instance, as long as it is visited.
class TFacts {
 public:
  using TIndexes = NModel::TNameMap<std::size_t>;

  TFacts(const NModel::TPropertyReader& reader, const TIndexes& indexes)
      : fReader(&reader), fIndexes(&indexes) {}

  /// Empty if it is not known. Numbers become text.
  std::string Text(const std::string& property) const;
  TNumber Number(const std::string& property) const;
  std::optional<std::int64_t> Integer(const std::string& property) const;
  std::optional<double> Real(const std::string& property) const;
  std::optional<bool> Flag(const std::string& property) const;
  std::vector<std::string> Texts(const std::string& property) const;
  /// The key "DeviceID" of the instance that a reference leads to.
  std::string DeviceIn(const std::string& reference) const;

 private:
  template <typename TVisit>
  void Visit(const std::string& property, const TVisit& visit) const {
    const auto index = fIndexes->find(property);
    if (index == fIndexes->end()) return;
    fReader->Read(index->second, [&visit](const TCIMValue& value) {
      if (!value.IsNull()) visit(value);
    });
  }
  template <typename T>
  std::optional<T> NumberOf(const std::string& property) const;

  const NModel::TPropertyReader* fReader;
  const TIndexes* fIndexes;
};

using TVisitFacts = std::function<void(const TFacts&)>;

/// Visits the instances of a class and its subclasses; none if the namespace has no such class.
void ForEach(const ICIMNamespace& ns, const char* className, const TVisitFacts& visit);

/// Groups of parts that are alike, in the order in which they are met.
template <typename TPart, typename... TKeys>
class TGroups {
 public:
  explicit TGroups(std::vector<TPart>& parts) : fParts(parts) {}

  /// Returns the group with these properties, which is the part itself if there was none.
  TPart& GroupOf(TPart part, const TKeys&... keys) {
    const auto [group, isNew] = fIndexes.emplace(std::tuple(keys...), fParts.size());
    if (isNew) fParts.push_back(std::move(part));
    return fParts[group->second];
  }

 private:
  std::vector<TPart>& fParts;
  std::map<std::tuple<TKeys...>, std::size_t> fIndexes;
};

/// Returns number * factor; nothing if that is too large.
TNumber Times(const TNumber& number, std::uint64_t factor);

// The parts of the summary; each is in a file of this name.
void ReadStorage(const ICIMNamespace& ns, TSummary& summary);
void ReadDevices(const ICIMNamespace& ns, TSummary& summary);
void ReadPower(const ICIMNamespace& ns, TSummary& summary);
void ReadGaps(const ICIMNamespace& ns, const std::vector<std::string>& partsLeftOut,
              TSummary& summary);

}  // namespace NVORNQDX20::NSummary

#endif  // LIB_SUMMARY_FACTS_H_
