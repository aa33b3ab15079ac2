// SPDX-License-Identifier: Apache-2.0
/// A class to derive from, for a provider that implements ICIMClass itself.
#ifndef QDXCORE_CLASS_BASE_H_
#define QDXCORE_CLASS_BASE_H_

#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include <string>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// A root class that has a name and nothing else: no qualifiers, properties, methods, instances or
/// subclasses, and nothing can be added. Override what your class has; a lookup and its enumeration
/// together (GetPropertyDecl and EnumeratePropertyDecls, GetInstance and EnumerateInstances,
/// GetQualifier and EnumerateQualifiers), since neither uses the other.
///
///   class TFan : public TCIMClassBase {
///    public:
///     const std::string& GetName(TOptionsMap) const override { return fName; }
///
///    private:
///     const std::string fName = "Example_Fan";
///   };
///
/// The repository of <qdxrepository/repository.h> implements all of the interfaces; start from this
/// only where the objects exist already, or are too many to be copied.
///
/// All inline and not exported: each plug-in has type information of its own for this class.
/// Nothing depends on it, since no code throws this class or casts to it.
class TCIMClassBase : public ICIMClass {
 public:
  bool IsAssociation(TOptionsMap) const override { return false; }
  bool IsAbstract(TOptionsMap) const override { return false; }
  bool IsRootClass(TOptionsMap) const override { return true; }
  /// Null.
  boost::shared_ptr<ICIMClass> GetSuperclass(TOptionsMap) const override { return nullptr; }
  void EnumerateSubclasses(const TEnumerationCallback<ICIMClass>&, bool,
                           TOptionsMap) const override {}

  /// Null.
  boost::shared_ptr<ICIMQualifier> GetQualifier(const std::string&) const override {
    return nullptr;
  }
  void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>&) const override {}
  /// Throws kQDXStatusNotFound.
  boost::shared_ptr<const ICIMPropertyDecl> GetPropertyDecl(const std::string&,
                                                            TOptionsMap) const override {
    throw TQDXException(kQDXStatusNotFound);
  }
  void EnumeratePropertyDecls(const TEnumerationCallback<ICIMPropertyDecl>&,
                              TOptionsMap) const override {}
  void EnumerateStaticProperties(const TEnumerationCallback<ICIMProperty>&,
                                 TOptionsMap) const override {}
  void EnumerateMethodDecls(const TEnumerationCallback<ICIMMethodDecl>&,
                            TOptionsMap) const override {}
  /// Null.
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference&, TOptionsMap) const override {
    return nullptr;
  }
  void EnumerateInstances(const TEnumerationCallback<ICIMInstance>&, bool,
                          TOptionsMap) const override {}

  // Those that change the class throw kQDXStatusNotImplemented.
  boost::shared_ptr<ICIMQualifier> AddQualifier(boost::shared_ptr<ICIMQualifierDecl>,
                                                const TCIMValue&) override {
    CannotBeChanged();
  }
  void Commit(TOptionsMap) override { CannotBeChanged(); }
  boost::shared_ptr<ICIMPropertyDecl> CreatePropertyDecl(const std::string&, const TCIMValue&,
                                                         TOptionsMap) override {
    CannotBeChanged();
  }
  void SetStaticPropertyValue(const std::string&, const TCIMValue&, TOptionsMap) override {
    CannotBeChanged();
  }
  boost::shared_ptr<ICIMInstance> CreateInstance(TOptionsMap) override { CannotBeChanged(); }
  boost::shared_ptr<ICIMMethodDecl> CreateMethodDecl(const std::string&, TCIMValue::TCIMType,
                                                     TOptionsMap) override {
    CannotBeChanged();
  }

 private:
  [[noreturn]] static void CannotBeChanged() { throw TQDXException(kQDXStatusNotImplemented); }
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_CLASS_BASE_H_
