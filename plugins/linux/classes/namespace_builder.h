// SPDX-License-Identifier: Apache-2.0
/// Declares the provider's classes, adds their instances, and keeps account of what is missing.
#ifndef PLUGINS_LINUX_CLASSES_NAMESPACE_BUILDER_H_
#define PLUGINS_LINUX_CLASSES_NAMESPACE_BUILDER_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "machine/reading.h"

namespace NVORNQDX20 {

struct TPropertySpec {
  const char* fName;
  TCIMValue::TCIMType::ECIMType fType;
  bool fKey;
  const char* fDescription;
  const char* fUnit = nullptr;             ///< Of a number, as DMTF DSP0004 writes a PUnit.
  const char* fReferencedClass = nullptr;  ///< Of a reference.
};

struct TClassSpec {
  enum EKind { kConcrete, kAbstract, kAssociation };

  const char* fName;
  const char* fDescription;
  std::vector<TPropertySpec> fProperties;
  EKind fKind = kConcrete;
  const char* fSuperclass = nullptr;
};

/// The value that an instance gets for a property; null stands beside the reason for it. Never
/// assigned: a TCIMValue takes no null of no type.
struct TPropertyValue {
  TPropertyValue(const char* name, const TCIMValue& value) : fName(name), fValue(value) {}
  /// Null if there is no value.
  template <typename T>
  TPropertyValue(const char* name, const TReadingOf<T>& reading)
      : fName(name), fReason(reading.fReason) {
    if (reading) fValue.Set(*reading.fValue);
  }
  /// A key cannot be null: where there is no text it is empty, and the reason is kept as well.
  static TPropertyValue Key(const char* name, const TReading& reading) {
    TPropertyValue key(name, TCIMValue(reading.fValue.value_or(std::string())));
    key.fReason = reading.fReason;
    return key;
  }

  const char* const fName;
  TCIMValue fValue;
  std::string fReason;
};

/// A namespace while it is filled.
class TNamespaceBuilder {
 public:
  explicit TNamespaceBuilder(const std::string& name);

  boost::shared_ptr<ICIMClass> DeclareClass(const TClassSpec& spec);
  boost::shared_ptr<ICIMClass> GetClass(const std::string& name) const;
  bool HasClass(const std::string& name) const { return fCounts.count(name) != 0; }
  /// Every value that comes with a reason is logged and noted. `instance` is the key that tells the
  /// instance from its like in such a note; it is empty for the only one of its class. False if the
  /// class has so many already that the machine's files cannot be true; that is noted as well.
  bool AddInstance(ICIMClass& cimClass, const std::vector<TPropertyValue>& values,
                   const std::string& instance = std::string());
  /// Logs and notes why the class lacks instances.
  void NoteMissingInstances(const ICIMClass& cimClass, const std::string& reason);
  /// A reference to the instance that the keys name, which need not be there.
  TCIMValue ReferenceTo(const std::string& className,
                        const std::vector<TPropertyValue>& keys) const;
  /// Adds the class of what is missing; the last call.
  boost::shared_ptr<ICIMNamespace> Finish();

 private:
  struct TMissingValue {
    std::string fClass;
    std::string fInstance;
    std::string fProperty;
    std::string fReason;
  };

  boost::shared_ptr<ICIMQualifierDecl> DeclareQualifier(const std::string& name,
                                                        const TCIMValue& defaultValue,
                                                        std::uint32_t scope, std::uint32_t flavor);
  void DeclareProperty(ICIMClass& cimClass, const TPropertySpec& spec);
  TCIMValue DefaultOf(const TPropertySpec& spec) const;
  void CreateInstance(ICIMClass& cimClass, const std::vector<TPropertyValue>& values,
                      const std::string& instance);
  void NoteMissing(const TMissingValue& missing);

  boost::shared_ptr<ICIMNamespace> fNamespace;
  boost::shared_ptr<ICIMQualifierDecl> fKey;
  boost::shared_ptr<ICIMQualifierDecl> fDescription;
  boost::shared_ptr<ICIMQualifierDecl> fUnit;
  boost::shared_ptr<ICIMQualifierDecl> fAbstract;
  boost::shared_ptr<ICIMQualifierDecl> fAssociation;
  std::map<std::string, std::size_t> fCounts;  // of the instances of each class
  std::vector<TMissingValue> fMissing;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_NAMESPACE_BUILDER_H_
