// SPDX-License-Identifier: Apache-2.0
// Association VORNSG_RunningOS: the operating system that runs on the machine.
#include <qdxcore/schema_helper.h>

#include "classes/catalogue.h"
#include "sources/os_release.h"

namespace NVORNQDX20 {
namespace {

const std::string& kOSClass = TCIMSchemaHelper::kOperatingSystemCreationClassName;
const std::string& kMachineClass = TCIMSchemaHelper::kSystemCreationClassName;

TInstanceName RunningSystem(const THost& host) { return {kOSClass, OSNameAsKey(host)}; }
TInstanceName Machine(const THost& host) { return {kMachineClass, host.GetNameAsKey()}; }

}  // namespace

TClass RunningOSClass() {
  return THostTable<TOnly>{
      "VORNSG_RunningOS",
      "Ties the operating system to the machine on which it runs.",
      kOnly,
      {{"Antecedent", "The operating system.", RunningSystem, kKey, TRefersTo{kOSClass.c_str()}},
       {"Dependent", "The machine.", Machine, kKey, TRefersTo{kMachineClass.c_str()}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
