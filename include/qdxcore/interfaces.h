// SPDX-License-Identifier: Apache-2.0
/// The interfaces to CIM data (DMTF DSP0004, the CIM meta schema). Providers implement them; the
/// library, consumers and programs call them.
///
/// Declaration order binds plug-ins that were built separately: a new virtual function is only
/// added after the last one of its class. The ReservedN functions reserve places in that order;
/// they throw kQDXStatusNotImplemented, and must not be overridden or called. Operations that the
/// library calls are pure. The others have a default that throws kQDXStatusNotImplemented, so that
/// plug-ins need not implement them.
///
/// Objects are shared: every operation that returns an object returns a shared reference. Never
/// delete an object, and keep no plain pointer to one. Each query documents whether it returns null
/// or throws if the element does not exist; the other operations never return null. Dereferencing a
/// null calls the assertion handler of <qdxcore/status.h>.
///
/// Names are compared without regard to case (DMTF DSP0004, naming). The library passes empty
/// options. Failures are thrown as TQDXException.
///
/// An enumeration calls back once for each element before it returns, and stops when the callback
/// returns false. A callback may call the same provider again, so hold no lock during one. It must
/// not give up the last reference to the object that calls it.
///
/// An object that a Create operation returns is completed by further calls, and becomes part of its
/// namespace with Commit(). It can be queried before that, including what a new class inherits. A
/// method declaration is part of its class immediately, and has no Commit().
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

/// Visits one element of an enumeration; returning false ends the enumeration.
template <typename T>
using TEnumerationCallback = boost::function<bool(boost::shared_ptr<T>)>;

/// A callback that appends every element to a vector, which must outlive the callback.
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

/// An element that an object path can name: a class or an instance.
class QDXCORE_EXPORT ICIMElement {
 public:
  virtual ~ICIMElement();
};

/// An element that can have qualifiers: a class, or the declaration of a property, method or
/// parameter.
class QDXCORE_EXPORT ICIMNamedElement {
 public:
  virtual ~ICIMNamedElement();
  virtual void ReservedElement1();
  /// Returns the new qualifier, not committed.
  virtual boost::shared_ptr<ICIMQualifier> AddQualifier(boost::shared_ptr<ICIMQualifierDecl> decl,
                                                        const TCIMValue& value) = 0;
};

/// The declaration of a qualifier (DMTF DSP0004, qualifiers). The provider defines the bits of
/// scope and flavor; the library passes them on unchanged.
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
  /// The type of this value is the type of the qualifier.
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
  /// Throws any TQDXException, preferably kQDXStatusNotFound, if the property has no such
  /// qualifier; ICIMClass::GetQualifier returns null instead.
  virtual boost::shared_ptr<ICIMQualifier> GetQualifier(const std::string& name) const = 0;
  virtual void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const = 0;
  virtual void Reserved3();
  virtual void Commit() = 0;
  virtual void Reserved4();
  virtual const std::string& GetName() const = 0;
  virtual void Reserved5();
  virtual TCIMValue::TCIMType GetType() const = 0;
  virtual void Reserved6();
  /// Returns a value of the declared type, null or not; that of a reference has the referenced
  /// class.
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

