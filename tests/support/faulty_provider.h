// SPDX-License-Identifier: Apache-2.0
/// A namespace that stands in front of another and fails where a test wants it to.
///
///   const auto faults = boost::make_shared<TFaults>();
///   const auto ns = MakeFaultyNamespace(real, faults);
///   faults->Throw("ICIMClass::GetPropertyDecl", kQDXStatusAccessDenied, 2);  // the second call
///   faults->AnswerNull("ICIMNamespace::GetClass", TFaults::kEveryCall);
///
/// Namespaces, classes, instances and properties are wrapped; declarations and qualifiers are the
/// real ones, and so are the classes that values name. A wrapped class that is stored in the real
/// namespace, within a reference value, would own that namespace for ever: give a faulty target
/// nothing with references.
#ifndef TESTS_SUPPORT_FAULTY_PROVIDER_H_
#define TESTS_SUPPORT_FAULTY_PROVIDER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/weak_ptr.hpp>

/// What fails, and a count of the calls. Operations are named "ICIMClass::GetPropertyDecl".
class TFaults {
 public:
  static constexpr int kEveryCall = 0;

  /// `call` counts from now on: 1 is the next one. What has no null answers nothing, or false.
  void AnswerNull(const std::string& operation, int call = 1) { Add(operation, call, {}); }
  void Throw(const std::string& operation, NVORNQDX20::EQDXStatusCode status, int call = 1) {
    Add(operation, call, status);
  }
  int Calls(const std::string& operation) { return fCalls[operation]; }

  /// Counts the call; throws, or says whether it answers null.
  bool Strikes(const std::string& operation) {
    const int call = ++fCalls[operation];
    auto fault = fFaults.find({operation, call});
    if (fault == fFaults.end()) fault = fFaults.find({operation, kEveryCall});
    if (fault == fFaults.end()) return false;
    if (fault->second) throw NVORNQDX20::TQDXException(*fault->second);
    return true;
  }

 private:
  using TFault = std::optional<NVORNQDX20::EQDXStatusCode>;  // none: answer null

  void Add(const std::string& operation, int call, TFault fault) {
    fFaults[{operation, call == kEveryCall ? call : fCalls[operation] + call}] = fault;
  }

  std::map<std::string, int> fCalls;
  std::map<std::pair<std::string, int>, TFault> fFaults;
};

namespace faulty {

using namespace NVORNQDX20;
template <typename T>
using TPtr = boost::shared_ptr<T>;
// As operations take and answer them.
template <typename T>
using TVisit = const TEnumerationCallback<T>&;
using TName = const std::string&;
using TOptions = TOptionsMap;
using TPath = const TCIMReference&;
using TValue = const TCIMValue&;

/// What all wrappers of one namespace share. Each class has one wrapper at a time, since
/// references compare classes by identity.
struct TContext {
  TPtr<TFaults> fFaults;
  std::map<ICIMClass*, boost::weak_ptr<ICIMClass>> fClasses;
};

inline TPtr<ICIMClass> Wrap(const TPtr<TContext>& context, const TPtr<ICIMClass>& real);
inline TPtr<ICIMInstance> Wrap(const TPtr<TContext>& context, const TPtr<ICIMInstance>& real);
inline TPtr<ICIMProperty> Wrap(const TPtr<TContext>& context, const TPtr<ICIMProperty>& real);
template <typename T>
TPtr<T> Wrap(const TPtr<TContext>&, const TPtr<T>& real) {
  return real;  // of what has no wrapper
}

template <typename TInterface>
struct TWrapper : public TInterface {
  TWrapper(const TPtr<TContext>& context, const TPtr<TInterface>& real)
      : fContext(context), fReal(real) {}

  const TPtr<TContext> fContext;
  const TPtr<TInterface> fReal;

