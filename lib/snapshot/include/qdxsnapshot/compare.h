// SPDX-License-Identifier: Apache-2.0
/// Two descriptions of machines, compared.
#ifndef QDXSNAPSHOT_COMPARE_H_
#define QDXSNAPSHOT_COMPARE_H_

#include <string>
#include <vector>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

struct TNamespaceSnapshot {
  std::string fName;
  std::vector<TClassSnapshot> fClasses;  ///< By name.
};

/// One thing that differs. Of what only one side has, the other side's value is null.
struct TDifference {
  enum EElement { kNamespace, kClass, kSuperclass, kDeclaration, kInstance, kValue };
  enum EChange { kRemoved, kAdded, kChanged };

  EElement fElement;
  EChange fChange;
  std::string fNamespace;
  std::string fOwner;     ///< The class, or the instance; empty for a namespace.
  std::string fProperty;  ///< Of declarations and values.
  TJSON fOld;             ///< The value, the superclass, or a declaration as text.
  TJSON fNew;
};

/// The differences, in the order of namespaces, classes, instances and properties by name.
///
/// Instances are the same if their object paths are; those without keys if their values are. The
/// order in which they come does not matter, and neither do methods and qualifiers but Key.
/// Properties that change while a machine just runs are left out unless `all`: uptimes, the time,
/// counters, what is free.
std::vector<TDifference> Compare(std::vector<TNamespaceSnapshot> a,
                                 std::vector<TNamespaceSnapshot> b, bool all);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_COMPARE_H_
