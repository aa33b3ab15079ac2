// SPDX-License-Identifier: Apache-2.0
/// Qualifiers by which documents keep what CIM-XML cannot express. They are true, and need no
/// declaration.
#ifndef LIB_CIMXML_XML_MARKS_H_
#define LIB_CIMXML_XML_MARKS_H_

namespace NVORNQDX20::NCIMXML {

/// The value of a property is the class's own, not a default.
inline constexpr const char* kStatic = "Static";

/// A method returns nothing; its type only takes the place of one.
inline constexpr const char* kNoReturnValue = "VORNSG_NoReturnValue";

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_MARKS_H_
