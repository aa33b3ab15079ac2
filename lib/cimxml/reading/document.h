// SPDX-License-Identifier: Apache-2.0
/// The state of a document that is being read: its namespaces, and how objects get into them.
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
  std::size_t GetRoom() const override { return fState.GetRoom(); }
  void AddObject(TElement&& object, std::size_t bytes) override;
  void EndGroup() override;
  /// Builds everything that waits for the end of the document. The last call.
  void Complete();

  /// Returns the namespace that a reference names, else `own`. The document need not contain it.
  TNamespaceReader& NamespaceOf(const TElement& reference, TNamespaceReader& own);
  boost::shared_ptr<TRepositoryProvider> GetNamespaces() const;
  /// Warns about what was changed in reading.
  void Report(const std::string& name) const;

 private:
  TNamespaceReader& List(const std::string& name);
  TNamespaceReader& Group();
  void AddNamedObject(TElement&& object, std::size_t bytes);

  void AddError(const TElement& error);

  TReadingState fState;
  TCountedWarning fErrors;  // error responses
  TPosition fFirstError;
  bool fHasObjects = false;
  struct TEntry {
    std::unique_ptr<TNamespaceReader> fBuilder;
    bool fIsListed = false;
  };

  TEntry& Entry(const std::string& name);

  NModel::TNameMap<TEntry> fNamespaces;
  std::vector<TNamespaceReader*> fListed;  // in the document, not only referred to
  TNamespaceReader* fGroup = nullptr;
  bool fHasObjectPaths = false;  // in the current group
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_DOCUMENT_H_
