// SPDX-License-Identifier: Apache-2.0
#include "chosen_host.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "cli/failure.h"
#include "format/answer.h"

namespace NVORNQDX20::NStore {
namespace {

[[noreturn]] void FailToFind(const std::string& typed, const std::string& reason) {
  throw TCommandFailure(kExitBadInput, "finding host " + NModel::Quoted(typed),
                        {kQDXStatusNotFound, reason});
}

}  // namespace

TFleetHost ChosenHost(TDatabase& database, const std::string& typed) {
  const std::vector<TFleetHost> found = FindHosts(ReadFleet(database), typed);
  if (found.empty()) {
    FailToFind(typed, "the store has no host of this name, UUID, machine ID or serial number");
  }
  if (found.size() == 1) return found.front();
  constexpr std::size_t kShown = 5;
  std::string names;
  for (std::size_t i = 0; i < std::min(kShown, found.size()); ++i) {
    const TFleetHost& host = found[i];
    // With what chooses it: two hosts can have the same name.
    names += (names.empty() ? "" : ", ") + ShortName(host.fName) + " (" +
             (host.fUUID.empty() ? "host_id=" + std::to_string(host.fID) : host.fUUID) + ")";
  }
  if (found.size() > kShown) names += " and " + std::to_string(found.size() - kShown) + " more";
  FailToFind(typed, "it can be " + names);
}

}  // namespace NVORNQDX20::NStore