  /// The callback that wraps each element for the caller's.
  template <typename T>
  TEnumerationCallback<T> Wrap(TVisit<T> visit) const {
    return [this, &visit](const TPtr<T>& real) { return visit(faulty::Wrap(fContext, real)); };
  }
  /// What `forward` answers, wrapped if there is a wrapper for it, unless this call is to fail.
  template <typename TResult, typename TForward>
  TResult Call(const std::string& operation, TForward&& forward) const {
    const bool isNull = fContext->fFaults->Strikes(operation);
    if constexpr (std::is_reference_v<TResult>) {
      static const std::decay_t<TResult> kNull;
      return isNull ? kNull : forward();
    } else if constexpr (std::is_class_v<TResult>) {
      return isNull ? nullptr : faulty::Wrap(fContext, forward());
    } else {
      return isNull ? TResult() : forward();
    }
  }
};

/// Overrides an operation of kInterface (with options o, a callback v) with one that fails when it
/// is to, or asks the real one.
#define FAULTY(TResult, operation, parameters, arguments)                          \
  TResult operation parameters override {                                          \
    return Call<TResult>(std::string(kInterface) + "::" #operation,                \
                         [&]() -> TResult { return fReal->operation arguments; }); \
  }

struct TProperty final : TWrapper<ICIMProperty> {
  static constexpr const char* kInterface = "ICIMProperty";
  using TWrapper::TWrapper;
  FAULTY(TValue, GetValue, () const, ())
  FAULTY(TPtr<const ICIMPropertyDecl>, GetDecl, () const, ())
};

struct TInstance final : TWrapper<ICIMInstance> {
  static constexpr const char* kInterface = "ICIMInstance";
  using TWrapper::TWrapper;
  FAULTY(void, Commit, (TOptions o), (o))
  FAULTY(TPtr<ICIMClass>, GetClass, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMProperty>, GetProperty, (TName name, TOptions o) const, (name, o))
  FAULTY(void, SetPropertyValue, (TName name, TValue value, TOptions o), (name, value, o))
  FAULTY(void, EnumerateProperties, (TVisit<ICIMProperty> v, TOptions o) const, (Wrap(v), o))
};

struct TClass final : TWrapper<ICIMClass> {
  static constexpr const char* kInterface = "ICIMClass";
  using TWrapper::TWrapper;
  ~TClass() override { fContext->fClasses.erase(fReal.get()); }
  FAULTY(TPtr<ICIMQualifier>, AddQualifier, (TPtr<ICIMQualifierDecl> decl, TValue value),
         (decl, value))
  FAULTY(void, Commit, (TOptions o), (o))
  FAULTY(TName, GetName, (TOptions o) const, (o))
  FAULTY(bool, IsAssociation, (TOptions o) const, (o))
  FAULTY(bool, IsAbstract, (TOptions o) const, (o))
  FAULTY(bool, IsRootClass, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMClass>, GetSuperclass, (TOptions o) const, (o))
  FAULTY(void, EnumerateSubclasses, (TVisit<ICIMClass> v, bool deep, TOptions o) const,
         (Wrap(v), deep, o))
  FAULTY(TPtr<ICIMQualifier>, GetQualifier, (TName name) const, (name))
  FAULTY(void, EnumerateQualifiers, (TVisit<ICIMQualifier> v) const, (v))
  FAULTY(TPtr<ICIMPropertyDecl>, CreatePropertyDecl, (TName name, TValue value, TOptions o),
         (name, value, o))
  FAULTY(TPtr<const ICIMPropertyDecl>, GetPropertyDecl, (TName name, TOptions o) const, (name, o))
  FAULTY(void, EnumeratePropertyDecls, (TVisit<ICIMPropertyDecl> v, TOptions o) const, (v, o))
  FAULTY(void, SetStaticPropertyValue, (TName name, TValue value, TOptions o), (name, value, o))
  FAULTY(void, EnumerateStaticProperties, (TVisit<ICIMProperty> v, TOptions o) const, (Wrap(v), o))
  FAULTY(TPtr<ICIMInstance>, CreateInstance, (TOptions o), (o))
  FAULTY(TPtr<ICIMInstance>, GetInstance, (TPath path, TOptions o) const, (path, o))
  FAULTY(void, EnumerateInstances, (TVisit<ICIMInstance> v, bool deep, TOptions o) const,
         (Wrap(v), deep, o))
  FAULTY(TPtr<ICIMMethodDecl>, CreateMethodDecl, (TName name, TCIMValue::TCIMType type, TOptions o),
         (name, type, o))
  FAULTY(void, EnumerateMethodDecls, (TVisit<ICIMMethodDecl> v, TOptions o) const, (v, o))
};

struct TNamespace final : TWrapper<ICIMNamespace> {
  static constexpr const char* kInterface = "ICIMNamespace";
  using TWrapper::TWrapper;
  FAULTY(TName, GetName, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMClass>, CreateClass, (TName name, TPtr<ICIMClass> superclass, TOptions o),
         (name, RealOf(superclass), o))
  FAULTY(TPtr<ICIMClass>, GetClass, (TName name, TOptions o) const, (name, o))
  FAULTY(void, EnumerateClasses, (TVisit<ICIMClass> v, TOptions o) const, (Wrap(v), o))
  FAULTY(TPtr<ICIMQualifierDecl>, CreateQualifierDecl,
         (TName name, TValue value, std::uint32_t scope, std::uint32_t flavor, TOptions o),
         (name, value, scope, flavor, o))
  FAULTY(TPtr<ICIMQualifierDecl>, GetQualifierDecl, (TName name, TOptions o) const, (name, o))
  FAULTY(void, EnumerateQualifierDecls, (TVisit<ICIMQualifierDecl> v, TOptions o) const, (v, o))
  static TPtr<ICIMClass> RealOf(const TPtr<ICIMClass>& cimClass) {
    const auto* const wrapper = dynamic_cast<const TClass*>(cimClass.get());
    return wrapper == nullptr ? cimClass : wrapper->fReal;
  }
};
#undef FAULTY

inline TPtr<ICIMClass> Wrap(const TPtr<TContext>& context, const TPtr<ICIMClass>& real) {
  if (!real) return nullptr;
  boost::weak_ptr<ICIMClass>& known = context->fClasses[real.get()];
  TPtr<ICIMClass> wrapper = known.lock();
  if (!wrapper) known = wrapper = boost::make_shared<TClass>(context, real);
  return wrapper;
}

inline TPtr<ICIMInstance> Wrap(const TPtr<TContext>& context, const TPtr<ICIMInstance>& real) {
  return real ? boost::make_shared<TInstance>(context, real) : nullptr;
}

inline TPtr<ICIMProperty> Wrap(const TPtr<TContext>& context, const TPtr<ICIMProperty>& real) {
  return real ? boost::make_shared<TProperty>(context, real) : nullptr;
}

}  // namespace faulty

inline boost::shared_ptr<NVORNQDX20::ICIMNamespace> MakeFaultyNamespace(
    const boost::shared_ptr<NVORNQDX20::ICIMNamespace>& real,
    const boost::shared_ptr<TFaults>& faults) {
  const auto context = boost::make_shared<faulty::TContext>(faulty::TContext{faults, {}});
  return boost::make_shared<faulty::TNamespace>(context, real);
}

#endif  // TESTS_SUPPORT_FAULTY_PROVIDER_H_
