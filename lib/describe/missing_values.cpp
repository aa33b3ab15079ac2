// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/missing_values.h>

#include <qdxdescribe/declaration.h>
#include <qdxmodel/classes.h>

#include <new>
#include <utility>

namespace NVORNQDX20::NDescribe {
namespace {

TPropertyDeclaration Text(const char* name, bool isKey, const char* description) {
  TPropertyDeclaration text(name, TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 0));
  text.fIsKey = isKey;
  text.fDescription = description;
  return text;
}

TPropertyDeclaration Flag(const char* name, const char* description) {
  TPropertyDeclaration flag(name, TCIMValue(TCIMValue::TCIMType::kCIMTypeBoolean, 0));
  flag.fDescription = description;
  return flag;
}

TClassDeclaration Declaration() {
  return {kMissingValueClass,
          "A value that this machine does not have, or does not tell, and why.",
          {Text("ClassName", true, "The class of the instance that lacks it."),
           Text("Instance", true,
                "The key of that instance; empty where the class has only one, and for all "
                "instances that lack the value for the same reason."),
           Text("PropertyName", true,
                "The property that is null; empty where the class lacks instances."),
           Text("Reason", false, "What stood in the way."),
           Flag("IsError",
                "Whether an error stood in the way, so that the machine may have the value.")}};
}

/// Returns false for documents of earlier versions, which have no such property.
bool IsError(const ICIMInstance& instance) {
  try {
    const auto property = instance.GetProperty("IsError", {});
    return property && !property->GetValue().IsNull() && property->GetValue();
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() == kQDXStatusOutOfMemory) throw;
    return false;
  }
}

std::string Text(const ICIMInstance& instance, const char* property) {
  return instance.GetProperty(property, {})->GetValue();
}

boost::shared_ptr<ICIMClass> FindOrDeclare(ICIMNamespace& ns) {
  try {
    return ns.GetClass(kMissingValueClass, {});
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() != kQDXStatusNotFound) throw;
    return DeclareClass(ns, Declaration());
  }
}

}  // namespace

void WriteMissingValues(ICIMNamespace& ns, std::vector<TMissingValue> values) {
  const auto missing = FindOrDeclare(ns);
  for (TMissingValue& value : values) {
    // Its memory is free for the instance.
    const auto [className, instance, property, reason] = std::exchange(value, {});
    AddInstance(*missing, {{"ClassName", className},
                           {"Instance", instance},
                           {"PropertyName", property},
                           {"Reason", std::string(reason)},
                           {"IsError", reason.IsError()}});
  }
}

std::string ReasonOfPart(const std::string& part) { return "part " + part + " is left out"; }

std::string ReasonUntilAskedFor(const std::string& part) { return "not asked for: --with " + part; }

TMissingReasons ReadMissingReasons(const ICIMNamespace& ns) {
  TMissingReasons reasons;
  try {
    const auto missing = ns.GetClass(kMissingValueClass, {});
    if (!missing) return reasons;
    NModel::ForEachInstance(*missing, [&reasons](const ICIMInstance& instance) {
      reasons.emplace(std::tuple(Text(instance, "ClassName"), Text(instance, "Instance"),
                                 Text(instance, "PropertyName")),
                      TReason(Text(instance, "Reason"),
                              IsError(instance) ? TReason::kError : TReason::kAbsence));
    });
  } catch (const std::bad_alloc&) {
    throw;         // the reasons are not to be lost
  } catch (...) {  // what the provider of the namespace throws can be of any type
    return reasons;
  }
  return reasons;
}

}  // namespace NVORNQDX20::NDescribe
