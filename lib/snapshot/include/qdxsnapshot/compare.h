// SPDX-License-Identifier: Apache-2.0
/// Compares two descriptions of machines.
#ifndef QDXSNAPSHOT_COMPARE_H_
#define QDXSNAPSHOT_COMPARE_H_

#include <qdxdescribe/missing_values.h>

#include <string>
#include <vector>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

struct TNamespaceSnapshot {
  std::string fName;
  std::vector<TClassSnapshot> fClasses;      ///< By name.
  NDescribe::TMissingReasons fReasons = {};  ///< Why values and instances are missing.
};

/// One difference. If only one side has the element, the other value is null.
struct TDifference {
  enum EElement { kNamespace, kClass, kSuperclass, kDeclaration, kInstance, kValue };
  /// kUnknown: only one side has the instance or the value; on the other side an error stood in the
  /// way, so that the machine may have it.
  enum EChange { kRemoved, kAdded, kChanged, kUnknown };

  EElement fElement;
  EChange fChange;
  std::string fNamespace;
  std::string fOwner;     ///< The class, or the instance; empty for a namespace.
  std::string fProperty;  ///< Only for declarations and values.
  TJSON fOld;             ///< The value, the superclass, or a declaration as text.
  TJSON fNew;
  std::string fReason = {};  ///< Only for kUnknown.
};

/// Returns the differences, sorted by the names of namespaces, classes, instances and properties.
///
/// Instances correspond if their object paths are equal, or, without keys, if their values are
/// equal. Order, methods and qualifiers other than Key are not compared. Volatile properties are
/// left out unless `all` is set: those with the qualifier VORNSG_Volatile, and in a namespace that
/// does not declare it those with certain names. Where one side does not know the name of the
/// machine, a key of all instances, it is not compared.
std::vector<TDifference> Compare(std::vector<TNamespaceSnapshot> a,
                                 std::vector<TNamespaceSnapshot> b, bool all);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_COMPARE_H_
