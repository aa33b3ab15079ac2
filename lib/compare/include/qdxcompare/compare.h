// SPDX-License-Identifier: Apache-2.0
/// Compares two descriptions of machines.
#ifndef QDXCOMPARE_COMPARE_H_
#define QDXCOMPARE_COMPARE_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/missing_values.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

struct TComparedNamespace {
  boost::shared_ptr<ICIMNamespace> fNamespace;
  NDescribe::TMissingReasons fReasons = {};  ///< Why values and instances are missing.
};

/// One difference. If only one side has the element, the other value is null.
struct TDifference {
  enum EElement {
    kNamespace,
    kClass,
    kSuperclass,
    kDeclaration,
    kInstance,
    kValue,
    kQualifier,
    kMethod
  };
  /// kUnknown: only one side has the instance or the value; on the other side an error stood in the
  /// way, so that the machine may have it.
  enum EChange { kRemoved, kAdded, kChanged, kUnknown };

  EElement fElement;
  EChange fChange;
  std::string fNamespace;
  std::string fOwner;     ///< The class, or the instance; empty for a namespace.
  std::string fProperty;  ///< For a qualifier with what has it: "Size [PUnit]", "[Version]".
  TJSON fOld;             ///< The value, the superclass, or a declaration as text.
  TJSON fNew;
  std::string fReason = {};  ///< Only for kUnknown.
  std::string fClass = {};   ///< Of an instance or a value.
  /// Of a value: the declarations of its property on both sides.
  std::shared_ptr<const TPropertySnapshot> fOldDeclaration = {};
  std::shared_ptr<const TPropertySnapshot> fNewDeclaration = {};
  /// Of an instance or a value: the object path of the instance at the head of its device. The same
  /// as fOwner for this instance itself, and for one that belongs to no other.
  std::string fDevice = {};
  /// The fOwner of the difference that has this one as a consequence: of an association, one of its
  /// ends that came or went as well; of the reason for a missing value, the instance with the
  /// value. Empty for all others.
  std::string fFollows = {};
};

/// What is not compared. Names are in lower case.
struct TLeftOut {
  std::set<std::string> fParts;    ///< Parts of providers, as they are written.
  std::set<std::string> fClasses;  ///< The classes of these parts.
  /// Classes with references: they can have fewer instances without a part.
  std::set<std::string> fReferring;
};

/// A class, or a property of it, whose differences are ignored.
struct TIgnored {
  std::string fClass;     ///< In any case, with or without its prefix; "*" for every class.
  std::string fProperty;  ///< In any case; empty for the whole class.
};

/// Returns whether `ignored` names this class.
bool NamesClass(const TIgnored& ignored, const std::string& className);

struct TComparisonOptions {
  bool fAll = false;        ///< Also volatile properties.
  bool fSchema = false;     ///< Also qualifiers and methods.
  std::string fMachineOfA;  ///< The name of the machine, which counts as equal to that of the
  std::string fMachineOfB;  ///< other side, in any text; empty for none.
  std::vector<TIgnored> fIgnored;
  TLeftOut fLeftOut;
};

/// Returns the name of the machine that the namespaces describe: what most classes have in the key
/// SystemName or CSName, else the key Name of the only computer system. Empty if there is none.
std::string FindMachineName(const std::vector<TComparedNamespace>& namespaces);

/// Returns the differences, sorted by the names of namespaces and classes, and by object paths and
/// names of properties.
///
/// Names of namespaces, classes, properties and methods are compared without regard to case.
/// Instances correspond if their keys are equal, or, without keys, their values. Equal are
///  - points in time that are the same instant;
///  - arrays of the type Bag with the same elements in any order. An array without the qualifier
///    ArrayType is a bag in a namespace that declares this qualifier; elsewhere order counts;
///  - embedded objects with the same content, but for blanks, the order of attributes and comments.
/// Volatile properties are left out unless asked for: those with the qualifier VORNSG_Volatile, and
/// in a namespace that does not declare it those with certain names. Where one side does not know
/// the name of the machine, a key of all instances, it is not compared.
///
/// Reads one class after the other: time is in proportion to the instances, and memory beyond the
/// namespaces to the largest class and the differences. Passes on what the namespaces throw.
std::vector<TDifference> Compare(const std::vector<TComparedNamespace>& a,
                                 const std::vector<TComparedNamespace>& b,
                                 const TComparisonOptions& options);

}  // namespace NVORNQDX20

#endif  // QDXCOMPARE_COMPARE_H_
