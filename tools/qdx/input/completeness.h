// SPDX-License-Identifier: Apache-2.0
/// How much of a machine a namespace describes.
#ifndef TOOLS_QDX_INPUT_COMPLETENESS_H_
#define TOOLS_QDX_INPUT_COMPLETENESS_H_

#include <qdxdescribe/missing_values.h>

#include <string>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

/// Returns whether no value is known although the namespace explains why values are missing: the
/// only values are the names of classes and what describes the tool.
bool LacksAllValues(const ICIMNamespace& ns);

/// What a verb says of such a machine.
inline constexpr const char* kLacksAllValues =
    "all values are missing; 'qdx show' gives the reasons";

/// Prints a line if the class lacks instances which the machine may have, "describing CLASS of
/// WHERE: reason". Returns whether it does.
bool ReportLostInstances(const std::string& where, const TClassSnapshot& cimClass,
                         const NDescribe::TMissingReasons& reasons);
/// The same for each class of the namespace. Returns whether there is such a class.
bool ReportLostInstances(const std::string& where, const ICIMNamespace& ns);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_COMPLETENESS_H_
