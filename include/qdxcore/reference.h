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

/// Visits one key binding, name and value; false ends the enumeration.
using TKeyBindingCallback = boost::function<bool(std::pair<std::string, TCIMValue>)>;

/// Names a class, or with key bindings one instance of it, in a namespace.
///
/// The class is a live object of the namespace. The order of use is enforced: a namespace before a
/// class is looked up by name, the class before keys; anything else throws
/// kQDXStatusInvalidOpSequence. Where a class or a declaration is needed and is null, the assertion
/// handler of <qdxcore/status.h> decides. A failing operation leaves the reference as it was, but
/// for SetPath. Copies share namespace, class and the instance once fetched, and own all else. Not
/// synchronised: one thread only.
///
///   TCIMReference disk(cimv2, "CIM_DiskDrive.DeviceID=\"sda\",SystemName=\"host\"", {});
///   boost::shared_ptr<ICIMElement> found = disk.GetCIMElement();
///
/// In the text every value is quoted, numbers too; a backslash quotes a double quote or a
/// backslash. The path of a reference-valued key is put between its quotes as it is:
/// `A_Link.From="A_Disk.Id="7"",To="A_Bus.Id="1""`. The end of the text closes such a path too:
/// `A_Link.From="A_Disk.Id="7"` is accepted. White space counts as it stands.
class QDXCORE_EXPORT TCIMReference {
 public:
  /// An empty path bound to a namespace, which may be null. The options go to every class lookup.
  TCIMReference(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);
  /// The same, then SetPath(path).
  TCIMReference(boost::shared_ptr<ICIMNamespace> ns, const std::string& path, TOptionsMap options);
  TCIMReference(const TCIMReference& other);
  TCIMReference& operator=(const TCIMReference& other);
  ~TCIMReference();

  /// Not checked against what is set already.
  void SetNamespace(boost::shared_ptr<ICIMNamespace> ns);
  boost::shared_ptr<ICIMNamespace> GetNamespace() const;

  /// Drops all but the options; SetNamespace comes next.
  void Clear();

  /// Reads a path; the class comes from the namespace, the type of each key from the class. Needs a
  /// namespace, and neither class nor keys.
  /// Bad text is logged and throws kQDXStatusInvalidReference, and so do references nested more
  /// than 1000 deep. What the namespace and the values throw passes out. Class and keys that were
  /// read before the fault stay.
  void SetPath(const std::string& path);
  /// Asks the namespace for the class; what it returns is stored, null included.
  void SetClassName(const std::string& name);
  /// Only while there are no keys; null is stored as given.
  void SetClass(boost::shared_ptr<ICIMClass> cimClass);
  /// Throws kQDXStatusInvalidReference if there is none.
  boost::shared_ptr<ICIMClass> GetClass() const;
  std::string GetClassName() const;

  /// Binds a property that the class declares; whether it is a key is not asked. A name that is
  /// bound already keeps its first value. A value of another type than declared is logged and
  /// throws kQDXStatusTypeMismatch.
  void AddKeyValue(const std::string& name, const TCIMValue& value);
  /// In ascending bytewise order of the names. The callback must not clear or assign the reference.
  void EnumerateKeyBindings(const TKeyBindingCallback& callback) const;

  /// The path as SetPath reads it, keys in ascending bytewise order. Reals have six digits, so they
  /// may come back as another; a reference-valued key that names a class does not come back, since
  /// the name of a class runs to the end of the text. A null key value throws
  /// kQDXStatusValueIsNULL.
  std::string GetPath() const;

  /// The class when there are no keys; else the instance, fetched once and kept until Clear.
  /// Throws kQDXStatusNotFound if the class has no such instance.
  boost::shared_ptr<ICIMElement> GetCIMElement() const;

  /// The very same class object and equal key bindings. Namespaces and options are not compared.
  bool operator==(const TCIMReference& other) const;
  /// Within one class by the key bindings; else an arbitrary order, stable within the process.
  bool operator<(const TCIMReference& other) const;
  bool operator!=(const TCIMReference& other) const { return !(*this == other); }
  bool operator>(const TCIMReference& other) const { return other < *this; }
  bool operator<=(const TCIMReference& other) const { return !(other < *this); }
  bool operator>=(const TCIMReference& other) const { return !(*this < other); }

  /// Owned by this object, and valid until it is assigned or destroyed.
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
  std::string GetPath() const;
  boost::shared_ptr<ICIMElement> GetCIMElement();
  bool operator==(const TCIMReference& other) const;
  bool operator<(const TCIMReference& other) const;

  /// Reads a path into `target`, with the namespace and options of this body.
  ///
  /// `position` 0 means a path of its own; any other value means a nested path whose opening double
  /// quote stands there. It is left at the end, or on the nested path's closing quote.
  void ParsePath(TCIMReferenceImpl* target, const std::string& path, std::uint64_t& position);

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
