// SPDX-License-Identifier: Apache-2.0
/// Sorts names as people do.
#ifndef QDXMODEL_NATURAL_ORDER_H_
#define QDXMODEL_NATURAL_ORDER_H_

#include <string_view>

namespace NVORNQDX20::NModel {

/// Returns whether a text comes before another one if numbers in them count as numbers: "DIMM 2"
/// before "DIMM 10". Neither comes before the other if only leading zeros differ.
bool ComesBefore(std::string_view left, std::string_view right);

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_NATURAL_ORDER_H_
