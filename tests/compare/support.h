// SPDX-License-Identifier: Apache-2.0
/// Differences as lines.
#ifndef TESTS_COMPARE_SUPPORT_H_
#define TESTS_COMPARE_SUPPORT_H_

#include <qdxcompare/compare.h>

#include <string>
#include <vector>

#include "support/class_builder.h"

namespace NVORNQDX20 {

inline std::vector<TComparedNamespace> Compared(const std::vector<TNamespace>& namespaces) {
  std::vector<TComparedNamespace> compared;
  for (const TNamespace& ns : namespaces) {
    compared.push_back({ns, NDescribe::ReadMissingReasons(*ns)});
  }
  return compared;
}

/// A line a difference: its sign and element, where it is, the property, old and new.
inline std::string TextOf(const std::vector<TDifference>& differences) {
  static const char* const kSigns[] = {"-", "+", "~", "?"};
  static const char* const kElements[] = {"namespace", "class", "superclass", "declaration",
                                          "instance",  "value", "qualifier",  "method"};
  std::string text;
  for (const TDifference& one : differences) {
    text += std::string(kSigns[one.fChange]) + kElements[one.fElement] + " " + one.fNamespace;
    text += ":" + one.fOwner + " " + one.fProperty + " " + one.fOld.dump() + " ";
    text += one.fNew.dump() + "\n";
  }
  return text;
}

inline std::string Difference(const TNamespace& a, const TNamespace& b,
                              const TComparisonOptions& options = {}) {
  return TextOf(Compare(Compared({a}), Compared({b}), options));
}

}  // namespace NVORNQDX20

#endif  // TESTS_COMPARE_SUPPORT_H_
