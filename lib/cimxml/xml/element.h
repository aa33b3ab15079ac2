// SPDX-License-Identifier: Apache-2.0
/// One object of a document as a tree.
#ifndef LIB_CIMXML_XML_ELEMENT_H_
#define LIB_CIMXML_XML_ELEMENT_H_

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "defect.h"

namespace NVORNQDX20::NCIMXML {

/// The name in storage that lasts; empty for one that CIM-XML does not have.
std::string_view KnownElement(std::string_view name);
std::string_view KnownAttribute(std::string_view name);

struct TElement {
  struct TAttribute {
    std::string_view fName;
    std::string fValue;
  };

  bool Is(std::string_view name) const { return fName == name; }
  /// Null if there is none.
  const std::string* Find(std::string_view attribute) const;
  /// A missing attribute is a defect.
  const std::string& Get(std::string_view attribute) const;
  bool GetFlag(std::string_view attribute, bool absent) const;
  /// The first of that name; null if there is none.
  const TElement* Child(std::string_view name) const;
  /// The first, of whatever name; having none is a defect.
  const TElement& OnlyChild() const;

  [[noreturn]] void Refuse(const std::string& reason) const { throw TDefect(reason, fPosition); }
  [[noreturn]] void RefuseChild(const TElement& child) const;

  /// In memory, without its children and its text.
  std::size_t Bytes() const;

  std::string_view fName;  // one of KnownElement()
  TPosition fPosition;
  std::vector<TAttribute> fAttributes;  // known ones
  std::string fText;                    // its own, without that of its children
  std::list<TElement> fChildren;        // never moved, however many there are
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_ELEMENT_H_
