// SPDX-License-Identifier: Apache-2.0
/// Compares a class of two sides: declarations and instances.
#ifndef LIB_COMPARE_CLASS_COMPARISON_H_
#define LIB_COMPARE_CLASS_COMPARISON_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "class_side.h"

namespace NVORNQDX20 {

/// Visits two sequences that are sorted by `key` side by side: each element with its counterpart,
/// null where a sequence does not have one.
template <typename T, typename TKey, typename TVisit>
void Merge(const std::vector<T>& a, const std::vector<T>& b, TKey key, TVisit visit) {
  auto inA = a.begin();
  auto inB = b.begin();
  while (inA != a.end() || inB != b.end()) {
    const bool takesA = inB == b.end() || (inA != a.end() && !(key(*inB) < key(*inA)));
    const bool takesB = inA == a.end() || (inB != b.end() && !(key(*inA) < key(*inB)));
    visit(takesA ? &*inA : nullptr, takesB ? &*inB : nullptr);
    inA += takesA ? 1 : 0;
    inB += takesB ? 1 : 0;
  }
}

/// A hash that others cannot foresee, and so a short form of a long text.
using TIdentity = std::size_t;
TIdentity IdentityOf(const std::string& text);
/// Of an instance, by the texts with which a reason for a missing value names it.
TIdentity IdentityOf(const std::string& className, const std::string& key);

/// What ties an instance that differs to others.
struct TTrace {
  TIdentity fInstance = 0;
  std::vector<TIdentity> fEnds;         ///< To which its keys refer.
  std::vector<TIdentity> fNames;        ///< By class and key: how reasons name it.
  TIdentity fExplained = 0;             ///< Of a reason: the name of the instance.
  std::string fExplainedProperty = {};  ///< In lower case; empty for the whole class.
};

/// Differences, and for each one of an instance or a value the trace of the instance.
struct TFindings {
  static constexpr std::size_t kNoTrace = static_cast<std::size_t>(-1);

  std::vector<TDifference> fDifferences;
  std::vector<std::size_t> fTraceOf;  ///< By difference; kNoTrace for those of declarations.
  std::vector<TTrace> fTraces;

  void Add(TDifference difference, std::size_t trace = kNoTrace) {
    fDifferences.push_back(std::move(difference));
    fTraceOf.push_back(trace);
  }
};

/// Adds the differences of a class that at least one side has.
void CompareClass(TClassSide& a, TClassSide& b, const TComparisonOptions& options,
                  TFindings& findings);

}  // namespace NVORNQDX20

#endif  // LIB_COMPARE_CLASS_COMPARISON_H_
