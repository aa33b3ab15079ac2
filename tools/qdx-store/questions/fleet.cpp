// SPDX-License-Identifier: Apache-2.0
#include "fleet.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/split.hpp>

#include "storage/moment.h"

namespace NVORNQDX20::NStore {
namespace {

using TByID = std::map<std::int64_t, TFleetHost*>;

std::string TextOf(const TCell& cell) { return cell.value_or(""); }

void AddHosts(TDatabase& database, std::vector<TFleetHost>& fleet) {
  constexpr std::size_t kColumns = 13;
  database.Query(
      "SELECT host_id, host, uuid, machine_id, serial_number, manufacturer, model, first_seen,"
      " last_seen, documents, has_all_permissions, is_complete, parts_left_out FROM hosts",
      kColumns, {}, [&fleet](const TRow& row) {
        TFleetHost host;
        host.fID = ToNumber(row[0]);
        host.fName = TextOf(row[1]);
        host.fUUID = TextOf(row[2]);
        host.fMachineID = TextOf(row[3]);
        host.fSerialNumber = TextOf(row[4]);
        host.fMaker = TextOf(row[5]);
        host.fModel = TextOf(row[6]);
        host.fFirstSeen = WithoutFraction(TextOf(row[7]));
        host.fLastSeen = WithoutFraction(TextOf(row[8]));
        host.fDocuments = ToNumber(row[9]);
        host.fHasAllPermissions = ToNumber(row[10]) != 0;
        host.fIsComplete = ToNumber(row[11]) != 0;
        const std::string parts = TextOf(row[12]);
        if (!parts.empty()) {
          boost::algorithm::split(host.fPartsLeftOut, parts, boost::algorithm::is_any_of(" "));
        }
        fleet.push_back(std::move(host));
      });
  std::sort(fleet.begin(), fleet.end(), [](const TFleetHost& a, const TFleetHost& b) {
    return std::tie(a.fName, a.fUUID, a.fID) < std::tie(b.fName, b.fUUID, b.fID);
  });
}

void AddProblems(TDatabase& database, const TByID& hosts) {
  constexpr std::size_t kColumns = 6;
  database.Query(
      "SELECT d.host, p.kind, p.provider, p.namespace, p.operation, p.reason FROM problem AS p"
      " JOIN document AS d ON d.id = p.document WHERE d.moment ="
      " (SELECT MAX(x.moment) FROM document AS x WHERE x.host = d.host)"
      " ORDER BY d.host, p.number",
      kColumns, {}, [&hosts](const TRow& row) {
        const auto host = hosts.find(ToNumber(row[0]));
        if (host == hosts.end()) return;
        host->second->fProblems.push_back(
            {TextOf(row[1]), TextOf(row[2]), TextOf(row[3]), TextOf(row[4]), TextOf(row[5])});
      });
}

void AddClones(TDatabase& database, const TByID& hosts) {
  std::map<std::string, std::set<std::pair<std::string, std::int64_t>>> byMachineID;
  database.Query("SELECT machine_id, host, host_id FROM cloned_machine_ids", 3, {},
                 [&](const TRow& row) {
                   byMachineID[TextOf(row[0])].emplace(TextOf(row[1]), ToNumber(row[2]));
                 });
  for (const auto& [machineID, clones] : byMachineID) {
    for (const auto& [name, id] : clones) {
      const auto host = hosts.find(id);
      if (host == hosts.end()) continue;
      std::vector<std::string>& names = host->second->fClones;
      for (auto other = clones.begin(); other != clones.end(); ++other) {
        if (names.size() == TFleetHost::kMostClones) break;
        if (other->second != id) names.push_back(other->first);
      }
    }
  }
}

/// The first and the last moment of each value.
class TValueTimes {
 public:
  void Add(const std::string& value, TMoment first, TMoment last) {
    if (value.empty()) return;
    const auto [found, isNew] = fTimes.try_emplace(value, first, last);
    if (isNew) return;
    found->second.first = std::min(found->second.first, first);
    found->second.second = std::max(found->second.second, last);
  }

