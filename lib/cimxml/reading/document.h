// SPDX-License-Identifier: Apache-2.0
/// A document that is being read: gives each object to the builder of its namespace.
#ifndef LIB_CIMXML_READING_DOCUMENT_H_
#define LIB_CIMXML_READING_DOCUMENT_H_

#include <qdxrepository/repository.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "namespace_builder.h"
#include "xml/element.h"
#include "xml/parser.h"

namespace NVORNQDX20::NCIMXML {

class TDocument final : public IObjectSink, public IBuilders {
 public:
  TDocument(const TReadingLimits& limits, const TDefectListener& onDefect)
      : fState(limits, onDefect) {}

  void BeginContainer(const TElement& container, bool isGroup) override;
  void AddStrayText(const TElement& holder) override;
  std::size_t GetRoom() const override { return fState.fMemory.GetRoom(); }
  void AddObject(TElement&& object, std::size_t bytes) override;
  /// Makes everything that waits for the end of the document. The last call.
  void Complete();

  boost::shared_ptr<TRepositoryProvider> GetNamespaces() const;
  /// Warns about what was left out or changed in reading, unless the document is checked.
  void Report(const std::string& name) const {
    if (!fState.fDefects.AreWanted()) fState.Report(name);
  }
  /// Reports what ends the reading as a defect, if the document has begun.
  void ReportEnd(const TDocumentError& error) const;

 private:
  struct TEntry {
    std::unique_ptr<TNamespaceBuilder> fBuilder;
    bool fIsListed = false;
  };

  TSpace& SpaceOf(const TElement& reference, TSpace& own) override;
  TNamespaceBuilder& BuilderOf(const TElement& reference, TNamespaceBuilder& own) override;
  TEntry& Entry(const std::string& name);
  TNamespaceBuilder& List(const std::string& name);
  TNamespaceBuilder& Group();
  TNamespaceBuilder& BuilderFor(const TElement& object);
  void Add(TElement&& object, std::size_t bytes);
  void BeginGroup(const TElement& path);
  void AddNamedObject(TElement&& object, std::size_t bytes);
  void WarnOfOthers(const TElement& holder, const TElement& object, const TSpace& space);
  void AddName(TElement&& path, std::size_t bytes);
  void AddValue(TElement&& value, std::size_t bytes);
  void RequireObjects() const;
  void ReportLostReferences();
  bool IsLost(const TNotedReference& reference);
  void AddError(const TElement& error);

  TReadingState fState;
  TPosition fFirstError;
  TPosition fCall;      // the first call of a method
  TPosition fResponse;  // the first response to one
  bool fHasBegun = false;
  bool fIsInCall = false;
  bool fIsInMessage = false;  // else in declarations, which are objects only
  bool fHasObjects = false;
  NModel::TNameMap<TEntry> fNamespaces;
  std::vector<TNamespaceBuilder*> fBuilders;  // all of them in their order
  std::vector<TNamespaceBuilder*> fListed;    // in the document, not only referred to
  TNamespaceBuilder* fGroup = nullptr;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_DOCUMENT_H_
