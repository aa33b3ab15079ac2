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

[[maybe_unused]] const bool kRegistered =
    RegisterProvider([] { return MakeProvider("linux", "root/cimv2", AllClasses()); });

}  // namespace
}  // namespace NVORNQDX20
