// SPDX-License-Identifier: Apache-2.0
/// Formats declarations of classes and trees of classes, as text for people, as JSON and as MOF.
#ifndef TOOLS_QDX_FORMAT_SCHEMA_FORMAT_H_
#define TOOLS_QDX_FORMAT_SCHEMA_FORMAT_H_

#include <string>
#include <vector>

#include <qdxsnapshot/schema.h>
#include <qdxsnapshot/value_json.h>

namespace NVORNQDX20 {

/// Declarations of a namespace.
struct TNamespaceSchema {
  std::string fName;
  std::string fProvider;  ///< Empty for a document.
  std::vector<TQualifierSchema> fQualifiers;
  std::vector<TClassSchema> fClasses;
};

/// Returns each class with its qualifiers, properties and methods, including inherited ones with
/// the class that declares them.
std::string FormatSchema(const std::vector<TNamespaceSchema>& namespaces);
TJSON SchemaAsJSON(const std::vector<TNamespaceSchema>& namespaces);
/// Returns the declarations of qualifiers and of classes, without what classes inherit.
std::string FormatMOF(const std::vector<TNamespaceSchema>& namespaces);

struct TNamespaceTree {
  std::string fName;
  std::string fProvider;  ///< Empty for a document.
  std::vector<TClassNode> fNodes;
};

/// Returns a line for each class, indented below that of its superclass.
std::string FormatTree(const std::vector<TNamespaceTree>& namespaces);
TJSON TreeAsJSON(const std::vector<TNamespaceTree>& namespaces);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_FORMAT_SCHEMA_FORMAT_H_
