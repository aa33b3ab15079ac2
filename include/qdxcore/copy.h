// SPDX-License-Identifier: Apache-2.0
/// Copies one CIM namespace into another, of the same provider or not.
///
/// Unlike the rest of the library, these names are outside the namespace NVORNQDX20.
#ifndef QDXCORE_COPY_H_
#define QDXCORE_COPY_H_

#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>
#include <qdxcore/value.h>

#include <string>
#include <utility>

#include <boost/shared_ptr.hpp>

/// The copier, as static operations without state.
///
/// Values are copied as they are, but a reference is bound to the target: it names the target's
/// class of the same name, and its key values are copied the same way. An array of references stays
/// bound to the source. Names, types and qualifiers pass unchanged; every options map is empty.
///
/// Nothing is logged or undone: an exception from a namespace or a value ends the copy, and
/// committed elements stay in the target. Two exceptions mean "no": kQDXStatusNotFound from the new
/// class's GetPropertyDecl, and any TQDXException from a source property's
/// GetQualifier("OVERRIDE"). Another status of that GetPropertyDecl is thrown again as a plain
/// TQDXException. A null reference, for example for a class that the target does not have, ends in
/// the assertion handler of <qdxcore/status.h>; a target that throws for it instead ends the copy
/// with what it throws.
///
///   TCIMCopy::CopyClasses(machine, collected);  // the collected namespace was empty
class QDXCORE_EXPORT TCIMCopy {
 public:
  /// Copies a whole namespace: the qualifier declarations; the classes that are not associations,
  /// each after its superclass and followed by its instances; then the associations in the same
  /// way. So a reference in an association can refer to all other classes, and to the associations
  /// copied before it; a reference elsewhere only to what was copied before it. A
  /// property can refer to its own class only if the target shows classes before they are
  /// committed.
  ///
  /// Instances are left out where the class is abstract or has the qualifier "PLUGINNAME".
  static void CopyClasses(boost::shared_ptr<NVORNQDX20::ICIMNamespace> source,
                          boost::shared_ptr<NVORNQDX20::ICIMNamespace> target);

  /// Copies a class without its instances: qualifiers, property declarations, static values,
  /// methods. Its superclass must be in the target already, and so must the declarations of its
  /// qualifiers and the classes it refers to. Does not check whether the target has a class with
  /// this name.
  ///
  /// A property of the superclass is declared again only if it has the qualifier "OVERRIDE", own or
  /// inherited. Parameters are committed, methods are not.
  static void CopyClass(boost::shared_ptr<NVORNQDX20::ICIMClass> cimClass,
                        boost::shared_ptr<NVORNQDX20::ICIMNamespace> target);

  /// Copies all properties that the instance enumerates. The new instance is committed.
  static boost::shared_ptr<NVORNQDX20::ICIMInstance> CopyInstance(
      boost::shared_ptr<NVORNQDX20::ICIMInstance> instance,
      boost::shared_ptr<NVORNQDX20::ICIMNamespace> target);

  /// A null reference stays null, and names the target's class of the same name.
  static NVORNQDX20::TCIMValue CopyValue(const NVORNQDX20::TCIMValue& value,
                                         boost::shared_ptr<NVORNQDX20::ICIMNamespace> target);
};

// The callbacks that the copier passes to enumerations: each copies one element and returns true.

struct QDXCORE_EXPORT TCopyQualifierDecls {
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMQualifierDecl> decl) const;
};

/// Copies a root class and all its subclasses with TCopyClass.
struct QDXCORE_EXPORT TCopyClassTree {
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;
  bool fAssociations;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMClass> root) const;
};

/// Copies a class and its own instances: only associations if the flag is set, else only other
/// classes.
struct QDXCORE_EXPORT TCopyClass {
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;
  bool fAssociations;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMClass> cimClass) const;
};

struct QDXCORE_EXPORT TCopyQualifier {
  boost::shared_ptr<NVORNQDX20::ICIMNamedElement> fTargetElement;
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMQualifier> qualifier) const;
};

struct QDXCORE_EXPORT TCopyPropertyDecl {
  boost::shared_ptr<NVORNQDX20::ICIMClass> fTargetClass;
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMPropertyDecl> decl) const;
};

struct QDXCORE_EXPORT TCopyStaticProperty {
  boost::shared_ptr<NVORNQDX20::ICIMClass> fTargetClass;
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMProperty> property) const;
};

struct QDXCORE_EXPORT TCopyMethodDecl {
  boost::shared_ptr<NVORNQDX20::ICIMClass> fTargetClass;
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMMethodDecl> decl) const;
};

struct QDXCORE_EXPORT TCopyParameterDecl {
  boost::shared_ptr<NVORNQDX20::ICIMMethodDecl> fTargetMethod;
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMParameterDecl> decl) const;
};

struct QDXCORE_EXPORT TCopyInstanceProperty {
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;
  boost::shared_ptr<NVORNQDX20::ICIMInstance> fTargetInstance;

  bool operator()(boost::shared_ptr<NVORNQDX20::ICIMProperty> property) const;
};

/// Copies a key binding. The caller owns the reference.
struct QDXCORE_EXPORT TCopyReferenceKeys {
  boost::shared_ptr<NVORNQDX20::ICIMNamespace> fTarget;
  NVORNQDX20::TCIMReference* fReference;

  bool operator()(std::pair<std::string, NVORNQDX20::TCIMValue> binding) const;
};

#endif  // QDXCORE_COPY_H_
