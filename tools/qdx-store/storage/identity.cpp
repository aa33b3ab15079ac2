// SPDX-License-Identifier: Apache-2.0
#include "identity.h"

#include <cstddef>
#include <initializer_list>
#include <map>
#include <set>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/trim.hpp>

namespace NVORNQDX20::NStore {
namespace {

using TTexts = std::set<std::string>;

/// What boards have whose maker did not set a UUID of their own.
const TTexts kSharedUUIDs = {"03000200-0400-0500-0006-000700080009",
                             "00020003-0004-0005-0006-000700080009",
                             "12345678-1234-5678-90ab-cddeefaabbcc",
                             "12345678-1234-1234-1234-123456789abc",
                             "fefefefe-fefe-fefe-fefe-fefefefefefe",
                             "not settable",
                             "not present",
                             "not specified"};
const TTexts kNoMachineIDs = {"uninitialized"};
/// Of serial numbers and makers.
const TTexts kFillIns = {"none",
                         "default string",
                         "default",
                         "to be filled by o.e.m.",
                         "to be filled by o.e.m",
                         "to be filled by oem",
                         "o.e.m.",
                         "oem",
                         "system serial number",
                         "system manufacturer",
                         "chassis serial number",
                         "not specified",
                         "not applicable",
                         "not available",
                         "not present",
                         "n/a",
                         "na",
                         "unknown",
                         "undefined",
                         "empty",
                         "invalid",
                         "serial",
                         "sernum",
                         "0123456789",
                         "123456789",
                         "1234567890",
                         "12345678",
                         "01234567"};
const TTexts kCommonNames = {"localhost",  "localhost.localdomain",   "localhost4",
                             "localhost6", "localhost4.localdomain4", "localhost6.localdomain6",
                             "(none)"};

/// Also true for an empty text and for "00000000-0000-...".
bool RepeatsOneCharacter(const std::string& text) {
  std::set<char> characters(text.begin(), text.end());
  for (const char separator : {'-', '.', ' '}) characters.erase(separator);
  return characters.size() < 2;
}

/// In bytes. No machine has longer names or numbers, and a server has no index for them.
const std::size_t kLongest = 255;

std::string Usable(const std::string& text, const TTexts& unusable, bool mayRepeat) {
  if (text.size() > kLongest) return "";
  std::string usable = boost::to_lower_copy(boost::trim_copy(text));
  if (unusable.count(usable) != 0 || (!mayRepeat && RepeatsOneCharacter(usable))) usable.clear();
  return usable;
}

/// The keys of the hosts that have something in common, by that.
using THosts = std::map<std::string, TTexts>;

/// Returns the only element; empty if there is none or more than one.
std::string OnlyOne(const THosts& hosts, const std::string& key) {
  const auto found = hosts.find(key);
  return found == hosts.end() || found->second.size() != 1 ? "" : *found->second.begin();
}

std::size_t Count(const THosts& hosts, const std::string& key) {
  const auto found = hosts.find(key);
  return found == hosts.end() ? 0 : found->second.size();
}

/// A zero byte is in no text.
std::string Joined(const std::string& a, const std::string& b) { return a + '\0' + b; }

/// Returns the parts of a key with "/" between them, which is "%2F" in a part.
std::string KeyOf(const char* kind, std::initializer_list<std::string> parts) {
  std::string key = kind;
  for (const std::string& part : parts) {
    const std::string escaped = boost::replace_all_copy(part, "%", "%25");
    key += (key.back() == ':' ? "" : "/") + boost::replace_all_copy(escaped, "/", "%2F");
  }
  return key;
}

std::string SerialOf(const TIdentity& identity) {
  return Joined(identity.fMaker, identity.fSerialNumber);
}

/// Gives keys in turns, from the strongest identification to the weakest. What one turn gives
/// depends only on the results of the turns before.
class TAssignment {
 public:
  TAssignment(const std::vector<TIdentity>& identities, const std::vector<std::string>& known)
      : fIdentities(identities), fKnown(known), fKeys(identities.size()) {
    fKnown.resize(identities.size());
  }