/// The declaration of a method; part of its class since its creation.
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
  /// Returns the new declaration, not committed.
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
  /// Throws, preferably kQDXStatusNotFound, or returns null if the instance has no such property.
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
  /// The reference is valid during the lifetime of the class object.
  virtual const std::string& GetName(TOptionsMap options) const = 0;
  virtual void Reserved4();
  virtual bool IsAssociation(TOptionsMap options) const = 0;
  /// Returns whether the class cannot have instances of its own.
  virtual bool IsAbstract(TOptionsMap options) const = 0;
  /// Returns whether the class has no superclass.
  virtual bool IsRootClass(TOptionsMap options) const = 0;
  /// REQUIRES: IsRootClass is false.
  virtual boost::shared_ptr<ICIMClass> GetSuperclass(TOptionsMap options) const = 0;
  /// Enumerates the direct subclasses; with `deep` all descendants, each once and after its
  /// superclass.
  virtual void EnumerateSubclasses(const TEnumerationCallback<ICIMClass>& callback, bool deep,
                                   TOptionsMap options) const = 0;
  virtual void Reserved5();
  virtual void Reserved6();
  virtual void Reserved7();
  virtual void Reserved8();
  virtual void Reserved9();
  virtual void Reserved10();
  virtual void Reserved11();
  /// Returns null if the class has no such qualifier.
  virtual boost::shared_ptr<ICIMQualifier> GetQualifier(const std::string& name) const = 0;
  virtual void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const = 0;
  /// Returns the new declaration, not committed. The type of the property is the type of
  /// `defaultValue`.
  virtual boost::shared_ptr<ICIMPropertyDecl> CreatePropertyDecl(const std::string& name,
                                                                 const TCIMValue& defaultValue,
                                                                 TOptionsMap options) = 0;
  virtual void Reserved12();
  /// Returns a declaration of the class or an inherited one. Throws exactly kQDXStatusNotFound if
  /// there is no such property: any other status aborts a copy.
  virtual boost::shared_ptr<const ICIMPropertyDecl> GetPropertyDecl(const std::string& name,
                                                                    TOptionsMap options) const = 0;
  /// May include inherited declarations.
  virtual void EnumeratePropertyDecls(const TEnumerationCallback<ICIMPropertyDecl>& callback,
                                      TOptionsMap options) const = 0;
  virtual void Reserved13();
  virtual void Reserved14();
  /// Sets the class's own value of a property.
  virtual void SetStaticPropertyValue(const std::string& name, const TCIMValue& value,
                                      TOptionsMap options) = 0;
  virtual void EnumerateStaticProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                         TOptionsMap options) const = 0;
  /// Returns a new instance without values, not committed.
  virtual boost::shared_ptr<ICIMInstance> CreateInstance(TOptionsMap options) = 0;
  virtual void Reserved15();
  /// Returns the instance with the key bindings of `path`. Returns null or throws if there is none.
  virtual boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path,
                                                      TOptionsMap options) const = 0;
  /// Enumerates the instances of the class; with `deep` also those of its subclasses.
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
  /// Returns the name of the namespace, for example "root/cimv2".
  virtual const std::string& GetName(TOptionsMap options) const;
  virtual void Reserved1();
  virtual void Reserved2();
  /// Returns the new class, not committed. `superclass` is null for a root class.
  virtual boost::shared_ptr<ICIMClass> CreateClass(const std::string& name,
                                                   boost::shared_ptr<ICIMClass> superclass,
                                                   TOptionsMap options) = 0;
  virtual void Reserved3();
  /// Throws, preferably kQDXStatusNotFound, or returns null if the namespace has no such class.
  virtual boost::shared_ptr<ICIMClass> GetClass(const std::string& name,
                                                TOptionsMap options) const = 0;
  virtual void Reserved4();
  /// Enumerates the root classes only; ICIMClass::EnumerateSubclasses gives their descendants.
  virtual void EnumerateClasses(const TEnumerationCallback<ICIMClass>& callback,
                                TOptionsMap options) const = 0;
  virtual void Reserved5();
  /// Returns the new declaration, not committed. The type of the qualifier is the type of
  /// `defaultValue`.
  virtual boost::shared_ptr<ICIMQualifierDecl> CreateQualifierDecl(const std::string& name,
                                                                   const TCIMValue& defaultValue,
                                                                   std::uint32_t scope,
                                                                   std::uint32_t flavor,
                                                                   TOptionsMap options) = 0;
  virtual void Reserved6();
  /// Throws, preferably kQDXStatusNotFound, or returns null if the namespace has no such
  /// declaration.
  virtual boost::shared_ptr<ICIMQualifierDecl> GetQualifierDecl(const std::string& name,
                                                                TOptionsMap options) const = 0;
  virtual void EnumerateQualifierDecls(const TEnumerationCallback<ICIMQualifierDecl>& callback,
                                       TOptionsMap options) const = 0;
};

/// Visits the name of one namespace; returning false ends the enumeration.
using TNamespaceNameCallback = boost::function<bool(const std::string&)>;

/// A source of namespaces. A provider plug-in registers one.
class QDXCORE_EXPORT INamespaceProvider {
 public:
  virtual ~INamespaceProvider();
  /// Returns the name under which the registry holds the provider.
  virtual const std::string& GetName(TOptionsMap options) const = 0;
  /// Throws kQDXStatusNotFound if the provider has no such namespace. The options are the
  /// provider's parameters, for example "root" or "file". "classes" (array of strings) names the
  /// classes that the caller reads. A provider may ignore it, or leave out all classes except
  /// those, their superclasses and subclasses, and the classes to which they refer.
  virtual boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name,
                                                        TOptionsMap options);
  /// Enumerates the names that GetNamespace accepts with the same options.
  virtual void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap options);
};

/// Processes namespaces, for example writes them to a file. A consumer plug-in creates one.
class QDXCORE_EXPORT INamespaceConsumer {
 public:
  virtual ~INamespaceConsumer();
  virtual const std::string& GetName(TOptionsMap options) const;
  /// Processes a namespace. The options are the consumer's parameters. By convention, "file"
  /// (string) names the file to write, "-" for standard output; "more" (boolean) is true if the
  /// next call passes another namespace for the same file, and false or missing for the last one.
  virtual void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_INTERFACES_H_
