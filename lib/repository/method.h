// SPDX-License-Identifier: Apache-2.0
/// Methods and their parameters.
#ifndef LIB_REPOSITORY_METHOD_H_
#define LIB_REPOSITORY_METHOD_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/reference_parameter.h>

#include <memory>
#include <string>
#include <vector>

#include "names.h"
#include "qualifier.h"

namespace NVORNQDX20::NRepository {

class TClass;
class TMethodDecl;

class TParameterDecl final : public ICIMParameterDecl,
                             public IReferenceParameterDecl,
                             public IDescribed {
 public:
  TParameterDecl(TMethodDecl& method, const std::string& name, TCIMValue::TCIMType type,
                 const TParameterDecl* overridden);

  boost::shared_ptr<ICIMQualifier> AddQualifier(boost::shared_ptr<ICIMQualifierDecl> decl,
                                                const TCIMValue& value) override;
  void Commit() override;
  const std::string& GetName() const override { return fName; }
  TCIMValue::TCIMType GetType() const override { return fType; }
  void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const override;

  std::string GetReferencedClassName() const override { return fReferencedClass; }
  void SetReferencedClassName(const std::string& name) override;

  std::string Description() const override;

 private:
  TMethodDecl& fMethod;
  const std::string fName;
  const TCIMValue::TCIMType fType;
  std::string fReferencedClass;  // empty if not known
  TQualifierSet fQualifiers;
};

class TMethodDecl final : public ICIMMethodDecl, public IDescribed {
 public:
  /// `overridden` is the inherited method of that name, or null.
  TMethodDecl(TClass& owner, const std::string& name, TCIMValue::TCIMType returnType,
              const TMethodDecl* overridden);

  boost::shared_ptr<ICIMQualifier> AddQualifier(boost::shared_ptr<ICIMQualifierDecl> decl,
                                                const TCIMValue& value) override;
  void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const override;
  const std::string& GetName() const override { return fName; }
  TCIMValue::TCIMType GetReturnType() const override { return fReturnType; }
  boost::shared_ptr<ICIMParameterDecl> CreateParameterDecl(const std::string& name,
                                                           TCIMValue::TCIMType type) override;
  void EnumerateParameterDecls(
      const TEnumerationCallback<ICIMParameterDecl>& callback) const override;

  std::string Description() const override;
  TClass& GetOwner() const { return fQualifiers.GetOwner(); }
  void AddParameter(TParameterDecl& parameter);

 private:
  const std::string fName;
  const TCIMValue::TCIMType fReturnType;
  const TMethodDecl* const fOverridden;
  TQualifierSet fQualifiers;
  std::vector<std::unique_ptr<TParameterDecl>> fParameters;
  TNameTable<TParameterDecl> fCommitted;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_METHOD_H_