  std::vector<std::string> Run() {
    Assign([](const TIdentity& i) { return !i.fUUID.empty(); },
           [](const TIdentity& i) { return KeyOf("uuid:", {i.fUUID}); });
    CountSerials();
    // Those with a serial number first: they part the hosts with one machine-id.
    Assign([](const TIdentity& i) { return !i.fMachineID.empty() && !i.fSerialNumber.empty(); },
           [this](const TIdentity& i) { return KeyByMachine(i); });
    Assign([](const TIdentity& i) { return !i.fMachineID.empty(); },
           [this](const TIdentity& i) { return KeyByMachine(i); });
    Assign([](const TIdentity& i) { return !i.fSerialNumber.empty(); },
           [this](const TIdentity& i) {
             const std::string host = OnlyOne(fBySerial, SerialOf(i));
             return host.empty() ? KeyOf("serial:", {i.fMaker, i.fSerialNumber}) : host;
           });
    Assign([](const TIdentity&) { return true; },
           [this](const TIdentity& i) {
             const std::string host = OnlyOne(fByName, i.fName);
             return host.empty() ? KeyOf("name:", {i.fName}) : host;
           });
    return fKeys;
  }

 private:
  template <typename TSelect, typename TGetKey>
  void Assign(const TSelect& select, const TGetKey& getKey) {
    std::vector<std::size_t> assigned;
    for (std::size_t i = 0; i < fIdentities.size(); ++i) {
      if (!fKeys[i].empty() || !select(fIdentities[i])) continue;
      fKeys[i] = fKnown[i].empty() ? getKey(fIdentities[i]) : fKnown[i];
      assigned.push_back(i);
    }
    for (const std::size_t i : assigned) {
      const TIdentity& identity = fIdentities[i];
      if (!identity.fMachineID.empty()) {
        fByMachine[identity.fMachineID].insert(fKeys[i]);
        fByMachineAndName[Joined(identity.fMachineID, identity.fName)].insert(fKeys[i]);
      }
      if (!identity.fSerialNumber.empty()) {
        fBySerial[SerialOf(identity)].insert(fKeys[i]);
        fByMachineAndSerial[Joined(identity.fMachineID, SerialOf(identity))].insert(fKeys[i]);
      }
      if (!identity.fName.empty()) fByName[identity.fName].insert(fKeys[i]);
    }
  }

  void CountSerials() {
    for (const TIdentity& identity : fIdentities) {
      if (identity.fMachineID.empty() || identity.fSerialNumber.empty()) continue;
      fSerials[identity.fMachineID].insert(SerialOf(identity));
    }
  }

  /// REQUIRES: it has no UUID.
  std::string KeyByMachine(const TIdentity& identity) const {
    const std::string& machine = identity.fMachineID;
    const bool isCloned = Count(fByMachine, machine) > 1 || Count(fSerials, machine) > 1;
    if (!isCloned) {
      const std::string host = OnlyOne(fByMachine, machine);
      return host.empty() ? KeyOf("machine-id:", {machine}) : host;
    }
    const std::string serial = SerialOf(identity);
    std::string host = identity.fSerialNumber.empty()
                           ? OnlyOne(fByMachineAndName, Joined(machine, identity.fName))
                           : OnlyOne(fByMachineAndSerial, Joined(machine, serial));
    if (!host.empty()) return host;
    return identity.fSerialNumber.empty()
               ? KeyOf("machine-id:", {machine, identity.fName})
               : KeyOf("machine-id:", {machine, identity.fMaker, identity.fSerialNumber});
  }

  const std::vector<TIdentity>& fIdentities;
  std::vector<std::string> fKnown;
  std::vector<std::string> fKeys;
  THosts fSerials;  // of a machine-id
  THosts fByMachine;
  THosts fByMachineAndName;
  THosts fByMachineAndSerial;
  THosts fBySerial;
  THosts fByName;
};

}  // namespace

bool TIdentity::IsNobody() const {
  return fUUID.empty() && fMachineID.empty() && fSerialNumber.empty() && fName.empty();
}

TIdentity IdentityOf(const THostIdentity& host) {
  TIdentity identity;
  identity.fUUID = Usable(host.fUUID, kSharedUUIDs, false);
  identity.fMachineID = Usable(host.fMachineID, kNoMachineIDs, false);
  identity.fSerialNumber = Usable(host.fSerialNumber, kFillIns, false);
  identity.fMaker = Usable(host.fMaker, kFillIns, false);
  // A serial number is unique for one maker only.
  if (identity.fMaker.empty() || identity.fSerialNumber.empty()) {
    identity.fMaker.clear();
    identity.fSerialNumber.clear();
  }
  identity.fName = Usable(host.fName, kCommonNames, true);
  return identity;
}

std::vector<std::string> HostKeys(const std::vector<TIdentity>& identities,
                                  const std::vector<std::string>& known) {
  return TAssignment(identities, known).Run();
}

}  // namespace NVORNQDX20::NStore
