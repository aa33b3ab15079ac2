// SPDX-License-Identifier: Apache-2.0
/// A document while it is read: its namespaces, and the objects on their way into them.
#ifndef LIB_CIMXML_READING_DOCUMENT_H_
#define LIB_CIMXML_READING_DOCUMENT_H_

#include <qdxrepository/repository.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "namespace_reader.h"
#include "xml/element.h"
#include "xml/parser.h"

namespace NVORNQDX20::NCIMXML {

class TDocument final : public IObjectSink {
 public:
  void BeginGroup(const TElement& group) override;
  void AddObject(TElement&& object, std::size_t bytes) override;
  void EndGroup() override;
  /// Builds what waits; nothing is added after it.
  void Complete();

  /// The one that a reference names, or `own`. The document need not have it.
  TNamespaceReader& NamespaceOf(const TElement& reference, TNamespaceReader& own);
  boost::shared_ptr<TRepositoryProvider> Namespaces() const;
  /// Warns of what was read otherwise than it stands there.
  void Report(const std::string& name) const;

 private:
  TNamespaceReader& List(const std::string& name);
  TNamespaceReader& Group();
  void AddNamedObject(TElement&& object, std::size_t bytes);

  void AddError(const TElement& error);

  TReadingState fState;
  TCountedWarning fErrors;  // that are responses
  TPosition fFirstError;
  bool fHasObjects = false;
  struct TEntry {
    std::unique_ptr<TNamespaceReader> fBuilder;
    bool fIsListed = false;
  };

  TEntry& Entry(const std::string& name);

  NModel::TNameMap<TEntry> fNamespaces;
  std::vector<TNamespaceReader*> fListed;  // that the document has, not only refers to
  TNamespaceReader* fGroup = nullptr;
  bool fObjectsHavePaths = false;  // of the group
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_DOCUMENT_H_
