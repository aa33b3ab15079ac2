// SPDX-License-Identifier: Apache-2.0
/// Declares the provider's classes, adds their instances, and records missing values.
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
  const char* fUnit = nullptr;             ///< The unit of a number as a PUnit (DMTF DSP0004).
  const char* fReferencedClass = nullptr;  ///< The class of a reference.
};

struct TClassSpec {
  enum EKind { kConcrete, kAbstract, kAssociation };

  const char* fName;
  const char* fDescription;
  std::vector<TPropertySpec> fProperties;
  EKind fKind = kConcrete;
  const char* fSuperclass = nullptr;
};

/// The value of a property of an instance; null with a reason if it is missing. Not assignable: a
/// TCIMValue cannot be assigned a null value without a type.
struct TPropertyValue {
  TPropertyValue(const char* name, const TCIMValue& value) : fName(name), fValue(value) {}
  /// Null if the reading is missing.
  template <typename T>
  TPropertyValue(const char* name, const TReadingOf<T>& reading)
      : fName(name), fReason(reading.fReason) {
    if (reading) fValue.Set(*reading.fValue);
  }
  /// A key cannot be null: a missing text becomes empty, and the reason is kept.
  static TPropertyValue Key(const char* name, const TReading& reading) {
    TPropertyValue key(name, TCIMValue(reading.fValue.value_or(std::string())));
    key.fReason = reading.fReason;
    return key;
  }

  const char* const fName;
  TCIMValue fValue;
  std::string fReason;
};

/// Builds one namespace.
class TNamespaceBuilder {
 public:
  explicit TNamespaceBuilder(const std::string& name);

  boost::shared_ptr<ICIMClass> DeclareClass(const TClassSpec& spec);
  boost::shared_ptr<ICIMClass> GetClass(const std::string& name) const;
  bool HasClass(const std::string& name) const { return fCounts.count(name) != 0; }
  /// Logs and records every missing value. `instance` is the key value that identifies the instance
  /// in these records; empty for the only instance of a class. Returns false, and records it, if
  /// the class has more instances than a real machine can have.
  bool AddInstance(ICIMClass& cimClass, const std::vector<TPropertyValue>& values,
                   const std::string& instance = std::string());
  /// Logs and records why the class has no instances.
  void NoteMissingInstances(const ICIMClass& cimClass, const std::string& reason);
  /// Returns a reference to the instance with these keys, which need not exist.
  TCIMValue ReferenceTo(const std::string& className,
                        const std::vector<TPropertyValue>& keys) const;
  /// Adds the class of missing values. The last call on the builder.
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
  std::map<std::string, std::size_t> fCounts;  // instances per class
  std::vector<TMissingValue> fMissing;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_NAMESPACE_BUILDER_H_
