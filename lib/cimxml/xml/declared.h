// SPDX-License-Identifier: Apache-2.0
/// What a class declares itself, and which of its properties are keys.
#ifndef LIB_CIMXML_XML_DECLARED_H_
#define LIB_CIMXML_XML_DECLARED_H_

#include <qdxcore/interfaces.h>

#include <string>

#include <boost/function.hpp>

namespace NVORNQDX20::NCIMXML {

/// In the order of declaration. What the superclass answers with the same object is inherited.
void ForEachOwnPropertyDecl(const ICIMClass& cimClass,
                            const boost::function<void(const ICIMPropertyDecl&)>& visit);

/// Whether the class, or one that it derives from, has the property as a key.
bool IsKey(const ICIMClass& cimClass, const std::string& property);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_DECLARED_H_
