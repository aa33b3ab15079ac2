// SPDX-License-Identifier: Apache-2.0
/// The interfaces through which CIM data is reached (DMTF DSP0004, the CIM meta schema): providers
/// implement them, all others call them.
///
/// Declaration order binds plug-ins that were built separately: a virtual function is only ever
/// added after the last one of its class. The ReservedN functions keep places in that order free;
/// nobody implements or calls them, and they throw kQDXStatusNotImplemented. What the library calls
/// is pure; what others call has a default that throws kQDXStatusNotImplemented, so that a plug-in
/// which does not know it still compiles.
///
/// Objects are shared: every operation that gives one gives a shared reference, nobody deletes one,
/// nobody keeps a plain pointer. What a query does if there is no such element, return null or
/// throw, is said at each; the others never return null. A caller that dereferences a null ends in
/// the handler of <qdxcore/status.h>.
///
/// Names are looked up without regard to case (DMTF DSP0004, naming). Options maps are passed empty
/// by the library. A failure is a thrown TQDXException.
///
/// Enumerations call back once for each element, before they return; a callback that returns false
/// ends them. A callback may use the same provider again, so hold no lock across one.
///
/// What a Create operation gives is filled by further calls and becomes part of its namespace with
/// Commit(). It can be queried before that: a new class knows what it inherits. A method
/// declaration is part of its class at once, and is never committed.
#ifndef QDXCORE_INTERFACES_H_
#define QDXCORE_INTERFACES_H_

#include <qdxcore/build_stamp.h>
#include <qdxcore/config.h>
#include <qdxcore/reference.h>
#include <qdxcore/value.h>

#include <cstdint>
#include <string>
#include <vector>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class ICIMClass;
class ICIMInstance;
class ICIMMethodDecl;
class ICIMNamedElement;
class ICIMNamespace;
class ICIMParameterDecl;
class ICIMProperty;
class ICIMPropertyDecl;
class ICIMQualifier;
class ICIMQualifierDecl;

/// Visits one element of an enumeration; false ends it.
template <typename T>
using TEnumerationCallback = boost::function<bool(boost::shared_ptr<T>)>;

/// The callback that appends every element to a vector; the vector must outlive it.
template <typename T>
class TAddToVectorCallback {
 public:
  explicit TAddToVectorCallback(std::vector<boost::shared_ptr<T>>& elements)
      : fElements(elements) {}

  bool operator()(boost::shared_ptr<T> element) const {
    fElements.push_back(element);
    return true;
  }

 private:
  std::vector<boost::shared_ptr<T>>& fElements;
};

/// What an object path names: a class or an instance.
class QDXCORE_EXPORT ICIMElement {
 public:
  virtual ~ICIMElement();
};

/// What can carry qualifiers: a class, a property, method or parameter declaration.
class QDXCORE_EXPORT ICIMNamedElement {
 public:
  virtual ~ICIMNamedElement();
  virtual void ReservedElement1();
  /// The new qualifier is not committed yet.
  virtual boost::shared_ptr<ICIMQualifier> AddQualifier(boost::shared_ptr<ICIMQualifierDecl> decl,
                                                        const TCIMValue& value) = 0;
};

/// The declaration of a qualifier (DMTF DSP0004, qualifiers). The bits of scope and flavor are the
/// provider's; the library passes them on as they are.
class QDXCORE_EXPORT ICIMQualifierDecl {
 public:
  virtual ~ICIMQualifierDecl();
  virtual void Reserved1();
  virtual void Commit() = 0;
  virtual void Reserved2();
  virtual const std::string& GetName() const = 0;
  virtual void Reserved3();
  virtual void Reserved4();
  virtual void Reserved5();
  /// Its type is the type of the qualifier.
  virtual const TCIMValue& GetDefaultValue() const = 0;
  virtual void Reserved6();
  virtual std::uint32_t GetScope() const = 0;
  virtual void Reserved7();
  virtual void Reserved8();
  virtual std::uint32_t GetFlavor() const = 0;
};

/// A qualifier on an element.
class QDXCORE_EXPORT ICIMQualifier {
 public:
  virtual ~ICIMQualifier();
  virtual void Reserved1();
  virtual void Commit() = 0;
  virtual void Reserved2();
  virtual void Reserved3();
  virtual void Reserved4();
  virtual void Reserved5();
  virtual void Reserved6();
  virtual boost::shared_ptr<const ICIMQualifierDecl> GetDecl() const = 0;
  virtual const TCIMValue& GetValue() const = 0;
};

/// The declaration of a property.
class QDXCORE_EXPORT ICIMPropertyDecl : public ICIMNamedElement {
 public:
  ~ICIMPropertyDecl() override;
  virtual void Reserved1();
  virtual void Reserved2();
  /// Throws any TQDXException, preferably kQDXStatusNotFound, if there is none of that name;
  /// ICIMClass::GetQualifier returns null instead.
  virtual boost::shared_ptr<ICIMQualifier> GetQualifier(const std::string& name) const = 0;
  virtual void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const = 0;
  virtual void Reserved3();
  virtual void Commit() = 0;
  virtual void Reserved4();
  virtual const std::string& GetName() const = 0;
  virtual void Reserved5();
  virtual TCIMValue::TCIMType GetType() const = 0;
  virtual void Reserved6();
  /// Null or not, of the declared type; that of a reference carries the referenced class.
  virtual const TCIMValue& GetDefaultValue() const = 0;
};

