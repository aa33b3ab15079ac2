// SPDX-License-Identifier: Apache-2.0
#include "bonds.h"

#include <algorithm>
#include <iterator>

#include "sources/fields.h"
#include "tables.h"

namespace NVORNQDX20 {
namespace {

/// What the file calls the modes, by their numbers; a text can have more after it.
constexpr std::string_view kModeTexts[] = {"load balancing (round-robin)",
                                           "fault-tolerance (active-backup)",
                                           "load balancing (xor)",
                                           "fault-tolerance (broadcast)",
                                           "IEEE 802.3ad Dynamic link aggregation",
                                           "transmit load balancing",
                                           "adaptive load balancing"};

TReading<std::uint16_t> ModeOf(const std::string& text) {
  const auto* const found =
      std::find_if(std::begin(kModeTexts), std::end(kModeTexts),
                   [&text](std::string_view each) { return text.rfind(each, 0) == 0; });
  if (found == std::end(kModeTexts)) return Missing("unknown mode '" + text + "'");
  return static_cast<std::uint16_t>(found - std::begin(kModeTexts));
}

/// Reads "active-backup 1".
TReading<std::uint16_t> ReadMode(const TFiles& bonding) {
  return bonding.ReadLine("mode").and_then([&](const std::string& text) {
    return ToNumber<std::uint16_t>(TText(text.substr(text.rfind(' ') + 1)), bonding.PathOf("mode"));
  });
}

/// The first word, without a number after it.
TText FirstWord(const TText& text) {
  return text.map([](const std::string& line) { return line.substr(0, line.find(' ')); });
}

/// Bonds without a partner or an active member have an empty file, or "None".
TText NoneIsEmpty(const TText& text) {
  return text.map([](const std::string& name) { return name == "None" ? std::string() : name; });
}

TText ReadOptional(const TFiles& files, const char* file) {
  return files.Read(file).map([](const std::string& text) { return PrintableText(text); });
}

TBond ReadSysfs(const THost& host, const std::string& name) {
  const TFiles bonding = host.In("/sys/class/net").In(name).In("bonding");
  TBond bond;
  bond.fName = name;
  bond.fMode = ReadMode(bonding);
  bond.fActiveMember = ReadOptional(bonding, "active_slave");
  bond.fMIIStatus = bonding.ReadLine("mii_status");
  bond.fMIIPollingInterval = bonding.ReadNumber<std::uint32_t>("miimon");
  bond.fHashPolicy = FirstWord(ReadOptional(bonding, "xmit_hash_policy"));
  bond.fPartner = ReadOptional(bonding, "ad_partner_mac").map(AddressDigits);
  bond.fMembers = ReadOptional(bonding, "slaves").map([&host](const std::string& names) {
    const std::vector<std::string_view> words = WordsOf(names);
    std::vector<TBondMember> members;
    members.reserve(words.size());
    for (const std::string_view member : words) {
      const TFiles slave = host.In("/sys/class/net").In(std::string(member)).In("bonding_slave");
      members.push_back({std::string(member), slave.ReadLine("mii_status"),
                         slave.ReadNumber("link_failure_count"),
                         AddressDigits(slave.ReadLine("perm_hwaddr").ValueOr(""))});
    }
    return members;
  });
  return bond;
}

TBond ReadBond(const THost& host, const std::string& name) {
  const TText path = FindNetTable(host, "bonding/" + name);
  const TText table = path.and_then(
      [&host](const std::string& file) { return host.Read(file, TFiles::kMaxTableSize); });
  return table ? ParseBond(name, *path, *table) : ReadSysfs(host, name);
}

/// The folder of bonds lists them in a tree that has no sysfs.
TReading<std::vector<std::string>> NamesOfBonds(const THost& host) {
  std::vector<std::string> names;
  for (const TPort& port : host.Shared<TPorts>().fAll.fAll) {
    if (port.IsOfKind("bond")) names.push_back(port.fInterface);
  }
  if (!names.empty()) return names;
  return FindNetTable(host, "bonding").and_then([&host](const std::string& folder) {
    return host.List(folder);
  });
}

}  // namespace

TBond ParseBond(const std::string& name, const std::string& source, std::string_view text) {
  TBond bond;
  bond.fName = name;
  // Sections of members follow the bond's own, each after an empty line.
  const std::string_view first = text.substr(0, text.find("\nSlave Interface:"));
  const TFields own(source, first, ':');
  bond.fMode = own.Get("Bonding Mode").and_then(ModeOf);
  bond.fActiveMember = NoneIsEmpty(own.Get("Currently Active Slave"));
  bond.fMIIStatus = own.Get("MII Status");
  bond.fMIIPollingInterval = own.GetNumber<std::uint32_t>("MII Polling Interval (ms)");
  bond.fHashPolicy = FirstWord(own.Get("Transmit Hash Policy"));
  bond.fPartner = own.Get("Partner Mac Address").map(AddressDigits);
  text.remove_prefix(first.size());
  std::vector<TBondMember> members;
  while (!text.empty()) {
    text.remove_prefix(1);
    const std::string_view section = text.substr(0, text.find("\nSlave Interface:"));
    const TFields member(source, section, ':');
    const TText port = member.Get("Slave Interface");
    if (port) {
      members.push_back({*port, member.Get("MII Status"), member.GetNumber("Link Failure Count"),
                         AddressDigits(member.Get("Permanent HW addr").ValueOr(""))});
    }
    text.remove_prefix(section.size());
  }
  bond.fMembers = std::move(members);
  return bond;
}

TBonds::TBonds(const THost& host) {
  fAll.fReason = host.Shared<TPorts>().fAll.fReason;
  const auto names = NamesOfBonds(host);
  if (names.GetReason().IsError()) fAll.Miss(names.GetReason());
  for (const std::string& name : names.ValueOr({})) {
    if (PrintableText(name) == name) fAll.fAll.push_back(ReadBond(host, name));
  }
}

}  // namespace NVORNQDX20
