// SPDX-License-Identifier: Apache-2.0
/// Functions that make one object each, from its element and from what has been made before.
///
/// None of them makes what another object needs: a missing class is an error. Each throws
/// TDocumentError, and then has made nothing.
#ifndef LIB_CIMXML_READING_OBJECT_MAKERS_H_
#define LIB_CIMXML_READING_OBJECT_MAKERS_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <string>
#include <vector>

#include "space.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

// In class_maker.cpp:

/// Makes the declaration in a QUALIFIER.DECLARATION, or that of an undeclared QUALIFIER: without a
/// default, for any scope.
boost::shared_ptr<ICIMQualifierDecl> MakeQualifierDecl(TSpace& space, const TElement& element);
boost::shared_ptr<ICIMQualifierDecl> KeyDecl(TSpace& space);

/// Makes a class. A propagated property is a declaration of the superclass and is skipped, or, with
/// the qualifier "Static", the class's own value. Values of reference properties are added to
/// TSpace::Unresolved(). A property, method, qualifier or value with a fault is left out of the
/// class and recorded.
void MakeClass(TSpace& space, const TElement& element);

/// Adds a committed class to the space; `superclass` is null for a root class. Instances of a class
/// with an unresolved value must wait until it is resolved.
void AddMadeClass(TSpace& space, const boost::shared_ptr<ICIMClass>& made,
                  const TReadClass* superclass, const TElement& usedBy, bool hasUnresolvedValue);

/// Gives a reference property its value.
void Resolve(TSpace& space, const TUnresolved& unresolved);

// In class_synthesis.cpp:

/// A declared class that may have inherited properties of an undeclared one.
struct TSubclass {
  const TElement* fElement = nullptr;
  const TSubclass* fParent = nullptr;  ///< Null if its superclass is the undeclared class.
  std::size_t fDepth = 1;              ///< Levels below the undeclared class.
  NModel::TNameMap<bool> fProperties;  ///< Each with whether it is a key.
};

/// An object of a class, or the name of one.
struct TClassUse {
  const TElement* fElement = nullptr;
  const TSubclass* fClass = nullptr;  ///< Null for an object of the undeclared class itself.
};

/// Makes a root class with the properties of its uses that no subclass declares, in the order in
/// which they first appear, those of instances first. Keys are the properties in names of instances
/// that all instances have; if no instance has a name, those in other names. Instances with a fault
/// do not matter for keys, and a value that cannot be read does not for the type of a property.
void MakeUndeclaredClass(TSpace& space, const std::string& name, const TElement& usedBy,
                         const std::vector<TClassUse>& uses, bool mayHaveKeys);

// In instance_maker.cpp:

/// Returns the INSTANCE of an object, or the object itself if it is one; null if there is none.
const TElement* FindInstance(const TElement& object);

/// Adds an instance, if its class is chosen. Keys are taken from its properties, else from its
/// name; a property that contradicts the name wins, and is counted.
void MakeInstance(TSpace& space, const TElement& object);

/// Formats an object for a message, as far as it is known: instance C.Id="7".
std::string Described(const TSpace& space, const TElement& object);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_OBJECT_MAKERS_H_
