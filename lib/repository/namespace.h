// SPDX-License-Identifier: Apache-2.0
/// The namespace: the owner of all committed elements.
#ifndef LIB_REPOSITORY_NAMESPACE_H_
#define LIB_REPOSITORY_NAMESPACE_H_

#include <qdxcore/instance_copying.h>
#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include <boost/smart_ptr/enable_shared_from_this.hpp>

#include "class.h"
#include "failure_reasons.h"
#include "names.h"
#include "qualifier.h"

namespace NVORNQDX20::NRepository {

class TNamespace final : public ICIMNamespace,
                         public ICopiesInstances,
                         public boost::enable_shared_from_this<TNamespace>,
                         public IDescribed {
 public:
  explicit TNamespace(const std::string& name) : fName(name) {}

  const std::string& GetName(TOptionsMap options) const override;
  boost::shared_ptr<ICIMClass> CreateClass(const std::string& name,
                                           boost::shared_ptr<ICIMClass> superclass,
                                           TOptionsMap options) override;
  boost::shared_ptr<ICIMClass> GetClass(const std::string& name,
                                        TOptionsMap options) const override;
  void EnumerateClasses(const TEnumerationCallback<ICIMClass>& callback,
                        TOptionsMap options) const override;
  boost::shared_ptr<ICIMQualifierDecl> CreateQualifierDecl(const std::string& name,
                                                           const TCIMValue& defaultValue,
                                                           std::uint32_t scope,
                                                           std::uint32_t flavor,
                                                           TOptionsMap options) override;
  boost::shared_ptr<ICIMQualifierDecl> GetQualifierDecl(const std::string& name,
                                                        TOptionsMap options) const override;
  void EnumerateQualifierDecls(const TEnumerationCallback<ICIMQualifierDecl>& callback,
                               TOptionsMap options) const override;
  boost::shared_ptr<ICIMInstance> CopyInstance(const ICIMInstance& instance) override;

  std::string Description() const override { return "namespace " + fName; }
  boost::shared_ptr<TNamespace> Handle() { return shared_from_this(); }
  /// Returns null if there is no committed class with this name.
  TClass* FindClass(const std::string& name) const { return fClasses.Find(name); }
  /// Returns null if there is no declaration with this name.
  TQualifierDecl* FindQualifierDecl(const std::string& name) const {
    return fQualifierDecls.Find(name);
  }
  void Add(const boost::shared_ptr<TClass>& cimClass);
  void Add(const boost::shared_ptr<TQualifierDecl>& decl);

 private:
  boost::shared_ptr<ICIMQualifierDecl> HandleOf(TQualifierDecl& decl) const;

  const std::string fName;
  std::vector<boost::shared_ptr<TQualifierDecl>> fOwnedDecls;
  TNameTable<TQualifierDecl> fQualifierDecls;
  std::vector<boost::shared_ptr<TClass>> fOwnedClasses;
  TNameTable<TClass> fClasses;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_NAMESPACE_H_
