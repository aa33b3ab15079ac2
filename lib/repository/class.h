// SPDX-License-Identifier: Apache-2.0
/// A class: its declarations, its static values and its instances.
#ifndef LIB_REPOSITORY_CLASS_H_
#define LIB_REPOSITORY_CLASS_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/weak_ptr.hpp>

#include "instance_table.h"
#include "method.h"
#include "names.h"
#include "ownership.h"
#include "property.h"
#include "qualifier.h"

namespace NVORNQDX20::NRepository {

class TNamespace;

/// Each property has a slot. Inherited properties keep the slot they have in the superclass, and an
/// overriding declaration takes the slot of the overridden one. A committed class no longer
/// changes, so subclasses start with a copy of its slots, and instances store their values in a
/// vector.
class TClass final : public ICIMClass,
                     public boost::enable_shared_from_this<TClass>,
                     public IDescribed {
 public:
  /// REQUIRES: the superclass is null or committed.
  TClass(TNamespace& ns, const std::string& name, TClass* superclass);

  boost::shared_ptr<ICIMQualifier> AddQualifier(boost::shared_ptr<ICIMQualifierDecl> decl,
                                                const TCIMValue& value) override;
  void Commit(TOptionsMap options) override;
  const std::string& GetName(TOptionsMap options) const override;
  bool IsAssociation(TOptionsMap options) const override;
  bool IsAbstract(TOptionsMap options) const override;
  bool IsRootClass(TOptionsMap options) const override;
  boost::shared_ptr<ICIMClass> GetSuperclass(TOptionsMap options) const override;
  void EnumerateSubclasses(const TEnumerationCallback<ICIMClass>& callback, bool deep,
                           TOptionsMap options) const override;
  boost::shared_ptr<ICIMQualifier> GetQualifier(const std::string& name) const override;
  void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const override;
  boost::shared_ptr<ICIMPropertyDecl> CreatePropertyDecl(const std::string& name,
                                                         const TCIMValue& defaultValue,
                                                         TOptionsMap options) override;
  boost::shared_ptr<const ICIMPropertyDecl> GetPropertyDecl(const std::string& name,
                                                            TOptionsMap options) const override;
  void EnumeratePropertyDecls(const TEnumerationCallback<ICIMPropertyDecl>& callback,
                              TOptionsMap options) const override;
  void SetStaticPropertyValue(const std::string& name, const TCIMValue& value,
                              TOptionsMap options) override;
  void EnumerateStaticProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                 TOptionsMap options) const override;
  boost::shared_ptr<ICIMInstance> CreateInstance(TOptionsMap options) override;
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path,
                                              TOptionsMap options) const override;
  void EnumerateInstances(const TEnumerationCallback<ICIMInstance>& callback, bool deep,
                          TOptionsMap options) const override;
  boost::shared_ptr<ICIMMethodDecl> CreateMethodDecl(const std::string& name,
                                                     TCIMValue::TCIMType returnType,
                                                     TOptionsMap options) override;
  void EnumerateMethodDecls(const TEnumerationCallback<ICIMMethodDecl>& callback,
                            TOptionsMap options) const override;

  std::string Description() const override { return "class " + fName; }
  const std::string& GetName() const { return fName; }
  TNamespace& GetNamespace() const { return fNamespace; }
  TClass* GetSuperclass() const { return fSuperclass; }
  bool IsCommitted() const { return fIsCommitted; }
  /// Returns the one owner that all holders share: references order classes by it.
  boost::shared_ptr<TClass> Handle() const {
    boost::shared_ptr<TClass> handle = fHandle.lock();
    if (!handle) handle = MakeHandle();
    return handle;
  }

  void AddProperty(TPropertyDecl& decl);
  void SetReferenceDefault(const std::string& name, const TCIMValue& value);
  /// Makes room, so that AddSubclass() cannot fail.
  void ReserveSubclass() { ReserveOne(fSubclasses); }
  void AddSubclass(TClass& subclass) { fSubclasses.push_back(&subclass); }
  /// Takes the instance over. Returns false if one with the same keys exists.
  [[nodiscard]] bool AddInstance(TInstance& instance) { return fInstances.Add(instance); }

  /// As TNamespace::CopyInstance(), into this class.
  boost::shared_ptr<ICIMInstance> CopyInstance(const TInstance& source);

  std::size_t SlotCount() const { return fProperties.Size(); }
  /// Throws kQDXStatusNotFound if the class has no such property.
  std::size_t SlotOf(const std::string& name) const;
  /// Returns kNoSlot if the class has no such property.
  std::size_t FindSlot(const std::string& name) const { return fProperties.Position(name); }
  static constexpr std::size_t kNoSlot = TNameTable<TPropertyDecl>::kNone;
  TPropertyDecl& DeclAt(std::size_t slot) const { return fProperties.At(slot); }
  /// REQUIRES: this class has a static value for the slot.
  const TCIMValue& ValueAt(std::size_t slot) const { return fStaticValues.at(slot); }
  TCIMValue BoundValueAt(std::size_t slot) const;
  /// Returns the value of an instance for which none was set.
  const TCIMValue& InitialValueAt(std::size_t slot) const;
  bool IsKeySlot(std::size_t slot) const;
  const std::vector<std::size_t>& GetKeySlots() const { return fInstances.GetKeySlots(); }

 private:
  boost::shared_ptr<TClass> MakeHandle() const;
  bool HasSlotsOf(const TClass& other) const;
  TStoredValue CopyValue(const TInstance& source, std::size_t slot) const;
  std::vector<std::size_t> FindKeySlots() const;
  const TMethodDecl* FindInheritedMethod(const std::string& name) const;
  std::vector<const TClass*> WithDescendants() const;

  TNamespace& fNamespace;
  const std::string fName;
  TClass* const fSuperclass;
  std::vector<TClass*> fSubclasses;
  TQualifierSet fQualifiers;
  std::vector<std::unique_ptr<TPropertyDecl>> fOwnProperties;
  TNameTable<TPropertyDecl> fProperties;  // by slot
  std::map<std::size_t, TCIMValue> fStaticValues;
  std::vector<std::unique_ptr<TMethodDecl>> fOwnMethods;
  TNameTable<TMethodDecl> fMethods;
  TInstanceTable fInstances;
  bool fIsCommitted = false;
  bool fIsAbstract = false;  // known when it is committed
  mutable boost::weak_ptr<TClass> fHandle;
};

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_CLASS_H_
