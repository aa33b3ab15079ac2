// SPDX-License-Identifier: Apache-2.0
/// A class on one side of a comparison.
#ifndef LIB_COMPARE_CLASS_SIDE_H_
#define LIB_COMPARE_CLASS_SIDE_H_

#include <qdxmodel/property_reader.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <qdxcompare/compare.h>

#include "canonical.h"

namespace NVORNQDX20 {

using TClass = boost::shared_ptr<ICIMClass>;
using TInstance = boost::shared_ptr<ICIMInstance>;

/// A namespace on one side.
struct TSide {
  const TComparedNamespace& fNamespace;  ///< Without a namespace if the side lacks it.
  TCanonical fCanonical;
  TCanonical fOfNoMachine;      ///< With the names of machines as they are.
  TCanonical fOfBothMachines;   ///< With placeholders for the names of both machines.
  bool fHasArrayTypes = false;  ///< Whether an array without the qualifier is a bag.
};

TSide MakeSide(const TComparedNamespace& ns, const std::string& machine,
               const std::string& otherMachine, const TLeftOut& leftOut);

/// An instance with the text that identifies it in its class.
struct TIdentified {
  std::string fIdentity;
  TInstance fInstance;
};

/// The lower-case name of a property, and its position in the class.
struct TNamedPosition {
  std::string fName;
  std::size_t fPosition;
};

/// Of a class that the side lacks, everything is empty. Passes on what the class throws.
class TClassSide {
 public:
  /// The side and the options must outlive this object. `cimClass` may be null.
  TClassSide(const TSide& side, const TClass& cimClass, const TComparisonOptions& options);

  const TSide& GetSide() const { return fSide; }
  /// Returns the class without instances, but with their number.
  const TClassSnapshot& GetClass() const { return fDeclared; }
  const TClass& GetDeclaredClass() const { return fClass; }
  /// Returns the declaration of a property, which outlives this object:
  /// with its unit and the names of its values.
  std::shared_ptr<const TPropertySnapshot> GetDeclaration(std::size_t property);
  /// Returns the properties in the order of their lower-case names.
  const std::vector<TNamedPosition>& GetOrder() const { return fOrder; }
  const TPropertyKind& GetKind(std::size_t property) const { return fKinds[property]; }
  /// Returns whether the values of the property are compared.
  bool IsCompared(std::size_t property) const { return fIsCompared[property]; }
  bool IsIgnored(std::size_t property) const { return fIsIgnored[property]; }
  bool HasKeys() const { return fHasKeys; }

  /// Returns the instances that are compared, by their identities.
  std::vector<TIdentified> ReadInstances();

  /// Returns the text that identifies an instance, with placeholders for both machines.
  std::string IdentityOfBothMachines(const ICIMInstance& instance);

  bool IsOfReasons() const { return fIsOfReasons; }

  /// Chooses the instance that is read, which must live as long.
  void Begin(const ICIMInstance& instance) { fReader->Begin(instance); }
  /// Calls `visit(const TCIMValue&)` with a value of the chosen instance.
  template <typename TVisit>
  void Read(std::size_t property, const TVisit& visit) const {
    fReader->Read(fPositions[property], visit);
  }
  /// Returns the text of a property, by its lower-case name; empty if there is none.
  std::string TextOfCurrent(const char* property) const;

  /// Returns these instances in their order: with paths, and with values if asked for.
  std::vector<TInstanceSnapshot> ReadSnapshots(const std::vector<TInstance>& instances,
                                               EDepth depth) const;

 private:
  void ReadDeclarations(const TComparisonOptions& options);
  void ReadKinds();
  bool IsLeftOut() const;
  bool ExplainsLeftOut() const;
  std::string IdentityOfCurrent(const TCanonical& canonical) const;

  const TSide& fSide;
  const TClass fClass;
  const TLeftOut& fLeftOut;
  TClassSnapshot fDeclared;
  std::shared_ptr<const TClassSnapshot> fShared;  // with all that it declares, once it is needed
  std::optional<NModel::TPropertyReader> fReader;
  std::vector<std::size_t> fPositions;  // in the reader; this and all below by property
  std::vector<TPropertyKind> fKinds;
  std::vector<bool> fIsCompared;
  std::vector<bool> fIsIgnored;
  std::vector<TNamedPosition> fOrder;
  bool fHasKeys = false;
  bool fIsOfReasons = false;
};

}  // namespace NVORNQDX20

#endif  // LIB_COMPARE_CLASS_SIDE_H_
