// SPDX-License-Identifier: Apache-2.0
/// Functions of the namespace reader: each builds an object from its element, or a class that the
/// document uses without declaring it.
#ifndef LIB_CIMXML_READING_OBJECT_READERS_H_
#define LIB_CIMXML_READING_OBJECT_READERS_H_

#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include "namespace_reader.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

// In class_reader.cpp:

/// Reads a QUALIFIER.DECLARATION, or derives a declaration from an undeclared QUALIFIER: without a
/// default, for any scope. Not committed yet.
boost::shared_ptr<ICIMQualifierDecl> ReadQualifierDecl(TNamespaceReader& ns,
                                                       const TElement& element);

/// Returns the committed class. A propagated property is a declaration of the superclass and is
/// skipped, or, with the qualifier "Static", the class's own value.
boost::shared_ptr<ICIMClass> ReadClass(TNamespaceReader& ns, const TElement& element);

// In class_synthesis.cpp:

/// Returns a committed root class with the properties of its uses, in the order in which they first
/// appear; properties in instance names are keys. A use is an object, or the name of one.
boost::shared_ptr<ICIMClass> SynthesizeClass(TNamespaceReader& ns, const std::string& name,
                                             const std::vector<const TElement*>& uses);

// In instance_reader.cpp:

/// Returns the INSTANCE of an object, or the object itself if it is one.
const TElement& InstanceOf(const TElement& object);

/// Adds the instance. Keys are taken from its properties, else from its name; a property that
/// contradicts the name wins, and is counted. A second instance with the same keys is dropped and
/// counted.
void ReadInstance(TNamespaceReader& ns, const TElement& object);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_OBJECT_READERS_H_
