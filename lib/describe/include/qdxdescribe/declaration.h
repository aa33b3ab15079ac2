// SPDX-License-Identifier: Apache-2.0
/// Classes as plain data, and their declaration in a namespace with the qualifiers that they need.
#ifndef QDXDESCRIBE_DECLARATION_H_
#define QDXDESCRIBE_DECLARATION_H_

#include <qdxcore/interfaces.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NDescribe {

/// Qualifier of this project: the value changes by itself while nobody changes the machine, so that
/// two documents are not different because of it.
inline constexpr const char* kVolatileQualifier = "VORNSG_Volatile";
/// Qualifier of this project: what kind of secret the value is, as one of SecretName().
inline constexpr const char* kSecretQualifier = "VORNSG_Secret";

/// Qualifier of this project: the part of its provider that the class belongs to.
inline constexpr const char* kPartQualifier = "VORNSG_Part";

/// What gives away something about a machine or its users.
enum class ESecret {
  kNone,
  kSerial,
  kHostName,
  kAddress,
  kUser,
  kCommandLine,
  kMountSource,  ///< May hold addresses, names of hosts and UUIDs; "/dev/sda1" is no secret.
};

/// Returns the value of kSecretQualifier, for example "serial"; empty for kNone.
const char* SecretName(ESecret secret);

/// How a number behaves over time (DMTF DSP0004, qualifiers Counter and Gauge).
enum class EBehavior { kNone, kCounter, kGauge };

/// The texts of an enumeration's numbers (DMTF DSP0004, qualifiers ValueMap and Values). Of an
/// array, they are those of each element.
using TEnumeration = std::vector<std::pair<long, const char*>>;

/// The same for a constant at namespace scope: one that is constexpr exists before any plug-in is
/// asked for its classes, which happens while objects are still being initialised.
using TConstantEnumeration = std::initializer_list<std::pair<long, const char*>>;

struct TPropertyDeclaration {
  TPropertyDeclaration(std::string name, const TCIMValue& initial)
      : fName(std::move(name)), fDefault(initial) {}

  std::string fName;
  /// Its type is the property's type; null if there is no default.
  TCIMValue fDefault;
  std::string fDescription;
  std::string fUnit;             ///< The unit of a number as a PUnit (DMTF DSP0004).
  std::string fReferencedClass;  ///< The class of a reference.
  TEnumeration fEnumeration;
  ESecret fSecret = ESecret::kNone;
  EBehavior fBehavior = EBehavior::kNone;
  bool fIsKey = false;
  bool fIsVolatile = false;
};

/// A part of a provider, which callers choose by its name.
struct TPart {
  std::string fName;          ///< Empty for what is always described.
  bool fIsOnRequest = false;  ///< Left out unless the caller asks for it.
};

struct TClassDeclaration {
  std::string fName;
  std::string fDescription;
  std::vector<TPropertyDeclaration> fProperties;  ///< Without inherited ones.
  std::string fSuperclass = {};                   ///< Empty for a root class.
  bool fIsAbstract = false;
  bool fIsAssociation = false;
  TPart fPart = {};
};

/// Declares and commits the class. A qualifier that the namespace does not have is declared, too.
/// Superclass and referenced classes must be committed. Passes on what the namespace throws.
boost::shared_ptr<ICIMClass> DeclareClass(ICIMNamespace& ns, const TClassDeclaration& declaration);

namespace NDetail {

/// Returns whether the names are equal but for the case of their letters.
bool AreSameName(const std::string& one, const std::string& other);

/// Returns the text. Throws a TExplainedException with kQDXStatusInvalidClass, such as "the unit of
/// row Speed is a null pointer", if it is null.
const char* Given(const char* text, const char* what, const char* whose = "");

}  // namespace NDetail

/// Property names with values.
using TValues = std::vector<std::pair<std::string, TCIMValue>>;

/// Creates and commits an instance. Null values are left at the declared default.
boost::shared_ptr<ICIMInstance> AddInstance(ICIMClass& cimClass, const TValues& values);

/// Declares the qualifier kVolatileQualifier, so that a namespace without volatile properties says
/// so.
void DeclareVolatileQualifier(ICIMNamespace& ns);

/// Throws a TExplainedException with one sentence, and kQDXStatusInvalidClass or the status of the
/// repository, if the declarations contradict themselves or each other: no key, two properties of
/// one name, a superclass or a referenced class that is not declared before, two classes of one
/// name, a unit that is no PUnit, an enumeration with numbers that the property cannot be, an
/// association with fewer than two references.
void CheckDeclarations(const std::vector<const TClassDeclaration*>& declarations);

/// Checks the same, except for what a namespace checks when the classes are declared.
void CheckRelations(const std::vector<const TClassDeclaration*>& declarations);

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_DECLARATION_H_
