// SPDX-License-Identifier: Apache-2.0
/// Leaves out of a comparison the parts that one of two documents does not have.
#ifndef TOOLS_QDX_INPUT_DIFF_PARTS_H_
#define TOOLS_QDX_INPUT_DIFF_PARTS_H_

#include <string>
#include <vector>

#include <qdxsnapshot/compare.h>

namespace NVORNQDX20 {

/// A document in a comparison.
struct TComparedDocument {
  std::string fFile;
  std::vector<TNamespaceSnapshot> fNamespaces;
};

/// Removes from both documents the classes of parts that one of them was collected without,
/// references to these classes, and reasons why values of these are missing. Returns a line for
/// each part that only one document has.
std::vector<std::string> RemoveUnsharedParts(TComparedDocument& a, TComparedDocument& b);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_DIFF_PARTS_H_
