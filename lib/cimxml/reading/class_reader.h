// SPDX-License-Identifier: Apache-2.0
/// Declarations of qualifiers and classes from their elements.
#ifndef LIB_CIMXML_READING_CLASS_READER_H_
#define LIB_CIMXML_READING_CLASS_READER_H_

#include <qdxcore/interfaces.h>

#include "namespace_builder.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// From a QUALIFIER.DECLARATION, or from a QUALIFIER that nothing declares: it has no default then,
/// and may stand anywhere. Not committed yet.
boost::shared_ptr<ICIMQualifierDecl> ReadQualifierDecl(TNamespaceBuilder& ns,
                                                       const TElement& element);

/// The committed class. A property that is propagated is a declaration of the superclass, which is
/// known from there, or, with the qualifier "Static", the value that the class itself has.
boost::shared_ptr<ICIMClass> ReadClass(TNamespaceBuilder& ns, const TElement& element);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_CLASS_READER_H_
