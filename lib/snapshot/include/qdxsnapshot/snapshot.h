// SPDX-License-Identifier: Apache-2.0
/// Snapshots: the contents of namespaces as plain data, in an order that does not depend on the
/// provider.
#ifndef QDXSNAPSHOT_SNAPSHOT_H_
#define QDXSNAPSHOT_SNAPSHOT_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <qdxsnapshot/value_json.h>

namespace NVORNQDX20 {

/// What the order of the elements of an array means (DMTF DSP0004, qualifier ArrayType).
enum class EArrayType { kBag, kOrdered, kIndexed };

struct TPropertySnapshot {
  std::string fName;
  std::string fType;  ///< As in "uint8" or "string[]".
  bool fIsKey = false;
  bool fIsVolatile = false;  ///< Changes while nobody changes the machine.
  TJSON fDefault;
  /// In the order of declaration: those of the topmost superclass come first.
  std::size_t fPosition = 0;

  // The rest is what the qualifiers say, read only down to kValues.
  std::string fDescription = {};
  std::string fUnit = {};  ///< A PUnit (DMTF DSP0004, annex C), such as "hertz * 10^6".
  /// Pairs of ValueMap and Values. Without a ValueMap, the values have the numbers from 0.
  std::vector<std::pair<std::string, std::string>> fValueNames = {};
  EArrayType fArrayType = EArrayType::kBag;
  std::string fSecret = {};  ///< What kind of secret the value is; empty for none.
};

struct TInstanceSnapshot {
  std::string fPath;           ///< The object path; the class name if there are no keys.
  std::vector<TJSON> fValues;  ///< In the order of the class's properties.
};

struct TClassSnapshot {
  std::string fName;
  std::string fSuperclass;                     ///< Empty for a root class.
  std::vector<TPropertySnapshot> fProperties;  ///< Including inherited ones, by name.
  std::size_t fInstanceCount = 0;
  std::vector<TInstanceSnapshot> fInstances;  ///< Without those of subclasses, by path and values.
  std::string fPart = {};                     ///< Of its provider; empty if it belongs to none.
};

/// How deep to read and to show.
enum EDepth { kNamespaces, kClasses, kInstances, kValues };

/// Reads parts of one namespace. Passes on its exceptions; what was read before remains.
class TSnapshotReader {
 public:
  /// Appends to `classes` in the order of the namespace's enumeration.
  TSnapshotReader(const ICIMNamespace& ns, EDepth depth, std::vector<TClassSnapshot>& classes);

  /// Reads every class.
  void ReadAll();
  /// Reads a class and all its subclasses.
  void ReadTree(const boost::shared_ptr<ICIMClass>& root);
  /// Reads the class of the instance, with this instance only.
  void ReadInstance(const ICIMInstance& instance);
  /// Reads a class with only these instances, which must be of this class.
  void ReadInstances(const boost::shared_ptr<ICIMClass>& cimClass,
                     const std::vector<boost::shared_ptr<ICIMInstance>>& instances);

 private:
  TClassSnapshot& Add(const boost::shared_ptr<ICIMClass>& cimClass);
  std::vector<TPropertySnapshot> PropertiesOf(const boost::shared_ptr<ICIMClass>& cimClass) const;

  const ICIMNamespace& fNamespace;
  const std::string fNamespaceName;
  const bool fMarksVolatile;  // has a qualifier for volatile properties
  const EDepth fDepth;
  std::vector<TClassSnapshot>& fClasses;
};

/// Returns the indexes of the class's properties in the order of declaration.
std::vector<std::size_t> InOrderOfDeclaration(const TClassSnapshot& cimClass);

/// Sorts the classes by name, and the instances of each by path and values.
void SortSnapshot(std::vector<TClassSnapshot>& classes);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_SNAPSHOT_H_
