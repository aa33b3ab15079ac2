// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_BondPortGroup: bonds, which join several links to one.
#include <iterator>

#include "port_group.h"
#include "sources/network/bonds.h"

namespace NVORNQDX20 {
namespace {

struct TBondGroup : TPortGroup, TBond {};

TEnumeration Modes() {
  TEnumeration modes;
  modes.reserve(std::size(kBondModes));
  for (const char* mode : kBondModes) modes.emplace_back(static_cast<long>(modes.size()), mode);
  return modes;
}

TInstances<TBondGroup> ListBonds(const THost& host) {
  const TInstances<TBond>& all = host.Shared<TBonds>().fAll;
  TInstances<TBondGroup> bonds({}, all.fReason);
  bonds.fAll.reserve(all.fAll.size());
  for (const TBond& bond : all.fAll) bonds.fAll.push_back({{bond.fName}, bond});
  return bonds;
}

TReading<std::vector<std::string>> Members(const TBondGroup& bond) {
  return bond.fMembers.map([](const std::vector<TBondMember>& members) {
    std::vector<std::string> ports;
    ports.reserve(members.size());
    for (const TBondMember& member : members) ports.push_back(member.fPort);
    return ports;
  });
}

}  // namespace

TClass BondPortGroupClass() {
  return THostTable<TBondGroup>{
      "VORNSG_BondPortGroup",
      "A bond: several links that work as one.",
      ListBonds,
      {{"Mode", "How the links share the work.", &TBondGroup::fMode, Modes()},
       {"Members", "The interfaces that are joined.", Members},
       {"ActiveMember", "The one that is used, in a mode with one; empty if all links are down.",
        &TBondGroup::fActiveMember},
       {"MIIStatus", "What the kernel makes of the links, as in \"up\".", &TBondGroup::fMIIStatus},
       {"MIIPollingInterval", "How often the links are looked at; 0 for never.",
        &TBondGroup::fMIIPollingInterval, TUnit{"second * 10^-3"}},
       {"TransmitHashPolicy", "What decides on the link of a packet, as in \"layer2\".",
        &TBondGroup::fHashPolicy},
       {"PartnerAddress", "The address of the other end of a bond of mode 802.3ad.",
        &TBondGroup::fPartner, ESecret::kAddress}}}
      .DerivedFrom(PortGroupTable());
}

}  // namespace NVORNQDX20
