// SPDX-License-Identifier: Apache-2.0
/// A CIM namespace (DMTF DSP0004) held in memory, for providers to fill and hand out.
///
/// Names compare without regard to ASCII case and keep the case they were given; values always
/// compare exactly. Enumerations return elements in the order in which they were added; those of
/// properties begin with the inherited ones. An element that a callback adds to the enumerated
/// object may or may not be visited, but no enumeration becomes endless.
///
/// Order of work. A Create operation, AddQualifier and the setters check their arguments; Commit
/// checks the element against the contents of the namespace. An operation that fails leaves the
/// namespace as it was. A superclass, a qualifier declaration, and the class of an instance or of a
/// reference must be committed before they are used; only a class's own reference properties may
/// name that class before it is committed. After an element is committed, further declarations,
/// further qualifiers and a second Commit throw kQDXStatusInvalidOpSequence. Static values, and the
/// properties of an instance except its keys, can be set at any time.
///
///   boost::shared_ptr<ICIMNamespace> ns = MakeRepositoryNamespace("root/cimv2");
///   auto key = ns->CreateQualifierDecl("Key", false, kScopeAny, kFlavorToSubclass, {});
///   key->Commit();
///   auto disk = ns->CreateClass("CIM_DiskDrive", nullptr, {});
///   auto id = disk->CreatePropertyDecl("DeviceID", "", {});
///   id->AddQualifier(key, true)->Commit();
///   id->Commit();
///   disk->Commit({});
///   auto sda = disk->CreateInstance({});
///   sda->SetPropertyValue("DeviceID", "sda", {});
///   sda->Commit({});
///
/// Exceptions. Each is a TExplainedException that names the element concerned. They are not logged,
/// since only the caller knows whether a missing element is a failure.
///
///   kQDXStatusInvalidCIMName      a name that is no CIM identifier
///   kQDXStatusNotFound            GetClass, GetQualifierDecl, GetPropertyDecl, a property's
///                                 GetQualifier, GetProperty and the setters: no such name;
///                                 AddQualifier: not a committed declaration of this namespace
///   kQDXStatusAlreadyExists       Commit: an element with this name, or an instance with these
///                                 keys, exists;
///                                 CreateMethodDecl: the class has a method of that name
///   kQDXStatusInvalidClass        CreateClass: the superclass is not a committed class of this
///                                 namespace; CreateInstance: the class is abstract; Commit: an
///                                 array as key, or keys below a class that has keys already
///   kQDXStatusInvalidProperty     CreatePropertyDecl, CreateQualifierDecl, CreateMethodDecl,
///                                 CreateParameterDecl: a type that such an element cannot have
///   kQDXStatusInvalidReference    a reference property without referenced class; a reference to a
///                                 class of this namespace that is not committed
///   kQDXStatusTypeMismatch        a value of another type than declared; Commit of a property that
///                                 overrides one of another type
///   kQDXStatusNotOverridable      Commit of a qualifier that changes an inherited one whose flavor
///                                 has kFlavorToSubclass but not kFlavorOverridable
///   kQDXStatusInvalidInstance     Commit: a key property is null
///
/// Qualifiers. "Key" makes a property a key of its class and of all subclasses; "Association" makes
/// its class and all subclasses associations; "Abstract" applies to its own class only. The flavor
/// makes no difference to this. Scopes are stored, not enforced.
///
/// Inheritance. The property declarations of a class include the inherited ones, which are the same
/// objects as the superclass's. Methods, qualifiers and static values do not include inherited
/// ones, but GetQualifier of a property also finds qualifiers of the declarations that it overrides
/// (kFlavorToSubclass).
///
/// Values. A property that was never set in an instance has the static value of the closest class
/// that has one, or else the declared default. GetInstance finds an instance by its exact keys in
/// its own class, and returns null if there is none. A class without keys can have any number of
/// instances, which have no path of their own.
///
/// Lifetime. Every object that an operation returns keeps the whole namespace alive. The namespace
/// is freed with the last of these objects, and an element that was never committed with the last
/// pointer to it. Each operation returns the same object for the same class, instance or
/// declaration, but a weak pointer to it expires when the caller has no other pointer to it. A
/// reference to an object of the same namespace is stored without ownership, with its key names in
/// the declared spelling. It is bound to the namespace when it is read, and then keeps the
/// namespace alive. So the value of a reference property is valid as long as the ICIMProperty or
/// ICIMPropertyDecl that it was read from; other values are valid until they are set again. A
/// reference to another namespace keeps that one alive: two namespaces with references to each
/// other are never freed.
#ifndef QDXREPOSITORY_REPOSITORY_H_
#define QDXREPOSITORY_REPOSITORY_H_

#include <qdxcore/interfaces.h>

#include <cstdint>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// The bits of ICIMQualifierDecl::GetScope: the kinds of elements that can have the qualifier.
inline constexpr std::uint32_t kScopeClass = 1U << 0;
inline constexpr std::uint32_t kScopeAssociation = 1U << 1;
inline constexpr std::uint32_t kScopeReference = 1U << 2;
inline constexpr std::uint32_t kScopeProperty = 1U << 3;
inline constexpr std::uint32_t kScopeMethod = 1U << 4;
inline constexpr std::uint32_t kScopeParameter = 1U << 5;
inline constexpr std::uint32_t kScopeIndication = 1U << 6;
inline constexpr std::uint32_t kScopeAny = (1U << 7) - 1;

/// The bits of ICIMQualifierDecl::GetFlavor: how subclasses, instances and translations treat the
/// qualifier. A flavor without kFlavorOverridable is "DisableOverride", one without
/// kFlavorToSubclass is "Restricted".
inline constexpr std::uint32_t kFlavorOverridable = 1U << 0;
inline constexpr std::uint32_t kFlavorToSubclass = 1U << 1;
inline constexpr std::uint32_t kFlavorToInstance = 1U << 2;
inline constexpr std::uint32_t kFlavorTranslatable = 1U << 3;

/// Returns a new, empty namespace, which implements all interfaces of the object model.
boost::shared_ptr<ICIMNamespace> MakeRepositoryNamespace(const std::string& name);

/// Sets the default of a reference property that the class itself declares, even if the class is
/// committed. For classes that refer to each other, or to their own subclasses: each property
/// refers to its own class until all of them are committed. Callers that hold the declaration keep
/// the old default. Throws as CreatePropertyDecl, kQDXStatusTypeMismatch for another type, and
/// kQDXStatusInvalidClass for a class that is not made here.
void SetReferenceDefault(ICIMClass& cimClass, const std::string& property, const TCIMValue& value);

/// A provider of namespaces that were made beforehand. Their names compare without regard to case.
class TRepositoryProvider final : public INamespaceProvider {
 public:
  explicit TRepositoryProvider(const std::string& name);
  ~TRepositoryProvider() override;

  /// Throws kQDXStatusAlreadyExists if the provider has a namespace with this name.
  void AddNamespace(boost::shared_ptr<ICIMNamespace> ns);

  const std::string& GetName(TOptionsMap options) const override;
  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name,
                                                TOptionsMap options) override;
  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback,
                               TOptionsMap options) override;

 private:
  boost::shared_ptr<ICIMNamespace> Find(const std::string& name) const;

  std::string fName;
  std::vector<boost::shared_ptr<ICIMNamespace>> fNamespaces;
};

}  // namespace NVORNQDX20

#endif  // QDXREPOSITORY_REPOSITORY_H_
