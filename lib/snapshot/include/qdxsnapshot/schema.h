// SPDX-License-Identifier: Apache-2.0
/// Declarations as plain data: of classes, with what they inherit and from where, of qualifiers,
/// and the tree of classes.
#ifndef QDXSNAPSHOT_SCHEMA_H_
#define QDXSNAPSHOT_SCHEMA_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/string_kind.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

struct TQualifierValue {
  std::string fName;
  TCIMValue fValue;
};

/// Where a property or a method of a class is declared.
struct TFeatureOrigin {
  std::string fClass;       ///< The class with the nearest declaration.
  std::string fOverridden;  ///< The class whose declaration that one replaces; empty for none.
};

struct TPropertySchema {
  std::string fName;
  TCIMValue fDefault;  ///< Has the declared type; the static value if a class sets one.
  std::string fReferencedClass;
  bool fIsKey = false;
  bool fIsStatic = false;  ///< The value is a static one.
  NDescribe::EStringKind fStringKind = NDescribe::EStringKind::kText;
  TFeatureOrigin fOrigin;
  std::vector<TQualifierValue> fQualifiers;  ///< Of the nearest declaration.
};

struct TParameterSchema {
  std::string fName;
  TCIMValue::TCIMType fType;
  std::string fReferencedClass;  ///< Empty if not known.
  NDescribe::EStringKind fStringKind = NDescribe::EStringKind::kText;
  std::vector<TQualifierValue> fQualifiers;
};

struct TMethodSchema {
  std::string fName;
  TCIMValue::TCIMType fReturnType;
  NDescribe::EStringKind fStringKind = NDescribe::EStringKind::kText;
  TFeatureOrigin fOrigin;
  std::vector<TQualifierValue> fQualifiers;
  std::vector<TParameterSchema> fParameters;
};

struct TClassSchema {
  std::string fName;
  std::string fSuperclass;  ///< Empty for a root class.
  bool fIsAssociation = false;
  bool fIsIndication = false;
  std::vector<TQualifierValue> fQualifiers;  ///< Without inherited ones.
  /// Including inherited ones: those that the class declares, then those of its superclass, and so
  /// on; each in the order of the declarations.
  std::vector<TPropertySchema> fProperties;
  std::vector<TMethodSchema> fMethods;
};

/// Passes on what the class throws.
TClassSchema ReadSchema(const boost::shared_ptr<ICIMClass>& cimClass);

struct TQualifierSchema {
  std::string fName;
  TCIMValue fDefault;
  std::uint32_t fScope = 0;   ///< The bits of the repository.
  std::uint32_t fFlavor = 0;  ///< The bits of the repository.
};

/// Returns the qualifiers that a namespace declares, by name.
std::vector<TQualifierSchema> ReadQualifiers(const ICIMNamespace& ns);

/// A class in a tree.
struct TClassNode {
  std::string fName;
  std::string fSuperclass;     ///< Empty for a root class.
  std::size_t fDepth;          ///< 0 at the top of the tree.
  std::size_t fInstanceCount;  ///< Without those of subclasses.
};

/// Returns a class with its subclasses, or for null all classes of the namespace: each followed by
/// its subclasses, which are in the order of the names.
std::vector<TClassNode> ReadClassTree(const ICIMNamespace& ns,
                                      const boost::shared_ptr<ICIMClass>& root);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_SCHEMA_H_
