// SPDX-License-Identifier: Apache-2.0
// Provider "linux": describes one machine in the namespace "root/cimv2".
//
// Option "root" (string, default "/") is the folder below which all files are read: a mounted
// image, or a tree of files of another machine. Option "classes" (array of strings) names the
// wanted classes; options "only", "without" and "with" choose parts. GetNamespace also throws what
// the constructor of THostFiles throws.
#include <qdxdescribe/provider.h>

#include "classes/catalogue.h"

namespace NVORNQDX20 {
namespace {

#ifdef NDEBUG
// The check takes half of the time to load this library. Builds for debugging, in which the tests
// run as well, always check.
constexpr auto kCheck = EClassCheck::kByTests;
#else
constexpr auto kCheck = EClassCheck::kWhenRegistered;
#endif

[[maybe_unused]] const bool kRegistered = RegisterProvider(
    [] { return MakeCatalogueProvider("linux", "root/cimv2", AllClasses(), kCheck); });

}  // namespace
}  // namespace NVORNQDX20
