// SPDX-License-Identifier: Apache-2.0
/// Reads the names of objects, in all forms of CIM-XML.
#ifndef LIB_CIMXML_READING_OBJECT_PATH_H_
#define LIB_CIMXML_READING_OBJECT_PATH_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xml/cim_type.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// Returns the namespace in a path, or in an object with its path; nothing if it has none.
std::optional<std::string> NamespaceNameOf(const TElement& element);

/// Returns the HOST in a path, or in an object with its path; null if it has none.
const TElement* FindHost(const TElement& element);

/// Returns the INSTANCENAME or CLASSNAME of a path, or of an object with its name or path; null if
/// there is none.
const TElement* FindName(const TElement& element);
/// Returns the name in a VALUE.REFERENCE; a missing one is an error.
const TElement& NameOf(const TElement& reference);
/// Returns the class in a name.
const std::string& ClassNameOf(const TElement& name);

bool IsProperty(const TElement& element);
/// Returns whether a reference property names the class that it refers to.
bool NamesClass(const TElement& property);
/// Returns whether a child QUALIFIER with this name, in any case, is true.
bool IsQualified(const TElement& element, std::string_view qualifier);

struct TKeyBinding {
  const std::string* fName;  ///< Null or empty if the only key has no name.
  const TElement* fValue;    ///< KEYVALUE or VALUE.REFERENCE.

  bool HasName() const { return fName != nullptr && !fName->empty(); }
};
/// Replaces `bindings` by those of a name.
void GetKeyBindings(const TElement& name, std::vector<TKeyBinding>& bindings);
std::vector<TKeyBinding> KeyBindingsOf(const TElement& name);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_OBJECT_PATH_H_