/// The value of a property, of an instance or of a class.
class QDXCORE_EXPORT ICIMProperty {
 public:
  virtual ~ICIMProperty();
  virtual void Reserved1();
  virtual void Reserved2();
  virtual void Reserved3();
  virtual const TCIMValue& GetValue() const = 0;
  virtual void Reserved4();
  virtual void Reserved5();
  virtual void Reserved6();
  virtual void Reserved7();
  virtual void Reserved8();
  virtual void Reserved9();
  virtual void Reserved10();
  virtual void Reserved11();
  virtual boost::shared_ptr<const ICIMPropertyDecl> GetDecl() const = 0;
};

/// The declaration of a parameter.
class QDXCORE_EXPORT ICIMParameterDecl : public ICIMNamedElement {
 public:
  ~ICIMParameterDecl() override;
  virtual void Reserved1();
  virtual void Reserved2();
  virtual void Reserved3();
  virtual void Reserved4();
  virtual void Reserved5();
  virtual void Commit() = 0;
  virtual const std::string& GetName() const = 0;
  virtual void Reserved6();
  virtual TCIMValue::TCIMType GetType() const = 0;
  virtual void Reserved7();
  virtual void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const = 0;
};

/// The declaration of a method; part of its class from its creation on.
class QDXCORE_EXPORT ICIMMethodDecl : public ICIMNamedElement {
 public:
  ~ICIMMethodDecl() override;
  virtual void Reserved1();
  virtual void Reserved2();
  virtual void Reserved3();
  virtual void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const = 0;
  virtual void Reserved4();
  virtual void Reserved5();
  virtual const std::string& GetName() const = 0;
  virtual void Reserved6();
  virtual TCIMValue::TCIMType GetReturnType() const = 0;
  /// Not committed yet.
  virtual boost::shared_ptr<ICIMParameterDecl> CreateParameterDecl(const std::string& name,
                                                                   TCIMValue::TCIMType type) = 0;
  virtual void Reserved7();
  virtual void Reserved8();
  virtual void EnumerateParameterDecls(
      const TEnumerationCallback<ICIMParameterDecl>& callback) const = 0;
};

/// An instance of a class.
class QDXCORE_EXPORT ICIMInstance : public ICIMElement {
 public:
  ~ICIMInstance() override;
  virtual void Reserved1();
  virtual void Commit(TOptionsMap options) = 0;
  virtual void Reserved2();
  virtual void Reserved3();
  virtual void Reserved4();
  virtual boost::shared_ptr<ICIMClass> GetClass(TOptionsMap options) const = 0;
  virtual void Reserved5();
  virtual void Reserved6();
  /// Throws, preferably kQDXStatusNotFound, or returns null if there is none of that name.
  virtual boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name,
                                                      TOptionsMap options) const = 0;
  virtual void Reserved7();
  virtual void SetPropertyValue(const std::string& name, const TCIMValue& value,
                                TOptionsMap options) = 0;
  virtual void EnumerateProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                   TOptionsMap options) const = 0;
};

