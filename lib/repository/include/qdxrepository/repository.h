// SPDX-License-Identifier: Apache-2.0
/// A CIM namespace (DMTF DSP0004) held in memory, for providers to fill and hand out.
///
/// Names compare without regard to ASCII case and keep the case they were given; values always
/// compare exactly. Enumerations follow the order in which elements became part of what is
/// enumerated, those of properties with the inherited ones first. What a callback adds meanwhile
/// may or may not be seen, and never makes one endless.
///
/// Order of work. A Create operation, AddQualifier and the setters check their arguments; Commit
/// checks the element against what the namespace holds already. Whatever fails leaves the namespace
/// as it was. A superclass, a qualifier declaration, and the class of an instance or of a reference
/// must be committed before they are used; only a class's own reference properties may name that
/// class while it is built. Once an element is committed its declaration is closed: further
/// declarations, further qualifiers and a second Commit throw kQDXStatusInvalidOpSequence, while
/// static values, and the properties of an instance but for its keys, can be set at any time.
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
/// What throws what. Each is a TExplainedException that names the element it is about; nothing is
/// logged, since a look-up that finds nothing may be all that was asked for.
///
///   kQDXStatusInvalidCIMName      a name that is no CIM identifier
///   kQDXStatusNotFound            GetClass, GetQualifierDecl, GetPropertyDecl, a property's
///                                 GetQualifier, GetProperty and the setters: no such name;
///                                 AddQualifier: not a committed declaration of this namespace
///   kQDXStatusAlreadyExists       Commit: the name, or the instance's keys, are taken;
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
/// What counts as what. "Key" makes a property a key of the class and all below it; "Association"
/// makes a class and all below it associations; "Abstract" speaks of its own class only. That is so
/// whatever their flavor. Scopes are kept, not enforced. A class's property declarations include
/// the inherited ones, which are the superclass's own objects; methods, qualifiers and static
/// values are the class's own, but a property's GetQualifier also finds what it inherits from the
/// declaration it overrides (kFlavorToSubclass). A property that an instance never set answers the
/// static value of the closest class that has one, else the declared default. An instance is found
/// by exactly its keys in its own class; GetInstance answers null if there is none. A class without
/// keys can have any number of instances, which no path names.
///
/// Lifetime. Every object handed out keeps the whole namespace alive, and nothing within the
/// namespace keeps itself alive: it goes when the last outside holder of any part of it goes, what
/// was never committed when its own holders go. A class, an instance and a declaration is one
/// object each, the same whenever it is handed out, but a weak pointer to it expires with its
/// outside holders. A reference to an object of the namespace itself is stored without ownership,
/// with its key names in the declared spelling; it is bound again, to this namespace, when it is
/// read, and then keeps it alive like any other. So the value of a reference property is valid as
/// long as the ICIMProperty or ICIMPropertyDecl it was read from (any other until it is set again),
/// and a reference to another namespace keeps that one alive: two namespaces that hold references
/// to each other are never freed.
#ifndef QDXREPOSITORY_REPOSITORY_H_
#define QDXREPOSITORY_REPOSITORY_H_

#include <qdxcore/interfaces.h>

#include <cstdint>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// What a qualifier may stand on: the bits of ICIMQualifierDecl::GetScope.
inline constexpr std::uint32_t kScopeClass = 1U << 0;
inline constexpr std::uint32_t kScopeAssociation = 1U << 1;
inline constexpr std::uint32_t kScopeReference = 1U << 2;
inline constexpr std::uint32_t kScopeProperty = 1U << 3;
inline constexpr std::uint32_t kScopeMethod = 1U << 4;
inline constexpr std::uint32_t kScopeParameter = 1U << 5;
inline constexpr std::uint32_t kScopeIndication = 1U << 6;
inline constexpr std::uint32_t kScopeAny = (1U << 7) - 1;

/// What becomes of a qualifier elsewhere: the bits of ICIMQualifierDecl::GetFlavor. A flavor
/// without kFlavorOverridable is "DisableOverride", one without kFlavorToSubclass "Restricted".
inline constexpr std::uint32_t kFlavorOverridable = 1U << 0;
inline constexpr std::uint32_t kFlavorToSubclass = 1U << 1;
inline constexpr std::uint32_t kFlavorToInstance = 1U << 2;
inline constexpr std::uint32_t kFlavorTranslatable = 1U << 3;

/// A new, empty namespace; every interface of <qdxcore/interfaces.h> is implemented behind it.
boost::shared_ptr<ICIMNamespace> MakeRepositoryNamespace(const std::string& name);

/// A provider of namespaces that were made beforehand. Their names compare without regard to case.
class TRepositoryProvider final : public INamespaceProvider {
 public:
  explicit TRepositoryProvider(const std::string& name);
  ~TRepositoryProvider() override;

  /// Throws kQDXStatusAlreadyExists if it has one of that name.
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
