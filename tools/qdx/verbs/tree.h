// SPDX-License-Identifier: Apache-2.0
/// Namespaces with all that is in them, as text for people and as JSON.
#ifndef TOOLS_QDX_VERBS_TREE_H_
#define TOOLS_QDX_VERBS_TREE_H_

#include <string>
#include <vector>

#include <qdxsnapshot/snapshot.h>
#include "absence.h"

namespace NVORNQDX20 {

struct TTreeNamespace {
  std::string fName;
  std::string fProvider;  ///< Empty if it is from a document.
  std::vector<TClassSnapshot> fClasses;
  TAbsenceReasons fReasons;
};

/// A line for each namespace, class and instance, and below it the properties; what is absent as
/// "-" with the reason, where the namespace gives one.
std::string FormatTree(const std::vector<TTreeNamespace>& namespaces);

/// The same as one object; what lies below the depth is left out.
TJSON TreeAsJSON(const std::vector<TTreeNamespace>& namespaces, EDepth depth);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_TREE_H_
