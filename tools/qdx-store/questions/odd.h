// SPDX-License-Identifier: Apache-2.0
/// Which hosts differ from most others of their model, and in what.
///
/// The hosts of a maker and a product are compared, if there are at least three. What changes by
/// itself and what is secret, such as serial numbers and addresses, is not compared. A host is not
/// judged on what its last document could not see.
///
/// An object that more than half of the judged hosts have is missing on the others; one that more
/// than half of them lack is additional on those that have it, unless it is natural that each host
/// has its own: more than half of the hosts have an object of the class that no other host has. A
/// value of an object is compared among the hosts that have the object: it is odd if more than half
/// of them have the same other value, or none.
#ifndef TOOLS_QDX_STORE_QUESTIONS_ODD_H_
#define TOOLS_QDX_STORE_QUESTIONS_ODD_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/database.h"
#include "fleet.h"

namespace NVORNQDX20::NStore {

/// Fewer hosts of a model are not judged.
inline constexpr std::size_t kFewestHosts = 3;

/// The hosts of a product of a maker.
struct TModel {
  std::string fMaker;
  std::string fName;
  std::vector<const TFleetHost*> fHosts;  ///< Of the fleet that the model was made from.

  bool HasName() const { return !fMaker.empty() || !fName.empty(); }
  bool IsJudged() const { return HasName() && fHosts.size() >= kFewestHosts; }
};

/// Returns the models by maker and name. Hosts of which neither is known are of the model without
/// names, which is never judged.
std::vector<TModel> ModelsOf(const std::vector<TFleetHost>& fleet);

/// What is usual, and who differs.
struct TOddFact {
  struct THost {
    std::string fName;
    std::optional<std::string> fValue;  ///< None if the host lacks it.
  };

  std::string fNamespace;
  std::string fClass;
  std::string fObject;
  std::string fProperty;              ///< Empty for the object as a whole, whose value is empty.
  std::optional<std::string> fUsual;  ///< None if most hosts lack it.
  std::size_t fUsualHosts = 0;        ///< How many have the usual value.
  std::size_t fJudgedHosts = 0;
  std::vector<THost> fOdd;  ///< By name.
};

/// Returns what is odd among the hosts of a model, by class, object and property. Instances of
/// associations are left out, unless `className` is theirs: what differs there follows from the
/// objects that they tie together. An empty `className` stands for all. Throws a TDatabaseError.
std::vector<TOddFact> FindOdd(TDatabase& database, const TModel& model,
                              const std::string& className);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_QUESTIONS_ODD_H_
