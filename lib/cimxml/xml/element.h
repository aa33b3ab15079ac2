// SPDX-License-Identifier: Apache-2.0
/// One object of a document as a tree of elements.
#ifndef LIB_CIMXML_XML_ELEMENT_H_
#define LIB_CIMXML_XML_ELEMENT_H_

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "document_error.h"

namespace NVORNQDX20::NCIMXML {

/// Returns the name as a view of static storage; empty if CIM-XML has no such name.
std::string_view KnownElement(std::string_view name);
std::string_view KnownAttribute(std::string_view name);

struct TElement {
  struct TAttribute {
    std::string_view fName;
    std::string fValue;
  };

  bool Is(std::string_view name) const { return fName == name; }
  /// Returns null if there is none.
  const std::string* Find(std::string_view attribute) const;
  /// A missing attribute is an error.
  const std::string& Get(std::string_view attribute) const;
  bool GetFlag(std::string_view attribute, bool absent) const;
  /// Returns the first child with this name; null if there is none.
  const TElement* Child(std::string_view name) const;
  /// Returns the first child; having none is an error.
  const TElement& OnlyChild() const;

  [[noreturn]] void Refuse(const std::string& reason) const {
    throw TDocumentError(reason, fPosition);
  }
  [[noreturn]] void RefuseChild(const TElement& child) const;

  /// Returns the size in memory, without children and text.
  std::size_t Bytes() const;

  std::string_view fName;  // one of KnownElement()
  TPosition fPosition;
  std::vector<TAttribute> fAttributes;  // only those that CIM-XML has
  std::string fText;                    // without the text of its children
  std::list<TElement> fChildren;        // a list, since elements must not move
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_ELEMENT_H_
