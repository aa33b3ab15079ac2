// SPDX-License-Identifier: Apache-2.0
/// A document while it is read: its namespaces, and the objects on their way into them.
#ifndef LIB_CIMXML_READING_DOCUMENT_H_
#define LIB_CIMXML_READING_DOCUMENT_H_

#include <qdxrepository/repository.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "namespace_builder.h"
#include "xml/element.h"
#include "xml/parser.h"

namespace NVORNQDX20::NCIMXML {

/// Reads the file behind the descriptor into namespaces, one for each path that the document's
/// groups and objects have, "root/cimv2" where they have none. `name` is for messages.
///
/// What the document uses but does not declare is declared after its use: a qualifier by its first
/// one, a class at the end of the document, by its instances and the key bindings that name it. A
/// bad document is logged, "cimxml: NAME: line L, column C: reason", and throws
/// kQDXStatusInvalidDataCollectionDocument. So is a bad file, without the place, which throws what
/// TInput says.
boost::shared_ptr<TRepositoryProvider> ReadDocument(const std::string& name, int descriptor);

class TDocument final : public IObjectSink {
 public:
  void BeginGroup(const TElement& group) override;
  void AddObject(TElement&& object, std::size_t bytes) override;
  void EndGroup() override;
  /// Builds what waits; nothing is added after it.
  void Complete();

  /// The one that a reference names, or `own`. The document need not have it.
  TNamespaceBuilder& NamespaceOf(const TElement& reference, TNamespaceBuilder& own);
  boost::shared_ptr<TRepositoryProvider> Namespaces() const;
  /// Warns of what was read otherwise than it stands there.
  void Report(const std::string& name) const;

 private:
  TNamespaceBuilder& List(const std::string& name);
  TNamespaceBuilder& Group();
  void AddNamedObject(TElement&& object, std::size_t bytes);

  void AddError(const TElement& error);

  TReadingState fState;
  TTally fErrors;  // that are responses
  TPosition fFirstError;
  bool fHasObjects = false;
  struct TEntry {
    std::unique_ptr<TNamespaceBuilder> fBuilder;
    bool fIsListed = false;
  };

  TEntry& Entry(const std::string& name);

  std::map<std::string, TEntry> fNamespaces;  // by folded name
  std::vector<TNamespaceBuilder*> fListed;    // that the document has, not only refers to
  TNamespaceBuilder* fGroup = nullptr;
  bool fObjectsHavePaths = false;  // of the group
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_DOCUMENT_H_
