// SPDX-License-Identifier: Apache-2.0
/// One object of a document as a tree of elements.
#ifndef LIB_CIMXML_XML_ELEMENT_H_
#define LIB_CIMXML_XML_ELEMENT_H_

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "document_error.h"

namespace NVORNQDX20::NCIMXML {

/// Returns the name as a view of static storage, with a null character after it; empty if CIM-XML
/// has no such name.
std::string_view KnownElement(std::string_view name);
std::string_view KnownAttribute(std::string_view name);

/// Returns whether a text is the same as a name of static storage, which may be empty.
inline bool IsName(std::string_view known, const char* text) {
  return !known.empty() && std::strcmp(known.data(), text) == 0;
}

struct TAttribute {
  std::string_view fName;  // one of KnownAttribute()
  std::string fValue;
};

/// The attributes of an element. Removed ones stay in memory for those that are added next, which
/// are often the same.
class TAttributes {
 public:
  TAttributes() = default;
  TAttributes(std::initializer_list<TAttribute> all) : fAll(all), fCount(all.size()) {}
  TAttributes(const TAttributes& other) : fAll(other.begin(), other.end()), fCount(fAll.size()) {}
  TAttributes(TAttributes&& other) noexcept
      : fAll(std::move(other.fAll)), fCount(std::exchange(other.fCount, 0)) {}
  TAttributes& operator=(TAttributes other) noexcept {
    fAll.swap(other.fAll);
    fCount = other.fCount;
    return *this;
  }
  ~TAttributes() = default;

  std::vector<TAttribute>::const_iterator begin() const { return fAll.begin(); }
  std::vector<TAttribute>::const_iterator end() const {
    return fAll.begin() + static_cast<std::ptrdiff_t>(fCount);
  }
  std::size_t size() const { return fCount; }
  void Add(std::string_view name, std::string_view value) {
    if (fCount == fAll.size()) fAll.emplace_back();
    TAttribute& added = fAll[fCount++];
    added.fName = name;
    if (added.fValue != value) added.fValue = value;
  }
  /// Adds an attribute if KnownAttribute() has its name.
  void AddKnown(const char* name, std::string_view value) {
    const bool isSame = fCount < fAll.size() && IsName(fAll[fCount].fName, name);
    const std::string_view known = isSame ? fAll[fCount].fName : KnownAttribute(name);
    if (!known.empty()) Add(known, value);
  }
  void Clear() { fCount = 0; }
  /// Removes all, and frees what takes more memory than usual.
  void Trim();

 private:
  std::vector<TAttribute> fAll;
  std::size_t fCount = 0;
};

struct TElement {
  // Inline, so that the name is compared as a constant: for each element of each instance.
  bool Is(std::string_view name) const { return fName == name; }
  template <typename... TNames>
  bool IsOneOf(const TNames&... names) const {
    return (Is(names) || ...);
  }
  /// Returns null if there is none.
  const std::string* Find(std::string_view attribute) const {
    for (const TAttribute& each : fAttributes) {
      if (each.fName == attribute) return &each.fValue;
    }
    return nullptr;
  }
  /// A missing attribute is an error.
  const std::string& Get(std::string_view attribute) const {
    const std::string* const value = Find(attribute);
    if (value == nullptr) RefuseLack(attribute);
    return *value;
  }
  bool GetFlag(std::string_view attribute, bool absent) const;
  /// Returns the first child with this name; null if there is none.
  const TElement* Child(std::string_view name) const {
    for (const TElement& child : fChildren) {
      if (child.Is(name)) return &child;
    }
    return nullptr;
  }
  /// Returns the first child; having none is an error.
  const TElement& OnlyChild() const;

  [[noreturn]] void Refuse(const std::string& reason) const {
    throw TDocumentError(reason, fPosition);
  }
  [[noreturn]] void RefuseChild(const TElement& child) const;
  [[noreturn]] void RefuseLack(std::string_view attribute) const;

  /// Returns the size in memory, without children and text.
  std::size_t Bytes() const {
    // With the links of a list and the allocator's overhead.
    constexpr std::size_t kElementBytes = 144;
    constexpr std::size_t kAttributeBytes = 48;
    std::size_t bytes = kElementBytes;
    for (const TAttribute& each : fAttributes) bytes += kAttributeBytes + each.fValue.size();
    return bytes;
  }

  std::string_view fName;  // one of KnownElement()
  TPosition fPosition;
  TAttributes fAttributes;        // only those that CIM-XML has
  std::string fText;              // without the text of its children
  std::list<TElement> fChildren;  // a list, since elements must not move
};

/// Keeps the elements of an object, with the memory of their texts, for the next object: most
/// instances of a document look alike, so that each element takes the place of its like.
class TElementPool {
 public:
  /// Adds a child without content.
  TElement& AddChild(TElement& parent);
  /// Empties the root of an object, which has this size in memory.
  void Empty(TElement& root, std::size_t bytes);

 private:
  std::list<TElement> fElements;  // with content and children
};

/// Returns an object that is to be kept. It has no memory that it does not need.
TElement Compact(TElement&& object, std::size_t bytes);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_ELEMENT_H_
