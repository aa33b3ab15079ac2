// SPDX-License-Identifier: Apache-2.0
/// What a document says about a host, as rows for a database.
#ifndef TOOLS_QDX_STORE_INPUT_DOCUMENT_FACTS_H_
#define TOOLS_QDX_STORE_INPUT_DOCUMENT_FACTS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace NVORNQDX20::NStore {

/// How a document names its host; what it does not know is empty. As it is in the document: also
/// what firmware fills in where it knows nothing, such as "Default string".
struct THostIdentity {
  std::string fUUID;  ///< Of the product, in lower case.
  std::string fMachineID;
  std::string fSerialNumber;
  std::string fMaker;
  std::string fModel;  ///< The product's name.
  std::string fName;   ///< The host name.
};

/// Facts that the host may have although the document lacks them: those that match all members that
/// are set. Empty members, and no object, match everything.
struct TUnknown {
  std::string fNamespace;
  std::string fClass;
  std::string fPart;  ///< A part of the provider, without which the object cannot be seen.
  std::optional<std::string> fObject;
  std::string fProperty;
};

/// Everything is text in UTF-8 without a zero byte, and bounded by the limits of the reader: but
/// hostile otherwise.
///
/// Objects are named without the names of host and class, so that the same disk has the same name
/// on every host, and after its host was renamed: "/dev/sda". Of several keys the texts are in the
/// order of the keys' names, with ", " between them, and one if all are equal. A version is no part
/// of the name, so that the firmware is the same object after an update. The machine itself has the
/// empty name. An object of a class without keys is named by its values: "#" and 16 hexadecimal
/// digits.
struct TDocumentFacts {
  struct TClass {
    std::string fNamespace;
    std::string fName;
  };
  struct TProperty {
    std::uint32_t fClass;  ///< An index of fClasses.
    std::string fName;
    std::string fType;         ///< As in "uint8" or "string[]".
    std::string fSecret;       ///< What kind of secret the value is; empty for none.
    bool fIsVolatile = false;  ///< Changes while nobody changes the machine.
    bool fIsKey = false;
  };
  struct TObject {
    std::uint32_t fClass;  ///< An index of fClasses.
    std::string fName;
    /// The parts of the provider without which the object cannot be seen: that of its class and,
    /// of an association, those of what it ties together. With blanks between them.
    std::string fParts;
  };
  /// A value that is not null. Booleans are "true" and "false", numbers decimal. Points in time are
  /// UTC in whole seconds, "2004-03-15T13:30:00Z"; other date-times as in CIM. References are the
  /// name of the class, and after a blank that of the object if it has one: "VORNSG_DiskDrive
  /// /dev/sda"; "NAMESPACE:" precedes if it is another one. Arrays are JSON arrays; those whose
  /// order means nothing are sorted.
  struct TFact {
    std::uint32_t fProperty;  ///< An index of fProperties.
    std::uint32_t fObject;    ///< An index of fObjects, of the same class.
    std::string fValue;
  };
  /// A value, or for an empty property an instance, that the document lacks for a reason.
  struct TMissing {
    std::uint32_t fClass;  ///< An index of fClasses.
    /// None if all objects of the class lack it that have no value and no reason of their own.
    std::optional<std::string> fObject;
    std::string fProperty;
    std::string fReason;
    bool fIsError = false;  ///< The host may have it. Otherwise it is known to have none.
  };
  /// An operation of a provider that failed.
  struct TFailure {
    std::string fProvider;
    std::string fNamespace;  ///< Empty if the operation concerned none.
    std::string fOperation;
    std::string fReason;
  };

  THostIdentity fHost;
  /// When the data was collected: microseconds since 1970-01-01T00:00:00Z, in whole seconds.
  std::int64_t fTime = 0;
  /// SHA-256 of the bytes of the document, in hexadecimal digits.
  std::string fDigest;
  std::string fToolVersion;  ///< Of the collecting tool; empty if unknown.
  /// Nothing was refused for lack of permissions.
  bool fHasAllPermissions = false;
  /// No provider failed, and the reader left nothing out. Parts may be left out.
  bool fIsComplete = false;
  std::vector<std::string> fPartsLeftOut;
  std::vector<TFailure> fFailures;
  std::vector<std::string> fWarnings;  ///< Of the reader: what it left out.

  /// Without the record of the collection. Facts that a stored host has in another namespace are
  /// unknown in this document.
  std::vector<std::string> fNamespaces;
  std::vector<TClass> fClasses;
  std::vector<TProperty> fProperties;
  std::vector<TObject> fObjects;  ///< Each once, sorted by class and name.
  std::vector<TFact> fFacts;      ///< Each once, sorted by object and property.
  std::vector<TMissing> fMissing;
  std::vector<TUnknown> fUnknown;

  /// Returns whether the host may have a fact, although the document lacks it. `parts` are those
  /// of the stored object: the document may lack the class itself.
  bool IsUnknown(const std::string& ns, const std::string& className, const std::string& parts,
                 const std::string& object, const std::string& property) const;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_DOCUMENT_FACTS_H_
