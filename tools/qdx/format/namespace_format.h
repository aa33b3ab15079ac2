// SPDX-License-Identifier: Apache-2.0
/// Formats namespaces with their contents, as text for people and as JSON.
#ifndef TOOLS_QDX_FORMAT_NAMESPACE_FORMAT_H_
#define TOOLS_QDX_FORMAT_NAMESPACE_FORMAT_H_

#include <qdxdescribe/missing_values.h>

#include <string>
#include <vector>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

/// The contents to show of a namespace.
struct TNamespaceContents {
  std::string fName;
  std::string fProvider;  ///< Empty for a document.
  std::vector<TClassSnapshot> fClasses;
  NDescribe::TMissingReasons fReasons;
};

/// Returns a line for each namespace, class and instance, followed by the properties; missing
/// values and missing instances as "-", with the reason if the namespace gives one.
std::string FormatNamespaces(const std::vector<TNamespaceContents>& namespaces);

/// Returns the same as one JSON object, without what is deeper than `depth`.
TJSON NamespacesAsJSON(const std::vector<TNamespaceContents>& namespaces, EDepth depth);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_FORMAT_NAMESPACE_FORMAT_H_
