// SPDX-License-Identifier: Apache-2.0
/// Leaves out of a comparison the parts that one of two documents does not have.
#ifndef TOOLS_QDX_INPUT_DIFF_PARTS_H_
#define TOOLS_QDX_INPUT_DIFF_PARTS_H_

#include <string>
#include <vector>

#include <qdxcompare/compare.h>

namespace NVORNQDX20 {

/// A document in a comparison.
struct TComparedDocument {
  std::string fFile;
  std::vector<TComparedNamespace> fNamespaces;
};

/// Returns the parts that one of the documents was collected without, with their classes. Adds a
/// line for each part that only one document has.
TLeftOut FindUnsharedParts(const TComparedDocument& a, const TComparedDocument& b,
                           std::vector<std::string>& lines);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_DIFF_PARTS_H_