  /// Returns whether a value comes again after another one.
  bool Alternates() const {
    std::vector<std::pair<TMoment, TMoment>> times;
    times.reserve(fTimes.size());
    for (const auto& [value, time] : fTimes) times.push_back(time);
    std::sort(times.begin(), times.end());
    return std::adjacent_find(times.begin(), times.end(), [](const auto& a, const auto& b) {
             return b.first < a.second;
           }) != times.end();
  }

 private:
  std::map<std::string, std::pair<TMoment, TMoment>> fTimes;
};

void AddAlternating(TDatabase& database, const TByID& hosts) {
  static constexpr TFleetHost::EIdentifier kIdentifiers[] = {
      TFleetHost::kMachineID, TFleetHost::kSerialNumber, TFleetHost::kName};
  std::map<std::int64_t, std::array<TValueTimes, std::size(kIdentifiers)>> all;
  // Of hosts with a UUID that have documents with something different.
  database.Query(
      "SELECT i.host, i.machine_id, i.serial_number, i.name, MIN(d.moment), MAX(d.moment)"
      " FROM identity AS i JOIN document AS d ON d.identity = i.id WHERE i.uuid <> ''"
      " AND EXISTS (SELECT 1 FROM identity AS x WHERE x.uuid = i.uuid AND x.id <> i.id)"
      " GROUP BY i.id, i.host, i.machine_id, i.serial_number, i.name",
      6, {}, [&all](const TRow& row) {
        auto& times = all[ToNumber(row[0])];
        for (std::size_t i = 0; i < times.size(); ++i) {
          times[i].Add(TextOf(row[i + 1]), ToNumber(row[4]), ToNumber(row[5]));
        }
      });
  for (const auto& [id, times] : all) {
    const auto host = hosts.find(id);
    if (host == hosts.end()) continue;
    for (std::size_t i = 0; i < times.size(); ++i) {
      if (times[i].Alternates()) host->second->fAlternating.push_back(kIdentifiers[i]);
    }
  }
}

}  // namespace

std::vector<TFleetHost> ReadFleet(TDatabase& database) {
  std::vector<TFleetHost> fleet;
  AddHosts(database, fleet);
  TByID hosts;
  for (TFleetHost& host : fleet) hosts.emplace(host.fID, &host);
  AddProblems(database, hosts);
  AddClones(database, hosts);
  AddAlternating(database, hosts);
  return fleet;
}

std::vector<TFleetHost> FindHosts(const std::vector<TFleetHost>& fleet, const std::string& typed) {
  using boost::algorithm::istarts_with;
  using NModel::EqualIgnoringCase;
  std::vector<TFleetHost> found;
  std::copy_if(fleet.begin(), fleet.end(), std::back_inserter(found), [&](const TFleetHost& host) {
    return typed == "host_id=" + std::to_string(host.fID) || EqualIgnoringCase(host.fName, typed) ||
           EqualIgnoringCase(host.fUUID, typed) || EqualIgnoringCase(host.fMachineID, typed) ||
           EqualIgnoringCase(host.fSerialNumber, typed);
  });
  if (!found.empty()) return found;
  std::copy_if(fleet.begin(), fleet.end(), std::back_inserter(found), [&](const TFleetHost& host) {
    return istarts_with(host.fName, typed) || istarts_with(host.fUUID, typed) ||
           istarts_with(host.fMachineID, typed);
  });
  return found;
}

std::string ProductOf(const TFleetHost& host) {
  const bool hasBoth = !host.fMaker.empty() && !host.fModel.empty();
  return host.fMaker + (hasBoth ? " " : "") + host.fModel;
}

std::string WithoutFraction(const std::string& time) {
  return boost::algorithm::replace_last_copy(time, ".000Z", "Z");
}

}  // namespace NVORNQDX20::NStore
