// SPDX-License-Identifier: Apache-2.0
/// One namespace of a document while it is read.
#ifndef LIB_CIMXML_READING_NAMESPACE_READER_H_
#define LIB_CIMXML_READING_NAMESPACE_READER_H_

#include <qdxcore/interfaces.h>
#include <qdxmodel/names.h>

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "xml/counted_warning.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

class TDocument;
class TNamespaceReader;

/// Thrown for a class that is not declared yet: what needs it waits for the end of the document.
struct TNotDeclaredYet {};

struct TReadClass {
  boost::shared_ptr<ICIMClass> fClass;
  std::size_t fProperties = 0;  // with the inherited ones
  std::size_t fDepth = 1;       // with the superclasses
};

/// What the namespaces of one document share.
struct TReadingState {
  /// A class that is being declared; null until it exists.
  struct TDeclaring {
    const TNamespaceReader* fNamespace;
    std::string fName;
    TReadClass fClass;
  };

  /// Counts against the limits.
  void AddHeld(std::size_t bytes, const TElement& element);
  void AddValues(std::size_t values, const TElement& element) {
    AddHeld(values * sizeof(TCIMValue), element);
  }

  bool fIsComplete = false;  // all of the document is known
  std::vector<TDeclaring> fDeclaring;
  std::size_t fHeldBytes = 0;
  TCountedWarning fUnheldDateTimes;
  TCountedWarning fDuplicates;      // instances whose keys another one has
  TCountedWarning fContradictions;  // names that say something else than their instances
};

/// Classes are declared when something needs them, and all at the end, so their order in the
/// document is free. Instances that come before all that their class needs wait for the end.
class TNamespaceReader {
 public:
  TNamespaceReader(TDocument& document, TReadingState& state, const std::string& name);
  TNamespaceReader(const TNamespaceReader&) = delete;
  TNamespaceReader& operator=(const TNamespaceReader&) = delete;

  void AddQualifierDecl(const TElement& element);
  void AddClass(TElement&& element, std::size_t bytes);
  /// An INSTANCE, alone or together with its name or path.
  void AddInstance(TElement&& object, std::size_t bytes);
  // At the end of the document, each for all namespaces before the next:
  void NoteReferences();
  void BuildClasses();
  void BuildInstances();

  const boost::shared_ptr<ICIMNamespace>& Namespace() const { return fNamespace; }
  TDocument& Document() const { return fDocument; }
  TReadingState& State() const { return fState; }

  /// `use` is the element that needs it; the name of an instance tells what an undeclared class
  /// must have. The class that is being declared right now is given out too.
  TReadClass ClassNamed(const std::string& name, const TElement& use);
  /// The declaration of a qualifier that stands on an element.
  boost::shared_ptr<ICIMQualifierDecl> QualifierDeclFor(const TElement& qualifier);
  boost::shared_ptr<ICIMQualifierDecl> KeyDecl();

 private:
  struct TSource {
    TElement fElement;
    bool fWaits = false;  // for a class that it needs itself
  };

  TReadClass Declare(const std::string& name, const TElement& use);
  boost::shared_ptr<ICIMClass> ReadSource(const std::string& name);
  boost::shared_ptr<ICIMClass> Synthesize(const std::string& name, const TElement& use);
  void NoteReferencesIn(const TElement& element);
  void NoteUse(const std::string& className, const TElement& use) {
    fUses[className].push_back(&use);
  }
  TReadClass Measured(const boost::shared_ptr<ICIMClass>& cimClass, const TElement& use) const;

  TDocument& fDocument;
  TReadingState& fState;
  const boost::shared_ptr<ICIMNamespace> fNamespace;
  NModel::TNameMap<TReadClass> fClasses;
  NModel::TNameMap<TSource> fSources;
  std::vector<std::string> fSourceOrder;
  std::deque<TElement> fWaitingInstances;
  // What tells of a class that is not declared.
  NModel::TNameMap<std::vector<const TElement*>> fUses;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_NAMESPACE_READER_H_
