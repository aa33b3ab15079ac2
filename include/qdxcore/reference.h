// SPDX-License-Identifier: Apache-2.0
/// CIM object paths in resolved form (DMTF DSP0004, object paths).
#ifndef QDXCORE_REFERENCE_H_
#define QDXCORE_REFERENCE_H_

#include <qdxcore/config.h>
#include <qdxcore/value.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class ICIMClass;
class ICIMElement;
class ICIMInstance;
class ICIMNamespace;
class TCIMReferenceImpl;

/// Visits one key binding, name and value; returning false ends the enumeration.
using TKeyBindingCallback = boost::function<bool(std::pair<std::string, TCIMValue>)>;

/// Names a class in a namespace or, with key bindings, an instance of the class.
///
/// The class is an object of the namespace. The order of the calls is enforced: the namespace is
/// set before a class is looked up by name, and the class before keys; any other order throws
/// kQDXStatusInvalidOpSequence. An operation that needs a class or a declaration and finds null
/// calls the assertion handler of <qdxcore/status.h>. An operation that fails leaves the reference
/// unchanged, except SetPath. Copies share the namespace, the class and an instance already
/// fetched, and own the rest. Not synchronised: one thread only.
///
///   TCIMReference disk(cimv2, "CIM_DiskDrive.DeviceID=\"sda\",SystemName=\"host\"", {});
///   boost::shared_ptr<ICIMElement> found = disk.GetCIMElement();
///
/// In a path every value is quoted, including numbers; a backslash escapes a double quote or a
/// backslash. The path in a reference-valued key is quoted without escapes:
/// `A_Link.From="A_Disk.Id="7"",To="A_Bus.Id="1""`. The end of the text also closes such a path:
/// `A_Link.From="A_Disk.Id="7"` is accepted. White space is significant.
class QDXCORE_EXPORT TCIMReference {
 public:
  /// An empty path in a namespace, which may be null. Every class lookup gets the options.
  TCIMReference(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);
  /// The same, followed by SetPath(path).
  TCIMReference(boost::shared_ptr<ICIMNamespace> ns, const std::string& path, TOptionsMap options);
  TCIMReference(const TCIMReference& other);
  TCIMReference& operator=(const TCIMReference& other);
  ~TCIMReference();

  /// Allowed at any time; a class and keys that are set are not checked against the namespace.
  void SetNamespace(boost::shared_ptr<ICIMNamespace> ns);
  boost::shared_ptr<ICIMNamespace> GetNamespace() const;

  /// Drops everything except the options; call SetNamespace next.
  void Clear();

  /// Parses a path; the class comes from the namespace, the type of each key from the class.
  /// Needs a namespace, no class and no keys. Logs invalid text, or references nested more than
  /// 1000 deep, and throws kQDXStatusInvalidReference. Exceptions of the namespace and the values
  /// propagate. The class and the keys that were read before the error stay set.
  void SetPath(const std::string& path);
  /// Looks up the class in the namespace, and stores the result, even null.
  void SetClassName(const std::string& name);
  /// Allowed only without keys. `cimClass` may be null.
  void SetClass(boost::shared_ptr<ICIMClass> cimClass);
  /// Throws kQDXStatusInvalidReference if there is no class.
  boost::shared_ptr<ICIMClass> GetClass() const;
  std::string GetClassName() const;

  /// Binds a property that the class declares, whether or not it is a key. A name that is already
  /// bound keeps its first value. Logs a value of another type than declared, and throws
  /// kQDXStatusTypeMismatch.
  void AddKeyValue(const std::string& name, const TCIMValue& value);
  /// Enumerates the key bindings in ascending bytewise order of the names. The callback must not
  /// clear or assign the reference.
  void EnumerateKeyBindings(const TKeyBindingCallback& callback) const;

  /// Returns the path in the form that SetPath parses, with the keys in ascending bytewise order.
  /// Reals have six digits, so SetPath may read another number. SetPath cannot read back a
  /// reference-valued key that names a class, because the name of a class extends to the end of the
  /// text. A null key value throws kQDXStatusValueIsNULL.
  std::string GetPath() const;

