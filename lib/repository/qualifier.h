// SPDX-License-Identifier: Apache-2.0
/// Qualifier declarations, and the qualifiers of one element.
#ifndef LIB_REPOSITORY_QUALIFIER_H_
#define LIB_REPOSITORY_QUALIFIER_H_

#include <qdxcore/interfaces.h>

#include <memory>
#include <string>
#include <vector>

#include <boost/smart_ptr/enable_shared_from_this.hpp>

#include "failure_reasons.h"
#include "names.h"

namespace NVORNQDX20::NRepository {

class TClass;
class TNamespace;
class TQualifierSet;

class TQualifierDecl final : public ICIMQualifierDecl,
                             public boost::enable_shared_from_this<TQualifierDecl>,
                             public IDescribed {
 public:
  TQualifierDecl(TNamespace& ns, const std::string& name, const TCIMValue& defaultValue,
                 std::uint32_t scope, std::uint32_t flavor);

  void Commit() override;
  const std::string& GetName() const override { return fName; }
  const TCIMValue& GetDefaultValue() const override { return fDefaultValue; }
  std::uint32_t GetScope() const override { return fScope; }
  std::uint32_t GetFlavor() const override { return fFlavor; }

  std::string Description() const override { return "qualifier declaration " + fName; }
  bool HasFlavor(std::uint32_t bit) const { return (fFlavor & bit) != 0; }

 private:
  TNamespace& fNamespace;
  const std::string fName;
  const TCIMValue fDefaultValue;
  const std::uint32_t fScope;
  const std::uint32_t fFlavor;
};

class TQualifier final : public ICIMQualifier, public IDescribed {
 public:
  TQualifier(TQualifierSet& set, const TQualifierDecl& decl, const TCIMValue& value);

  void Commit() override;
  boost::shared_ptr<const ICIMQualifierDecl> GetDecl() const override;
  const TCIMValue& GetValue() const override { return fValue; }

  std::string Description() const override;
  const std::string& GetName() const { return fDecl.GetName(); }
  bool HasFlavor(std::uint32_t bit) const { return fDecl.HasFlavor(bit); }

 private:
  TQualifierSet& fSet;
  const TQualifierDecl& fDecl;
  const TCIMValue fValue;
};

/// The qualifiers of a class or of one of its elements. Look-ups and enumerations only see
/// committed ones.
class TQualifierSet {
 public:
  /// `overridden` is the set of the overridden element, or null.
  TQualifierSet(const IDescribed& element, TClass& owner, const TQualifierSet* overridden)
      : fElement(element), fOwner(owner), fOverridden(overridden) {}
  TQualifierSet(const TQualifierSet&) = delete;
  TQualifierSet& operator=(const TQualifierSet&) = delete;

  boost::shared_ptr<ICIMQualifier> Add(const boost::shared_ptr<ICIMQualifierDecl>& decl,
                                       const TCIMValue& value);
  void Commit(TQualifier& qualifier);
  /// Refuses further qualifiers and commits from now on; called when the class is committed.
  void Close() { fIsClosed = true; }
  /// Throws kQDXStatusInvalidOpSequence if the set is closed.
  void RequireOpen() const;

  /// Returns null if there is none.
  TQualifier* Find(const std::string& name) const { return fCommitted.Find(name); }
  /// Returns the qualifier of the nearest overridden element that has it, if its flavor allows
  /// inheritance; else null.
  TQualifier* FindInherited(const std::string& name) const;
  /// Returns whether the set itself has this boolean qualifier and its value is true.
  bool IsTrue(const std::string& name) const;
  void Enumerate(const TEnumerationCallback<ICIMQualifier>& callback) const;
  boost::shared_ptr<ICIMQualifier> Handle(TQualifier* qualifier) const;

  const IDescribed& GetElement() const { return fElement; }
  TClass& GetOwner() const { return fOwner; }

 private:
  const IDescribed& fElement;
  TClass& fOwner;
  const TQualifierSet* const fOverridden;
  std::vector<std::unique_ptr<TQualifier>> fQualifiers;
  TNameTable<TQualifier> fCommitted;
  bool fIsClosed = false;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_QUALIFIER_H_
