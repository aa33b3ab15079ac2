// SPDX-License-Identifier: Apache-2.0
/// Compares qualifiers and methods.
#ifndef LIB_COMPARE_SCHEMA_COMPARISON_H_
#define LIB_COMPARE_SCHEMA_COMPARISON_H_

#include "class_comparison.h"

namespace NVORNQDX20 {

/// Adds the differences of qualifiers and methods of a class that both sides have. The qualifier
/// Key is left out: the declaration of a property says it.
void CompareSchema(const TClassSide& a, const TClassSide& b, TFindings& findings);

/// Adds the differences of the qualifiers that two namespaces declare.
void CompareQualifierDecls(const TSide& a, const TSide& b, TFindings& findings);

}  // namespace NVORNQDX20

#endif  // LIB_COMPARE_SCHEMA_COMPARISON_H_
