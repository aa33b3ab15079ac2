// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_SoftwareIdentity: the packages of the distribution.
#include "classes/catalogue.h"
#include "sources/software/package_status.h"

namespace NVORNQDX20 {
namespace {

TInstances<TPackage> ListPackages(const THost& host) {
  TPackages packages = ReadPackages(host);
  return {std::move(packages.fAll), std::move(packages.fReason)};
}

/// Packages of several architectures can have one name.
std::string InstanceID(const TPackage& package) {
  return "dpkg:" + package.fName + ":" + package.fArchitecture;
}

TNumber InstalledSize(const TPackage& package) {
  if (package.fInstalledSize.empty()) return Missing("the package does not tell");
  return ToNumber(package.fInstalledSize, "Installed-Size of " + package.fName);
}

/// "Debian linux Package" in the value map of CIM_SoftwareIdentity.ExtendedResourceType.
constexpr std::uint16_t kDebianPackage = 8;

}  // namespace

TClass SoftwareIdentityClass() {
  return THostTable<TPackage>{
      "VORNSG_SoftwareIdentity",
      "A package of software that is installed, or of which settings are left.",
      ListPackages,
      {{"InstanceID", "The package manager, the name and the architecture.", InstanceID, kKey},
       {"Name", "The name of the package.", &TPackage::fName},
       {"VersionString", "Its version.", &TPackage::fVersion},
       {"Architecture", "For which processors it is built; \"all\" if for any.",
        &TPackage::fArchitecture},
       {"PackageStatus",
        "What is wanted, whether something is wrong, and how far the package is installed.",
        &TPackage::fStatus},
       {"InstalledSize", "About how much space it takes.", InstalledSize, TUnit{"byte * 2^10"}},
       {"Manufacturer", "Who looks after the package.", &TPackage::fMaintainer},
       {"SourcePackage",
        "From which source package it was built, and from which version of it; empty if those are "
        "its own.",
        &TPackage::fSource},
       {"Section", "What kind of software it is, in a word of the distribution.",
        &TPackage::fSection},
       {"Description", "What it is, in a line.", &TPackage::fSummary},
       {"ExtendedResourceType", "The form of the package.", Constant(kDebianPackage),
        TEnumeration{{kDebianPackage, "Debian linux Package"}}}}};
}

}  // namespace NVORNQDX20
