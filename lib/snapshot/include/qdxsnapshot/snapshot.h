// SPDX-License-Identifier: Apache-2.0
/// The contents of namespaces as plain data, in an order that does not depend on the provider.
#ifndef QDXSNAPSHOT_SNAPSHOT_H_
#define QDXSNAPSHOT_SNAPSHOT_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <qdxsnapshot/value_json.h>

namespace NVORNQDX20 {

struct TPropertySnapshot {
  std::string fName;
  std::string fType;  ///< As in "uint8" or "string[]".
  bool fIsKey = false;
  TJSON fDefault;
};

struct TInstanceSnapshot {
  std::string fPath;           ///< The object path. Without keys it is the name of the class.
  std::vector<TJSON> fValues;  ///< One for each property of its class, in their order.
};

struct TClassSnapshot {
  std::string fName;
  std::string fSuperclass;                     ///< Empty for a root class.
  std::vector<TPropertySnapshot> fProperties;  ///< Inherited ones too, by name.
  std::size_t fInstanceCount = 0;
  std::vector<TInstanceSnapshot> fInstances;  ///< Those of no other class, by path and values.
};

/// How far down to read, and to show.
enum EDepth { kNamespaces, kClasses, kInstances, kValues };

/// Reads from one namespace what it is asked for, and throws what that throws: what was read before
/// stays.
class TSnapshotReader {
 public:
  /// Appends to `classes`, in the order in which the namespace gives them.
  TSnapshotReader(const ICIMNamespace& ns, EDepth depth, std::vector<TClassSnapshot>& classes)
      : fNamespace(ns), fHome(ns.GetName({})), fDepth(depth), fClasses(classes) {}

  /// Every class.
  void ReadAll();
  /// A class and all that are derived from it.
  void ReadTree(const boost::shared_ptr<ICIMClass>& root);
  /// The class of the instance, with this one only.
  void ReadInstance(const ICIMInstance& instance);

 private:
  TClassSnapshot& Add(const boost::shared_ptr<ICIMClass>& cimClass);
  void AddInstance(TClassSnapshot& snapshot, const ICIMInstance& instance,
                   const boost::shared_ptr<ICIMClass>& cimClass) const;

  const ICIMNamespace& fNamespace;
  const std::string fHome;  // its name
  const EDepth fDepth;
  std::vector<TClassSnapshot>& fClasses;
};

/// Brings classes, and the instances of each, into the order that a snapshot has.
void SortSnapshot(std::vector<TClassSnapshot>& classes);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_SNAPSHOT_H_
