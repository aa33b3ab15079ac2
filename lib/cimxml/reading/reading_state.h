// SPDX-License-Identifier: Apache-2.0
/// What all parts of the reader share: the account of memory, and the record of what was lost.
#ifndef LIB_CIMXML_READING_READING_STATE_H_
#define LIB_CIMXML_READING_READING_STATE_H_

#include <qdxcore/value.h>
#include <qdxmodel/names.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "defects.h"
#include "xml/counted_warning.h"
#include "xml/document_limits.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// Counts the memory that a document needs, against the limit.
class TMemoryAccount {
 public:
  explicit TMemoryAccount(const TReadingLimits& limits) : fLimits(limits) {}

  /// Begins to read an object of this size.
  void BeginObject(std::size_t bytes) { fObjectBytes = bytes; }
  /// Throws a fatal TDocumentError above the limit.
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

 private:
  const TDocumentLimits fLimits;
  std::size_t fHeldBytes = 0;
  std::size_t fObjectBytes = 0;  // of the object that is being read
};

/// The warnings about a document: a line for each of the first ones, and the number of the others.
class TWarnings {
 public:
  void Add(const TPosition& position, const std::string& text);
  /// Whether the text of the next warning matters.
  bool HasRoom() const { return fLines.size() < kMostLines; }
  /// Logs "cimxml: NAME: line L, column C: TEXT" for each, and the number of those without a line:
  /// "N more OTHERS".
  void Report(const std::string& name, const std::string& other, const std::string& others) const;

 private:
  static constexpr std::size_t kMostLines = 20;

  struct TLine {
    TPosition fPosition;
    std::string fText;
  };
  std::vector<TLine> fLines;
  std::size_t fCount = 0;
};

/// Finds references to other machines: those whose host no object of the document has.
class THosts {
 public:
  explicit THosts(TMemoryAccount& memory) : fMemory(memory) {}

  /// Notes the host of an object, or of the namespace of objects.
  void AddOwn(const TElement& host) { At(host).fIsOwn = true; }
  void AddOfReference(const TElement& host);
  /// Returns whether an object of the document has this host.
  bool IsOwn(const std::string& host) const;
  /// Warns of references that lost their host.
  void Report(const std::string& name) const;

 private:
  struct THost {
    bool fIsOwn = false;
    std::size_t fReferences = 0;
    std::size_t fOrder = 0;  // of the first reference
    TPosition fFirst;
    std::string fShown;  // the name for a message, so it is short
  };

  THost& At(const TElement& host);

  TMemoryAccount& fMemory;
  // By the hash of the name: names can be long. Two names with the same hash would count as one.
  std::unordered_map<std::size_t, THost> fHosts;
};

/// The classes whose instances are kept.
class TInstanceChoice {
 public:
  explicit TInstanceChoice(const TReadingLimits& limits);
  /// Returns whether the class was chosen by its own name.
  bool Has(const std::string& className) const {
    return !fIsLimited || fClasses.count(className) != 0;
  }

 private:
  bool fIsLimited;
  NModel::TNameMap<bool> fClasses;
};

struct TReadingState {
  TReadingState(const TReadingLimits& limits, const TDefectListener& onDefect)
      : fChoice(limits), fMemory(limits), fDefects(onDefect) {}

  /// Records an object that could not be taken. `object` is a text such as: class "C".
  void LeaveOut(const std::string& object, const TDocumentError& error) {
    fLeftOut.Add(error.fPosition, object + " is left out: " + error.fReason);
    fDefects.Add(error.fPosition, object, "left out: " + error.fReason);
  }
  /// Records a part of an object that was ignored or changed.
  void Warn(const TPosition& place, const std::string& text) {
    fChanged.Add(place, text);
    fDefects.Add(place, text);
  }
  void Warn(const TElement& place, const std::string& text) { Warn(place.fPosition, text); }
  void Report(const std::string& name) const;

  const TInstanceChoice fChoice;
  TMemoryAccount fMemory;
  TDefects fDefects;
  THosts fHosts{fMemory};
  TWarnings fLeftOut;       // objects
  TWarnings fChanged;       // parts of objects
  TCountedWarning fErrors;  // error responses
  TCountedWarning fUnheldDateTimes;
  TCountedWarning fNotEmbedded;     // values that are embedded objects by their own word
  TCountedWarning fContradictions;  // names that contradict their instances
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_READING_STATE_H_
