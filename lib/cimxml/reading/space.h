// SPDX-License-Identifier: Apache-2.0
/// A namespace that is being read, as the functions see it that make one object each.
#ifndef LIB_CIMXML_READING_SPACE_H_
#define LIB_CIMXML_READING_SPACE_H_

#include <qdxcore/interfaces.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <utility>

#include "class_table.h"
#include "missing_reasons.h"
#include "reading_state.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

struct TReadClass {
  boost::shared_ptr<ICIMClass> fClass;
  std::size_t fProperties = 0;  // including inherited ones
  std::size_t fDepth = 1;       // including superclasses
  bool fIsUnresolved = false;   // some of them wait for the value of a reference
  bool fIsChosen = true;        // its instances are kept
  mutable std::shared_ptr<TClassTable> fTable = nullptr;  // made for the first instance
};

/// What a reference refers to.
struct TTarget {
  boost::shared_ptr<ICIMNamespace> fNamespace;
  boost::shared_ptr<ICIMClass> fClass;
};

class TSpace;

/// Finds the namespace of a reference.
class ISpaces {
 public:
  virtual ~ISpaces() = default;
  /// Returns the namespace that a reference names, else `own`. The document need not contain it.
  virtual TSpace& SpaceOf(const TElement& reference, TSpace& own) = 0;
};

/// A reference property of a class that has been made, whose value needs classes that may follow.
struct TUnresolved {
  boost::shared_ptr<ICIMClass> fClass;
  std::string fProperty;
  TElement fSource;        ///< A property, or a VALUE.REFERENCE.
  bool fIsStatic = false;  ///< The value of the class, not a declaration.
};

/// The objects of a namespace that have been made. Makes none itself.
class TSpace {
 public:
  TSpace(ISpaces& spaces, TReadingState& state, const std::string& name)
      : fSpaces(spaces), fState(state), fNamespace(MakeRepositoryNamespace(name)) {}
  TSpace(const TSpace&) = delete;
  TSpace& operator=(const TSpace&) = delete;

  const boost::shared_ptr<ICIMNamespace>& GetNamespace() const { return fNamespace; }
  ISpaces& GetSpaces() const { return fSpaces; }
  TReadingState& GetState() const { return fState; }
  TMemoryAccount& GetMemory() const { return fState.fMemory; }

  /// Returns null if no such class has been made.
  const TReadClass* FindClass(const std::string& name) const {
    if (fLastFound != nullptr && fLastFound->first == name) return &fLastFound->second;
    const auto found = fClasses.find(name);
    if (found == fClasses.end()) return nullptr;
    fLastFound = &*found;
    return &found->second;
  }
  /// A missing class is an error of `usedBy`.
  const TReadClass& GetClass(const std::string& name, const TElement& usedBy) const {
    const TReadClass* const found = FindClass(name);
    if (found == nullptr) usedBy.Refuse("class " + Shown(name) + " is missing");
    return *found;
  }
  void AddClass(const std::string& name, const TReadClass& made) { fClasses.emplace(name, made); }
  /// Returns what stands in for a declared class; empty before it is made.
  TTarget& StandIn(const std::string& signature) { return fStandIns[signature]; }
  TMissingReasons& Reasons() { return fReasons; }
  std::deque<TUnresolved>& Unresolved() { return fUnresolved; }

 private:
  ISpaces& fSpaces;
  TReadingState& fState;
  const boost::shared_ptr<ICIMNamespace> fNamespace;
  NModel::TNameMap<TReadClass> fClasses;
  mutable const std::pair<const std::string, TReadClass>* fLastFound = nullptr;
  NModel::TNameMap<TTarget> fStandIns;
  TMissingReasons fReasons;
  std::deque<TUnresolved> fUnresolved;  // their elements must not move
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_SPACE_H_