/// A class of a namespace.
class QDXCORE_EXPORT ICIMClass : public ICIMElement, public ICIMNamedElement {
 public:
  ~ICIMClass() override;
  virtual void Reserved1();
  virtual void Commit(TOptionsMap options) = 0;
  virtual void Reserved2();
  virtual void Reserved3();
  /// Valid as long as the class object lives.
  virtual const std::string& GetName(TOptionsMap options) const = 0;
  virtual void Reserved4();
  virtual bool IsAssociation(TOptionsMap options) const = 0;
  /// True for a class that has no instances of its own.
  virtual bool IsAbstract(TOptionsMap options) const = 0;
  /// True for a class without superclass.
  virtual bool IsRootClass(TOptionsMap options) const = 0;
  /// Called only if IsRootClass is false.
  virtual boost::shared_ptr<ICIMClass> GetSuperclass(TOptionsMap options) const = 0;
  /// With `deep` all descendants, each once and after its superclass.
  virtual void EnumerateSubclasses(const TEnumerationCallback<ICIMClass>& callback, bool deep,
                                   TOptionsMap options) const = 0;
  virtual void Reserved5();
  virtual void Reserved6();
  virtual void Reserved7();
  virtual void Reserved8();
  virtual void Reserved9();
  virtual void Reserved10();
  virtual void Reserved11();
  /// Null if there is none of that name.
  virtual boost::shared_ptr<ICIMQualifier> GetQualifier(const std::string& name) const = 0;
  virtual void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const = 0;
  /// The type of the property is the type of its default value. Not committed yet.
  virtual boost::shared_ptr<ICIMPropertyDecl> CreatePropertyDecl(const std::string& name,
                                                                 const TCIMValue& defaultValue,
                                                                 TOptionsMap options) = 0;
  virtual void Reserved12();
  /// Throws exactly kQDXStatusNotFound if there is none of that name, since any other status ends a
  /// copy; inherited ones count.
  virtual boost::shared_ptr<const ICIMPropertyDecl> GetPropertyDecl(const std::string& name,
                                                                    TOptionsMap options) const = 0;
  /// Inherited declarations may be among them.
  virtual void EnumeratePropertyDecls(const TEnumerationCallback<ICIMPropertyDecl>& callback,
                                      TOptionsMap options) const = 0;
  virtual void Reserved13();
  virtual void Reserved14();
  /// Sets the value that the class itself has for a property.
  virtual void SetStaticPropertyValue(const std::string& name, const TCIMValue& value,
                                      TOptionsMap options) = 0;
  virtual void EnumerateStaticProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                         TOptionsMap options) const = 0;
  /// Empty, not committed yet.
  virtual boost::shared_ptr<ICIMInstance> CreateInstance(TOptionsMap options) = 0;
  virtual void Reserved15();
  /// The instance that the key bindings of the path name. Returns null or throws if there is none.
  virtual boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path,
                                                      TOptionsMap options) const = 0;
  /// With `deep` the instances of subclasses too.
  virtual void EnumerateInstances(const TEnumerationCallback<ICIMInstance>& callback, bool deep,
                                  TOptionsMap options) const = 0;
  virtual boost::shared_ptr<ICIMMethodDecl> CreateMethodDecl(const std::string& name,
                                                             TCIMValue::TCIMType returnType,
                                                             TOptionsMap options) = 0;
  virtual void Reserved16();
  virtual void Reserved17();
  virtual void EnumerateMethodDecls(const TEnumerationCallback<ICIMMethodDecl>& callback,
                                    TOptionsMap options) const = 0;
};

/// A namespace of a provider.
class QDXCORE_EXPORT ICIMNamespace {
 public:
  virtual ~ICIMNamespace();
  /// The name of the namespace, for example "root/cimv2".
  virtual const std::string& GetName(TOptionsMap options) const;
  virtual void Reserved1();
  virtual void Reserved2();
  /// The superclass is null for a root class. Not committed yet.
  virtual boost::shared_ptr<ICIMClass> CreateClass(const std::string& name,
                                                   boost::shared_ptr<ICIMClass> superclass,
                                                   TOptionsMap options) = 0;
  virtual void Reserved3();
  /// Throws, preferably kQDXStatusNotFound, or returns null if there is none of that name.
  virtual boost::shared_ptr<ICIMClass> GetClass(const std::string& name,
                                                TOptionsMap options) const = 0;
  virtual void Reserved4();
  /// The root classes only; ICIMClass::EnumerateSubclasses leads to the others.
  virtual void EnumerateClasses(const TEnumerationCallback<ICIMClass>& callback,
                                TOptionsMap options) const = 0;
  virtual void Reserved5();
  /// The type of the qualifier is the type of its default value. Not committed yet.
  virtual boost::shared_ptr<ICIMQualifierDecl> CreateQualifierDecl(const std::string& name,
                                                                   const TCIMValue& defaultValue,
                                                                   std::uint32_t scope,
                                                                   std::uint32_t flavor,
                                                                   TOptionsMap options) = 0;
  virtual void Reserved6();
  /// Throws, preferably kQDXStatusNotFound, or returns null if there is none of that name.
  virtual boost::shared_ptr<ICIMQualifierDecl> GetQualifierDecl(const std::string& name,
                                                                TOptionsMap options) const = 0;
  virtual void EnumerateQualifierDecls(const TEnumerationCallback<ICIMQualifierDecl>& callback,
                                       TOptionsMap options) const = 0;
};

/// Visits the name of one namespace; false ends the enumeration.
using TNamespaceNameCallback = boost::function<bool(const std::string&)>;

/// What a provider plug-in registers: it serves namespaces.
class QDXCORE_EXPORT INamespaceProvider {
 public:
  virtual ~INamespaceProvider();
  /// The name under which the registry keeps the provider.
  virtual const std::string& GetName(TOptionsMap options) const = 0;
  /// Throws kQDXStatusNotFound if there is none of that name. The options carry what the provider
  /// needs to know, for example "root" or "file". "classes" (array of strings) names the classes
  /// that the caller looks at: a provider may ignore it, or leave out what these have nothing to do
  /// with, neither as a superclass or subclass, nor as a class that they refer to.
  virtual boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name,
                                                        TOptionsMap options);
  /// The names that GetNamespace takes, with the same options.
  virtual void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap options);
};

/// What a consumer plug-in creates: it takes a namespace and does something with it.
class QDXCORE_EXPORT INamespaceConsumer {
 public:
  virtual ~INamespaceConsumer();
  virtual const std::string& GetName(TOptionsMap options) const;
  /// The options carry what the consumer needs to know. By convention, "file" (string) names the
  /// file to write, "-" standard output, and "more" (boolean) says that another namespace for the
  /// same file follows in the next call; if it is missing or false, this one is the last.
  virtual void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_INTERFACES_H_
