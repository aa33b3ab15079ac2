// SPDX-License-Identifier: Apache-2.0
#include "completeness.h"

#include <qdxmodel/classes.h>

#include <boost/algorithm/string/predicate.hpp>

#include <qdxsnapshot/missing.h>

#include "cli/failure.h"

namespace NVORNQDX20 {
namespace {

bool DescribesTool(const ICIMClass& cimClass) {
  const std::string& name = cimClass.GetName({});
  return name == NDescribe::kMissingValueClass || name == "VORNSG_QDXProduct";
}

/// A key cannot be null: an empty text means that the value is missing.
bool IsKnown(const TCIMValue& value) { return !value.IsNull() && value.ToString(10) != ""; }

bool HasKnownValue(const ICIMInstance& instance) {
  bool isKnown = false;
  instance.EnumerateProperties(
      [&isKnown](const boost::shared_ptr<ICIMProperty>& property) {
        const bool namesClass =
            boost::algorithm::ends_with(property->GetDecl()->GetName(), "CreationClassName");
        isKnown = !namesClass && IsKnown(property->GetValue());
        return !isKnown;
      },
      {});
  return isKnown;
}

/// Returns the first of several reasons with the number of the others: each of a hundred disks can
/// have one, and each class that refers to disks has them all again.
std::string ShortenedReasons(const std::string& reasons) {
  constexpr const char* kSeparator = "; ";
  std::size_t others = 0;
  for (std::size_t at = reasons.find(kSeparator); at != std::string::npos;
       at = reasons.find(kSeparator, at + 2)) {
    ++others;
  }
  if (others < 2) return reasons;
  return reasons.substr(0, reasons.find(kSeparator)) + " and " + std::to_string(others) +
         " more reasons";
}

}  // namespace

bool LacksAllValues(const ICIMNamespace& ns) {
  bool isKnown = false;
  ns.EnumerateClasses(
      [&isKnown](const boost::shared_ptr<ICIMClass>& root) {
        for (const auto& cimClass : NModel::WithSubclasses(root)) {
          // What is tied together is counted by itself.
          if (DescribesTool(*cimClass) || cimClass->IsAssociation({})) continue;
          NModel::ForEachInstance(*cimClass, [&isKnown](const ICIMInstance& instance) {
            isKnown = isKnown || HasKnownValue(instance);
          });
        }
        return !isKnown;
      },
      {});
  return !isKnown && !NDescribe::ReadMissingReasons(ns).empty();
}

bool ReportLostInstances(const std::string& where, const TClassSnapshot& cimClass,
                         const NDescribe::TMissingReasons& reasons) {
  const auto* const reason = FindLoss(cimClass, reasons);
  if (reason == nullptr) return false;
  PrintError("describing " + cimClass.fName + " of " + where + ": " +
             ShortenedReasons(std::string(*reason)));
  return true;
}

bool ReportLostInstances(const std::string& where, const ICIMNamespace& ns) {
  const auto reasons = NDescribe::ReadMissingReasons(ns);
  bool any = false;
  ns.EnumerateClasses(
      [&](const boost::shared_ptr<ICIMClass>& root) {
        for (const auto& cimClass : NModel::WithSubclasses(root)) {
          TClassSnapshot counted;
          counted.fName = cimClass->GetName({});
          if (reasons.count({counted.fName, "", ""}) == 0) continue;
          NModel::ForEachInstance(*cimClass,
                                  [&](const ICIMInstance&) { ++counted.fInstanceCount; });
          any = ReportLostInstances(where, counted, reasons) || any;
        }
        return true;
      },
      {});
  return any;
}

}  // namespace NVORNQDX20
