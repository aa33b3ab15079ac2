// SPDX-License-Identifier: Apache-2.0
/// What a namespace reader calls for the objects of a document: each from its element, or made up
/// for a class that the document uses without declaring it.
#ifndef LIB_CIMXML_READING_OBJECT_READERS_H_
#define LIB_CIMXML_READING_OBJECT_READERS_H_

#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include "namespace_reader.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

// In class_reader.cpp:

/// From a QUALIFIER.DECLARATION, or from a QUALIFIER that nothing declares: it has no default then,
/// and may stand anywhere. Not committed yet.
boost::shared_ptr<ICIMQualifierDecl> ReadQualifierDecl(TNamespaceReader& ns,
                                                       const TElement& element);

/// The committed class. A property that is propagated is a declaration of the superclass, which is
/// known from there, or, with the qualifier "Static", the value that the class itself has.
boost::shared_ptr<ICIMClass> ReadClass(TNamespaceReader& ns, const TElement& element);

// In class_synthesis.cpp:

/// A committed root class with the properties that its uses have, in the order in which they first
/// appear; those that name an instance are its keys. A use is an object, or the name of one.
boost::shared_ptr<ICIMClass> SynthesizeClass(TNamespaceReader& ns, const std::string& name,
                                             const std::vector<const TElement*>& uses);

// In instance_reader.cpp:

/// The INSTANCE of an object, which may be one itself.
const TElement& InstanceOf(const TElement& object);

/// Adds the instance. Its keys come from its name, but for those that are among its properties and
/// not null there; a property that contradicts the name holds, and is counted. If there is an
/// instance with these keys already, that one stays, and this one is counted.
void ReadInstance(TNamespaceReader& ns, const TElement& object);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_OBJECT_READERS_H_
