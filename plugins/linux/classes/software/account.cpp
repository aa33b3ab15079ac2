// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Account: the users that the machine itself knows.
#include <qdxcore/schema_helper.h>

#include "classes/catalogue.h"
#include "sources/software/user_table.h"

namespace NVORNQDX20 {
namespace {

TInstances<TUser> ListUsers(const THost& host) { return host.Shared<TUserTable>().fUsers; }

}  // namespace

TClass AccountClass() {
  return THostTable<TUser>{
      "VORNSG_Account",
      "A user, as the machine's own table has it. Passwords are never read.",
      ListUsers,
      {{"SystemCreationClassName", "The class of the machine.",
        Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
       {"SystemName", "The name of the machine.", &THost::GetNameAsKey, kKey, ESecret::kHostName},
       {"CreationClassName", "The name of this class.", kClassName, kKey},
       {"Name", "By which the user logs in.", &TUser::fName, kKey, ESecret::kUser},
       {"UserID", "The number of the user.", &TUser::fID},
       {"GroupID", "The number of the user's first group.", &TUser::fGroupID},
       {"Comment", "The user's full name, and perhaps more.", &TUser::fComment, ESecret::kUser},
       {"HomeDirectory", "Where the user's files are.", &TUser::fHome, ESecret::kUser},
       {"LoginShell", "What runs when the user logs in.", &TUser::fShell}}};
}

}  // namespace NVORNQDX20