  /// Returns the class if there are no keys, otherwise the instance, which is fetched once and kept
  /// until Clear. Throws kQDXStatusNotFound if the class has no such instance.
  boost::shared_ptr<ICIMElement> GetCIMElement() const;

  /// Returns whether both have the same class object and equal key bindings. Namespaces and options
  /// are not compared.
  bool operator==(const TCIMReference& other) const;
  /// Orders references of one class by their key bindings; of different classes arbitrarily, but
  /// consistently within the process.
  bool operator<(const TCIMReference& other) const;
  bool operator!=(const TCIMReference& other) const { return !(*this == other); }
  bool operator>(const TCIMReference& other) const { return other < *this; }
  bool operator<=(const TCIMReference& other) const { return !(other < *this); }
  bool operator>=(const TCIMReference& other) const { return !(*this < other); }

  /// Returns the body, which this object owns; valid until this object is assigned or destroyed.
  TCIMReferenceImpl* GetBody() const { return fBody.get(); }

 private:
  std::unique_ptr<TCIMReferenceImpl> fBody;
};

/// The body of a TCIMReference: the same operations, and the parser.
class QDXCORE_EXPORT TCIMReferenceImpl {
 public:
  TCIMReferenceImpl(TCIMReference& owner, boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);
  TCIMReferenceImpl(TCIMReference& owner, const TCIMReferenceImpl& other);
  TCIMReferenceImpl(const TCIMReferenceImpl&) = delete;
  TCIMReferenceImpl& operator=(const TCIMReferenceImpl&) = delete;

  void SetNamespace(boost::shared_ptr<ICIMNamespace> ns);
  boost::shared_ptr<ICIMNamespace> GetNamespace() const { return fNamespace; }
  void Clear();
  void SetPath(const std::string& path);
  void SetClassName(const std::string& name);
  void SetClass(boost::shared_ptr<ICIMClass> cimClass);
  boost::shared_ptr<ICIMClass> GetClass() const;
  std::string GetClassName() const;
  void AddKeyValue(const std::string& name, const TCIMValue& value);
  void AddKeyValue(const std::string& name, TCIMValue&& value);
  void EnumerateKeyBindings(const TKeyBindingCallback& callback) const;
  /// The key bindings themselves, without a copy of each; valid until this body changes.
  const std::map<std::string, TCIMValue>& GetKeyBindings() const { return fKeyBindings; }
  const TOptionsMap& GetOptions() const { return fOptions; }
  /// Like AddKeyValue. REQUIRES: the class declares a property with this name and type.
  void BindKey(const std::string& name, TCIMValue&& value) {
    fKeyBindings.emplace_hint(fKeyBindings.end(), name, std::move(value));
  }
  std::string GetPath() const;
  boost::shared_ptr<ICIMElement> GetCIMElement();
  bool operator==(const TCIMReference& other) const;
  bool operator<(const TCIMReference& other) const;

  /// Parses a path into `target`, with the namespace and options of this body.
  ///
  /// `position` is 0 for the whole text; any other value is the index of the opening double quote
  /// of a nested path. On return it is at or beyond the end of the text, or the index of the nested
  /// path's closing quote.
  void ParsePath(TCIMReferenceImpl* target, const std::string& path, std::uint64_t& position);
  /// Takes over the name, too, unless it throws.
  void AddKeyValue(std::string&& name, TCIMValue&& value);

 private:
  void RequireDeclaredType(const std::string& name, TCIMValue::TCIMType type) const;

  TCIMReference& fOwner;
  boost::shared_ptr<ICIMNamespace> fNamespace;
  TOptionsMap fOptions;
  boost::shared_ptr<ICIMClass> fClass;
  std::map<std::string, TCIMValue> fKeyBindings;
  boost::shared_ptr<ICIMInstance> fInstance;  // fetched on first use
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_REFERENCE_H_
