// SPDX-License-Identifier: Apache-2.0
/// Orders the objects of one namespace, and makes them.
#ifndef LIB_CIMXML_READING_NAMESPACE_BUILDER_H_
#define LIB_CIMXML_READING_NAMESPACE_BUILDER_H_

#include <qdxmodel/names.h>

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "object_makers.h"
#include "space.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

class TNamespaceBuilder;

/// The namespaces of a document.
class IBuilders : public ISpaces {
 public:
  /// As SpaceOf(): a namespace and its builder are the same object.
  virtual TNamespaceBuilder& BuilderOf(const TElement& reference, TNamespaceBuilder& own) = 0;
};

/// A class is made when an instance needs it, after its superclasses; the others at the end, so
/// their order in the document does not matter. An instance is made as soon as its class and the
/// classes that it refers to can be made, so that few of them are held; the others wait for the
/// end. Then classes that are missing are made from all their uses in the document.
///
/// An object with a fault is left out and recorded; the others do not notice. Of a class that is
/// left out, its uses make a class as if it were not declared.
class TNamespaceBuilder final : public TSpace {
 public:
  TNamespaceBuilder(IBuilders& builders, TReadingState& state, const std::string& name)
      : TSpace(builders, state, name), fBuilders(builders) {}

  void AddQualifierDecl(const TElement& element);
  void AddClass(TElement&& element, std::size_t bytes);
  /// Adds an INSTANCE, alone or together with its name or path.
  void AddInstance(TElement&& object, std::size_t bytes);
  /// Adds an instance of which only the name is known; unless the document has it, too.
  void AddInstanceName(TElement&& object, std::size_t bytes);

  /// Returns whether the document declares the class, rightly or not.
  bool Declares(const std::string& className) const;

  // Called at the end of the document, each for all namespaces before the next one. The first may
  // add namespaces.
  void NoteUses();
  void MakeClasses();
  void ResolveReferences();
  void MakeInstances();

 private:
  /// A declared class. When uses have been noted, it is kept after it is made: they may be in it.
  struct TSource {
    TElement fElement;
    bool fIsFaulty = false;  // it is left out
    std::size_t fWalk = 0;   // the last one that came here
  };
  /// The uses of a class that has not been made.
  struct TUses {
    const TElement* fFirst = nullptr;
    std::vector<const TElement*> fElements;  // objects, and names of objects
  };

  bool IsReady(const TElement& object);
  bool MakeClassIfPossible(const std::string& name);
  void MakeClass(const std::string& name, const TElement& usedBy);
  bool MakeDeclared(const std::string& name);
  void MakeUndeclared(const std::string& name, const TElement& usedBy);
  void MakeFromUses(const std::string& name, const TElement& usedBy);
  void AddUses(const std::string& name, const TSubclass* subclass, std::vector<TClassUse>& uses);
  void Wait(std::deque<TElement>& queue, TElement&& object, std::size_t bytes);
  TUses& NoteUse(const std::string& className, const TElement& usedBy);
  void NoteUsesIn(const TElement& object);
  /// Returns false, and records the object, if `work` throws.
  template <typename TWork>
  bool Attempt(const TElement& object, TWork&& work);

  IBuilders& fBuilders;
  NModel::TNameMap<TSource> fSources;
  std::vector<std::string> fSourceOrder;
  NModel::TNameMap<bool> fDeclared;  // all of them, rightly or not
  std::size_t fWalk = 0;
  bool fKeepsSources = false;
  std::deque<TElement> fWaitingInstances;
  std::deque<TElement> fInstanceNames;
  NModel::TNameMap<TUses> fUses;
  std::vector<std::string> fUseOrder;
  NModel::TNameMap<std::vector<const TElement*>> fSubclasses;  // declared, by superclass
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_NAMESPACE_BUILDER_H_
