// SPDX-License-Identifier: Apache-2.0
/// Parses the tables of users and groups (passwd(5), group(5)). Passwords are never kept.
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_USER_TABLE_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_USER_TABLE_H_

#include <string>
#include <string_view>
#include <vector>

#include "sources/host.h"

namespace NVORNQDX20 {

/// The numbers are as the file has them.
struct TUser {
  std::string fName;
  std::string fID;
  std::string fGroupID;
  std::string fComment;
  std::string fHome;
  std::string fShell;
};

struct TGroup {
  std::string fName;
  std::string fID;
  std::vector<std::string> fMembers;  ///< Without the users whose first group it is.
};

/// Lines that are no entries, such as references to a directory service, are left out.
std::vector<TUser> ParseUsers(std::string_view passwd);
std::vector<TGroup> ParseGroups(std::string_view group);

/// The users and groups of the described machine, for THost::Shared.
struct TUserTable {
  explicit TUserTable(const THost& host);

  TReading<std::vector<TUser>> fUsers;
  TReading<std::vector<TGroup>> fGroups;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_USER_TABLE_H_
