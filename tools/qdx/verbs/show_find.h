// SPDX-License-Identifier: Apache-2.0
/// Finds what the command line of the verb show names.
#ifndef TOOLS_QDX_VERBS_SHOW_FIND_H_
#define TOOLS_QDX_VERBS_SHOW_FIND_H_

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "input/machine.h"
#include "show_request.h"

namespace NVORNQDX20 {

/// What the request names in a namespace.
struct TFoundElement {
  /// Null if it is no class.
  boost::shared_ptr<ICIMClass> GetClass() const;
  /// Null if it is no instance.
  boost::shared_ptr<ICIMInstance> GetInstance() const;

  TMachineNamespace fOrigin;
  boost::shared_ptr<ICIMElement> fElement;  ///< Null for the whole namespace.
};

/// Finds the element of the request in each namespace, in the order of their names. The name of a
/// class may be what FindClassFor() understands. Throws a TCommandFailure if there is none, and if
/// a class can be several. The reason may be that `partsLeftOut` have it, or that a provider
/// failed: then `isComplete` is false.
std::vector<TFoundElement> FindRequested(const TRequest& request,
                                         const std::vector<TMachineNamespace>& namespaces,
                                         const std::vector<std::string>& partsLeftOut,
                                         bool isComplete);

/// Returns the name of the class that a person typed, as a namespace has it; empty for an empty
/// one. Throws as FindRequested() does.
std::string FindClassName(const std::string& typed,
                          const std::vector<TMachineNamespace>& namespaces);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_SHOW_FIND_H_
