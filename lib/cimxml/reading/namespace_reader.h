// SPDX-License-Identifier: Apache-2.0
/// Builds one namespace of a document.
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

/// Thrown for a class that is not declared yet: the object that needs it waits for the end of the
/// document.
struct TNotDeclaredYet {};

struct TReadClass {
  boost::shared_ptr<ICIMClass> fClass;
  std::size_t fProperties = 0;  // including inherited ones
  std::size_t fDepth = 1;       // including superclasses
};

/// State that all namespaces of one document share.
struct TReadingState {
  /// A class that is being declared; fClass is null until it exists.
  struct TDeclaring {
    const TNamespaceReader* fNamespace;
    std::string fName;
    TReadClass fClass;
  };

  /// Begins to read an object of this size.
  void BeginObject(std::size_t bytes) { fObjectBytes = bytes; }
  /// Counts memory that is held, against the limit.
  void AddHeld(std::size_t bytes, const TElement& element);
  void AddValues(std::size_t values, const TElement& element) {
    AddHeld(values * sizeof(TCIMValue), element);
  }
  /// Counts the contents of a value twice until the next object: setting a property copies it.
  void AddContents(std::size_t bytes, const TElement& element) {
    fObjectBytes += bytes;
    AddHeld(bytes, element);
  }
  std::size_t GetRoom() const;

  bool fIsComplete = false;  // the end of the document is reached
  std::vector<TDeclaring> fDeclaring;
  std::size_t fHeldBytes = 0;
  std::size_t fObjectBytes = 0;  // of the object that is being read
  TCountedWarning fUnheldDateTimes;
  TCountedWarning fDuplicates;      // instances with the keys of another one
  TCountedWarning fContradictions;  // names that contradict their instances
};

/// Classes are declared when an object needs them, the others at the end, so their order in the
/// document does not matter. Instances that precede what their class needs wait for the end.
class TNamespaceReader {
 public:
  TNamespaceReader(TDocument& document, TReadingState& state, const std::string& name);
  TNamespaceReader(const TNamespaceReader&) = delete;
  TNamespaceReader& operator=(const TNamespaceReader&) = delete;

  void AddQualifierDecl(const TElement& element);
  void AddClass(TElement&& element, std::size_t bytes);
  /// Adds an INSTANCE, alone or together with its name or path.
  void AddInstance(TElement&& object, std::size_t bytes);
  // Called at the end of the document, each for all namespaces before the next one:
  void NoteReferences();
  void BuildClasses();
  void BuildInstances();

  const boost::shared_ptr<ICIMNamespace>& GetNamespace() const { return fNamespace; }
  TDocument& GetDocument() const { return fDocument; }
  TReadingState& GetState() const { return fState; }

  /// Returns the class, which `usedBy` needs; from the name of an instance, the properties of an
  /// undeclared class are derived. The class that is being declared can be returned, too.
  TReadClass ClassNamed(const std::string& name, const TElement& usedBy);
  /// Returns the declaration of a qualifier of an element.
  boost::shared_ptr<ICIMQualifierDecl> QualifierDeclFor(const TElement& qualifier);
  boost::shared_ptr<ICIMQualifierDecl> KeyDecl();

 private:
  struct TSource {
    TElement fElement;
    bool fIsWaiting = false;  // for another class that it needs
  };

  TReadClass Declare(const std::string& name, const TElement& usedBy);
  boost::shared_ptr<ICIMClass> ReadSource(const std::string& name);
  boost::shared_ptr<ICIMClass> Synthesize(const std::string& name, const TElement& usedBy);
  void NoteReferencesIn(const TElement& element);
  void NoteUse(const std::string& className, const TElement& usedBy) {
    fUses[className].push_back(&usedBy);
  }
  TReadClass Measured(const boost::shared_ptr<ICIMClass>& cimClass, const TElement& usedBy) const;

  TDocument& fDocument;
  TReadingState& fState;
  const boost::shared_ptr<ICIMNamespace> fNamespace;
  NModel::TNameMap<TReadClass> fClasses;
  NModel::TNameMap<TSource> fSources;
  std::vector<std::string> fSourceOrder;
  std::deque<TElement> fWaitingInstances;
  // The uses of classes that are not declared.
  NModel::TNameMap<std::vector<const TElement*>> fUses;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_NAMESPACE_READER_H_
