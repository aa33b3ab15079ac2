// SPDX-License-Identifier: Apache-2.0
/// The classes that the provider describes: a source file for each, and one list of them all, in
/// catalogue.cpp.
#ifndef PLUGINS_LINUX_CLASSES_CATALOGUE_H_
#define PLUGINS_LINUX_CLASSES_CATALOGUE_H_

#include <qdxdescribe/catalogue.h>
#include <qdxdescribe/table.h>

#include <vector>

#include "sources/host.h"

namespace NVORNQDX20 {

using TClass = TClassOf<THost>;
template <typename TSource>
using THostTable = TTable<TSource, THost>;

/// Returns the classes in the order in which they are described.
std::vector<TCatalogueEntry<THost>> AllClasses();

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_CATALOGUE_H_
