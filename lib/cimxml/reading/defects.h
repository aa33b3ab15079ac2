// SPDX-License-Identifier: Apache-2.0
/// The defects of a document that is being checked, and what is collected to find them.
#ifndef LIB_CIMXML_READING_DEFECTS_H_
#define LIB_CIMXML_READING_DEFECTS_H_

#include <qdxcimxml/document_reader.h>
#include <qdxcore/reference.h>

#include <string>
#include <utility>
#include <vector>

#include "xml/document_error.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

class TSpace;

/// A reference in the document. Whether it leads to an instance is known at the end.
struct TNotedReference {
  TCIMReference fReference;
  std::string fNamespace;
  std::string fHost;  ///< Empty without one.
  TPosition fPosition;
  std::string fObject;  ///< The object that has it.
};

/// Passes defects to the listener; without one, does nothing.
class TDefects {
 public:
  explicit TDefects(TDefectListener listener) : fListener(std::move(listener)) {}

  bool AreWanted() const { return static_cast<bool>(fListener); }
  void Add(const TPosition& position, const std::string& object, const std::string& message) const;
  /// A defect of the object that is being made.
  void Add(const TPosition& position, const std::string& message) const;
  /// The document cannot be read further.
  void AddLast(const TDocumentError& error) const;

  /// Describes the object that is being made; empty between objects.
  std::string CurrentObject() const;
  void NoteReference(TNotedReference reference) { fReferences.push_back(std::move(reference)); }
  const std::vector<TNotedReference>& GetReferences() const { return fReferences; }

  /// During its lifetime, an object is being made. It may need others, which are made in between.
  class TMaking {
   public:
    TMaking(TDefects& defects, const TSpace& space, const TElement& object)
        : fDefects(defects), fOuter(std::exchange(defects.fCurrent, {&space, &object})) {}
    ~TMaking() { fDefects.fCurrent = fOuter; }
    TMaking(const TMaking&) = delete;
    TMaking& operator=(const TMaking&) = delete;

   private:
    TDefects& fDefects;
    const std::pair<const TSpace*, const TElement*> fOuter;
  };

 private:
  TDefectListener fListener;
  std::pair<const TSpace*, const TElement*> fCurrent{};
  std::vector<TNotedReference> fReferences;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_DEFECTS_H_
