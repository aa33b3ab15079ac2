// SPDX-License-Identifier: Apache-2.0
#include "chosen_class.h"

#include <qdxdisplay/names.h>
#include <qdxmodel/names.h>

#include <vector>

#include <boost/algorithm/string/join.hpp>

#include "cli/failure.h"

namespace NVORNQDX20::NStore {

std::string ChosenClass(TDatabase& database, const std::string& typed) {
  if (typed.empty()) return "";
  std::vector<std::string> names;
  database.Query("SELECT DISTINCT name FROM class ORDER BY name", 1, {},
                 [&names](const TRow& row) { names.push_back(row[0].value_or("")); });
  const TClassMatch match = FindClassFor(typed, names);
  if (match.fNames.size() == 1) return match.fNames.front();
  std::string reason = "the store has no such class";
  if (match.fNames.size() > 1) {
    reason = "it can be " + boost::algorithm::join(match.fNames, ", ");
  } else if (!match.fNearest.empty()) {
    reason += "; did you mean " + NModel::Quoted(match.fNearest) + "?";
  }
  throw TCommandFailure(kExitBadInput, "finding class " + NModel::Quoted(typed),
                        {kQDXStatusNotFound, reason});
}

}  // namespace NVORNQDX20::NStore
