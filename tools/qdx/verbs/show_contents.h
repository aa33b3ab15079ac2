// SPDX-License-Identifier: Apache-2.0
/// Shows instances, class by class.
#ifndef TOOLS_QDX_VERBS_SHOW_CONTENTS_H_
#define TOOLS_QDX_VERBS_SHOW_CONTENTS_H_

#include <optional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "show_find.h"
#include "show_request.h"

namespace NVORNQDX20 {

using TInstances = std::vector<boost::shared_ptr<ICIMInstance>>;

struct TClassToShow {
  boost::shared_ptr<ICIMClass> fClass;
  std::optional<TInstances> fInstances = std::nullopt;  ///< None for all.
  /// Whether somebody asked for this class: then it is shown even without instances.
  bool fIsAskedFor = false;
};

struct TNamespaceToShow {
  TMachineNamespace fOrigin;
  std::vector<TClassToShow> fClasses;
};

/// Returns what there is to show of each element.
std::vector<TNamespaceToShow> ContentsOf(const std::vector<TFoundElement>& found);

/// Prints the contents as the request has it, and reports classes that lack instances. Returns
/// whether there are none. The record is only for JSON lines. Throws a TCommandFailure if no class
/// has a property that the request names, and what WriteOutput() throws.
bool ShowContents(const TRequest& request, std::vector<TNamespaceToShow> namespaces,
                  const TCollectionRecord& record);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_SHOW_CONTENTS_H_
