// SPDX-License-Identifier: Apache-2.0
/// The names of objects, in all the forms that CIM-XML has for them.
#ifndef LIB_CIMXML_READING_OBJECT_PATH_H_
#define LIB_CIMXML_READING_OBJECT_PATH_H_

#include <optional>
#include <string>
#include <vector>

#include "xml/cim_type.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// The namespace that a path, or an object with its path, names; nothing if it names none.
std::optional<std::string> NamespaceNameOf(const TElement& element);

/// The INSTANCENAME or CLASSNAME of a path, or of an object with its name or path; null if it has
/// none.
const TElement* FindName(const TElement& element);
/// Of a VALUE.REFERENCE, which must have one.
const TElement& NameOf(const TElement& reference);
/// The class that a name names.
const std::string& ClassNameOf(const TElement& name);

struct TKeyBinding {
  std::string fName;       ///< Empty where a name has one key only, and leaves its name out.
  const TElement* fValue;  ///< KEYVALUE or VALUE.REFERENCE.
};
std::vector<TKeyBinding> KeyBindingsOf(const TElement& name);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_OBJECT_PATH_H_
