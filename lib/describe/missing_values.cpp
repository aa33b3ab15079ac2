// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/missing_values.h>

#include <qdxdescribe/declaration.h>
#include <qdxmodel/classes.h>

#include <new>

namespace NVORNQDX20::NDescribe {
namespace {

TPropertyDeclaration Text(const char* name, bool isKey, const char* description) {
  TPropertyDeclaration text(name, TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 0));
  text.fIsKey = isKey;
  text.fDescription = description;
  return text;
}

TClassDeclaration Declaration() {
  return {kMissingValueClass,
          "A value that this machine does not have, or does not tell, and why.",
          {Text("ClassName", true, "The class of the instance that lacks it."),
           Text("Instance", true, "The key of that instance; empty where the class has only one."),
           Text("PropertyName", true,
                "The property that is null; empty where the class lacks instances."),
           Text("Reason", false, "What stood in the way.")}};
}

std::string Text(const ICIMInstance& instance, const char* property) {
  return instance.GetProperty(property, {})->GetValue();
}

}  // namespace

void WriteMissingValues(ICIMNamespace& ns, const std::vector<TMissingValue>& values) {
  const auto missing = DeclareClass(ns, Declaration());
  for (const auto& [className, instance, property, reason] : values) {
    AddInstance(*missing, {{"ClassName", className},
                           {"Instance", instance},
                           {"PropertyName", property},
                           {"Reason", reason}});
  }
}

std::string ReasonOfPart(const std::string& part) { return "part " + part + " is left out"; }

TMissingReasons ReadMissingReasons(const ICIMNamespace& ns) {
  TMissingReasons reasons;
  try {
    const auto missing = ns.GetClass(kMissingValueClass, {});
    if (!missing) return reasons;
    NModel::ForEachInstance(*missing, [&reasons](const ICIMInstance& instance) {
      reasons.emplace(std::tuple(Text(instance, "ClassName"), Text(instance, "Instance"),
                                 Text(instance, "PropertyName")),
                      Text(instance, "Reason"));
    });
  } catch (const std::bad_alloc&) {
    throw;         // the reasons are not to be lost
  } catch (...) {  // what the provider of the namespace throws can be of any type
    return reasons;
  }
  return reasons;
}

}  // namespace NVORNQDX20::NDescribe
