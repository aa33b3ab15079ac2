// SPDX-License-Identifier: Apache-2.0
/// Names of the machine that only one side of a comparison knows.
#ifndef LIB_COMPARE_MACHINE_NAME_H_
#define LIB_COMPARE_MACHINE_NAME_H_

#include "class_side.h"

namespace NVORNQDX20 {

/// Lets `known` ignore texts of keys that `unknown` lacks by an error: then the key of all
/// instances of a class is empty, and on the other side always the same text.
void HideUnknownKeys(const TSide& unknown, TSide& known);

}  // namespace NVORNQDX20

#endif  // LIB_COMPARE_MACHINE_NAME_H_
