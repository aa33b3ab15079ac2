// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Group: the groups of users that the machine itself knows; and which users they have.
#include <map>
#include <set>

#include "classes/catalogue.h"
#include "sources/software/user_table.h"

namespace NVORNQDX20 {
namespace {

const char* const kGroupClass = "VORNSG_Group";
const char* const kAccountClass = "VORNSG_Account";

TInstances<TGroup> ListGroups(const THost& host) { return host.Shared<TUserTable>().fGroups; }

struct TMembership {
  TInstanceName fGroup;
  TInstanceName fMember;
};

/// Lists the users of each group once: those that it names, and those whose first group it is.
TReading<std::vector<TMembership>> ListMemberships(const THost& host) {
  const auto& table = host.Shared<TUserTable>();
  if (!table.fUsers) return Missing(table.fUsers.GetReason());
  return table.fGroups.map([&table](const std::vector<TGroup>& groups) {
    std::multimap<std::string, std::string> users;  // by the number of their first group
    std::set<std::string> known;
    for (const TUser& user : *table.fUsers) {
      users.emplace(user.fGroupID, user.fName);
      known.insert(user.fName);
    }
    std::vector<TMembership> memberships;
    for (const TGroup& group : groups) {
      std::set<std::string> members;
      const auto [first, last] = users.equal_range(group.fID);
      for (auto user = first; user != last; ++user) members.insert(user->second);
      for (const std::string& name : group.fMembers) {
        if (known.count(name) != 0)
          members.insert(name);  // others are those of a directory service
      }
      for (const std::string& member : members) {
        memberships.push_back({{kGroupClass, group.fName}, {kAccountClass, member}});
      }
    }
    return memberships;
  });
}

}  // namespace

TClass GroupClass() {
  return THostTable<TGroup>{
      kGroupClass,
      "A group of users, as the machine's own table has it.",
      ListGroups,
      {{"CreationClassName", "The name of this class.", kClassName, kKey},
       {"Name", "The name of the group.", &TGroup::fName, kKey, ESecret::kUser},
       {"CommonName", "The same.", &TGroup::fName, ESecret::kUser},
       {"GroupID", "The number of the group.", &TGroup::fID},
       {"Members", "The users that the group names; it has those whose first group it is, too.",
        &TGroup::fMembers, ESecret::kUser}}};
}

TClass MemberOfCollectionClass() {
  return THostTable<TMembership>{
      "VORNSG_MemberOfCollection",
      "Ties a user to a group that the user is in.",
      ListMemberships,
      {{"Collection", "The group.", &TMembership::fGroup, kKey, TRefersTo{kGroupClass}},
       {"Member", "The user.", &TMembership::fMember, kKey, TRefersTo{kAccountClass}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
