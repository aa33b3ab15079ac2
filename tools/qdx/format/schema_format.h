// SPDX-License-Identifier: Apache-2.0
/// Formats declarations of classes and trees of classes, as text for people, as JSON and as MOF.
#ifndef TOOLS_QDX_FORMAT_SCHEMA_FORMAT_H_
#define TOOLS_QDX_FORMAT_SCHEMA_FORMAT_H_

#include <memory>
#include <string>
#include <vector>

#include <qdxsnapshot/schema.h>
#include <qdxsnapshot/value_json.h>

namespace NVORNQDX20 {

/// Prints declarations one by one: a class has all that it inherits, so all together need much
/// memory. Each call throws what WriteOutput() throws.
class ISchemaFormat {
 public:
  virtual ~ISchemaFormat() = default;
  /// `provider` is empty for a document.
  virtual void BeginNamespace(const std::string& name, const std::string& provider,
                              const std::vector<TQualifierSchema>& qualifiers) = 0;
  virtual void AddClass(const TClassSchema& cimClass) = 0;
  virtual void EndNamespace() = 0;
  virtual void End() = 0;
};

/// Each class with its qualifiers, properties and methods, including inherited ones with the class
/// that declares them.
std::unique_ptr<ISchemaFormat> MakeSchemaText();
std::unique_ptr<ISchemaFormat> MakeSchemaJSON();
/// The declarations of qualifiers and of classes, without what classes inherit.
std::unique_ptr<ISchemaFormat> MakeSchemaMOF();

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
