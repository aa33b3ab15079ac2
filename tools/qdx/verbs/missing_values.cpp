// SPDX-License-Identifier: Apache-2.0
#include "missing_values.h"

#include <qdxmodel/classes.h>

#include "cli/failure.h"

namespace NVORNQDX20 {
namespace {

std::string Text(const ICIMInstance& instance, const char* property) {
  return instance.GetProperty(property, {})->GetValue();
}

}  // namespace

TMissingValueReasons ReadMissingValueReasons(const ICIMNamespace& ns) {
  TMissingValueReasons reasons;
  // A reason that cannot be read is skipped: the status of the value is shown instead.
  (void)Try([&] {
    const auto missing = ns.GetClass("VORNSG_UnavailableValue", {});
    if (!missing) return;
    NModel::ForEachInstance(*missing, [&reasons](const ICIMInstance& instance) {
      reasons.emplace(std::tuple(Text(instance, "ClassName"), Text(instance, "Instance"),
                                 Text(instance, "PropertyName")),
                      Text(instance, "Reason"));
    });
  });
  return reasons;
}

}  // namespace NVORNQDX20
