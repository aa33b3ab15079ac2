// SPDX-License-Identifier: Apache-2.0
#include "identity_group.h"

#include <cstddef>

#include <nlohmann/json.hpp>

namespace NVORNQDX20::NStore {
namespace {

/// Those whose host is known only by this.
const char* const kOnlyMachine = "i.machine_id = :machine AND i.uuid = ''";
const char* const kOnlySerial = "i.serial_number = :text AND i.uuid = '' AND i.machine_id = ''";
const char* const kOnlyName =
    "i.name = :text AND i.uuid = '' AND i.machine_id = '' AND i.serial_number = ''";

}  // namespace

TIdentityGroup::TIdentityGroup(TDatabase& database, const TIdentity& identity, EChange change)
    : fDatabase(database), fIdentity(identity), fChange(change) {
  SpreadOverMachine();
  Spread(fIdentity);
  do {
    if (fChange == kAdded) ReadWhatMattersFor(fIdentity);
    const std::set<std::int64_t> affected = fAffected;
    for (const std::int64_t number : affected) {
      const TIdentity each = fStored[fIndexes.at(number)].fIdentity;  // reading may move it
      ReadWhatMattersFor(each);
    }
    AssignKeys();
  } while (SpreadChangedKeys());
}

void TIdentityGroup::TMachine::Add(const TIdentity& identity) {
  if (!identity.fUUID.empty()) fUUIDs.insert(identity.fUUID);
  if (!identity.fSerialNumber.empty()) fSerials.emplace(identity.fMaker, identity.fSerialNumber);
}

/// Adds all with the machine-id if it becomes, or was, that of one installation only, or of another
/// UUID. Copies of an installation that has other copies anyway concern nobody but their equals.
void TIdentityGroup::SpreadOverMachine() {
  const std::string& machine = fIdentity.fMachineID;
  if (machine.empty()) return;
  const TMachine without = ReadMachine();
  TMachine with = without;
  with.Add(fIdentity);
  const bool isSame =
      with.IsCloned() == without.IsCloned() && (with.IsCloned() || with.fUUIDs == without.fUUIDs);
  if (isSame) return;
  ReadAffected(kOnlyMachine, {machine});
  Read("i.machine_id = :machine", {machine});
  fHasWholeMachine = true;
}

/// Adds those whose hosts depend on this one, whatever else has its machine-id.
void TIdentityGroup::Spread(const TIdentity& changed) {
  const auto& [uuid, machine, serial, maker, name] = changed;
  if (!machine.empty()) {
    ReadAffected(std::string(kOnlyMachine) + " AND i.serial_number = '' AND i.name = :name",
                 {machine, name});
  }
  if (!machine.empty() && !serial.empty()) {
    ReadAffected(
        std::string(kOnlyMachine) + " AND i.serial_number = :serial AND i.manufacturer = :maker",
        {machine, serial, maker});
  }
  if (!serial.empty()) ReadAffected(kOnlySerial, {serial});
  if (!name.empty()) ReadAffected(kOnlyName, {name});
}

void TIdentityGroup::ReadAffected(const std::string& condition, const std::vector<TValue>& values) {
  for (const std::int64_t number : Read(condition, values)) fAffected.insert(number);
}

/// Returns whether the keys of further ones are to be found.
bool TIdentityGroup::SpreadChangedKeys() {
  const std::size_t before = fAffected.size();
  const std::set<std::int64_t> affected = fAffected;
  for (const std::int64_t number : affected) {
    const std::size_t index = fIndexes.at(number);
    if (fStored[index].fHostKey == fKeys[index] || !fSpread.insert(number).second) continue;
    const TIdentity each = fStored[index].fIdentity;  // reading may move it
    Spread(each);
  }
  return fAffected.size() > before;
}

/// Reads those on which the host of this one depends.
void TIdentityGroup::ReadWhatMattersFor(const TIdentity& identity) {
  if (!identity.fUUID.empty()) return;
  if (!identity.fMachineID.empty()) {
    ReadWhatMattersOnMachine(identity);
  } else if (!identity.fSerialNumber.empty()) {
    ReadTwoHosts(
        "i.serial_number = :text AND i.manufacturer = :maker"
        " AND (i.uuid <> '' OR i.machine_id <> '')",
        {identity.fSerialNumber, identity.fMaker});
  } else if (!identity.fName.empty()) {
    ReadTwoHosts("i.name = :text AND (i.uuid <> '' OR i.machine_id <> '' OR i.serial_number <> '')",
                 {identity.fName});
  }
}

void TIdentityGroup::ReadWhatMattersOnMachine(const TIdentity& identity) {
  const auto& [uuid, machine, serial, maker, name] = identity;
  if (fHasWholeMachine) return;
  if (serial.empty()) {
    ReadTwoHosts(
        "i.machine_id = :machine AND i.name = :name AND (i.uuid <> '' OR i.serial_number <> '')",
        {machine, name});
  } else {
    ReadTwoHosts(
        "i.machine_id = :machine AND i.serial_number = :serial AND i.manufacturer = :maker"
        " AND i.uuid <> ''",
        {machine, serial, maker});
  }
}

/// Reads identities that show whether the machine-id is that of copies.
TIdentityGroup::TMachine TIdentityGroup::ReadMachine() {
  TMachine machine;
  const auto readOne = [&](const std::string& condition, std::vector<TValue> values) {
    values.insert(values.begin(), fIdentity.fMachineID);
    const auto found = Read("i.machine_id = :machine AND " + condition + " LIMIT 1", values);
    if (found.empty()) return TIdentity{};
    machine.Add(fStored[fIndexes.at(found.front())].fIdentity);
    return fStored[fIndexes.at(found.front())].fIdentity;
  };
  const TIdentity one = readOne("i.serial_number <> ''", {});
  if (!one.fSerialNumber.empty()) {
    readOne("i.serial_number <> '' AND (i.serial_number <> :serial OR i.manufacturer <> :maker)",
            {one.fSerialNumber, one.fMaker});
  }
  if (machine.IsCloned()) return machine;
  const TIdentity other = readOne("i.uuid <> ''", {});
  if (!other.fUUID.empty()) readOne("i.uuid <> '' AND i.uuid <> :uuid", {other.fUUID});
  return machine;
}

/// Of two hosts that keep their keys: more have no other effect, and there may be thousands.
void TIdentityGroup::ReadTwoHosts(const std::string& condition, const std::vector<TValue>& values) {
  const std::string others =
      condition + " AND i.id NOT IN (SELECT CAST(e.value AS BIGINT) FROM @ROWS(:affected) AS e)";
  std::vector<TValue> all = values;
  all.emplace_back(nlohmann::json(fAffected).dump());
  const auto first = Read(others + " LIMIT 1", all);
  if (first.empty()) return;
  all.emplace_back(fStored[fIndexes.at(first.front())].fHost);
  Read(others + " AND i.host <> :host LIMIT 1", all);
}

/// Returns the numbers of those that it finds.
std::vector<std::int64_t> TIdentityGroup::Read(const std::string& condition,
                                               const std::vector<TValue>& values) {
  std::vector<std::int64_t> numbers;
  fDatabase.Query(
      "SELECT i.id, i.host, h.key, i.uuid, i.machine_id, i.serial_number, i.manufacturer, i.name"
      " FROM identity AS i JOIN host AS h ON h.id = i.host WHERE " +
          condition,
      8, values, [&](const TRow& row) {
        TStoredIdentity identity = {ToNumber(row[0]),
                                    ToNumber(row[1]),
                                    *row[2],
                                    {*row[3], *row[4], *row[5], *row[6], *row[7]}};
        numbers.push_back(identity.fNumber);
        if (fIndexes.emplace(identity.fNumber, fStored.size()).second) {
          fStored.push_back(std::move(identity));
        }
      });
  return numbers;
}

void TIdentityGroup::AssignKeys() {
  std::vector<TIdentity> identities;
  std::vector<std::string> known;
  identities.reserve(fStored.size() + 1);
  known.reserve(fStored.size() + 1);
  for (const TStoredIdentity& each : fStored) {
    identities.push_back(each.fIdentity);
    known.push_back(fAffected.count(each.fNumber) == 0 ? each.fHostKey : "");
  }
  if (fChange == kAdded) {
    identities.push_back(fIdentity);
    known.emplace_back();
  }
  fKeys = HostKeys(identities, known);
}

}  // namespace NVORNQDX20::NStore
