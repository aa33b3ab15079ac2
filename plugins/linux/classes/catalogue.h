// SPDX-License-Identifier: Apache-2.0
/// The classes that the provider describes: a source file for each, and one list of them all, in
/// catalogue.cpp.
#ifndef PLUGINS_LINUX_CLASSES_CATALOGUE_H_
#define PLUGINS_LINUX_CLASSES_CATALOGUE_H_

#include <optional>
#include <string>
#include <vector>

#include "machine/host.h"
#include "namespace_builder.h"

namespace NVORNQDX20 {

/// Adds the host's instances of a class. A missing value is recorded with its reason; it is not a
/// failure.
using TAddInstances = void(TNamespaceBuilder& builder, const THost& host, ICIMClass& cimClass);

struct TClassDescription {
  TClassSpec fDeclaration;
  TAddInstances* fAddInstances = nullptr;  ///< Null if the class has none, or others add them.
};

/// Declares the classes and adds their instances.
///
/// With `wanted`, only these classes (names without regard to case) with their superclasses, their
/// subclasses, and the classes that they refer to.
void DescribeMachine(TNamespaceBuilder& builder, const THost& host,
                     const std::optional<std::vector<std::string>>& wanted);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_CATALOGUE_H_
