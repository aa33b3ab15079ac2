// SPDX-License-Identifier: Apache-2.0
/// A namespace that stands in front of another and fails where a test wants it to.
///
///   const auto faults = boost::make_shared<TFaults>();
///   const auto ns = MakeFaultyNamespace(real, faults);
///   faults->Throw("ICIMClass::GetPropertyDecl", kQDXStatusAccessDenied, 2);  // the second call
///   faults->AnswerNull("ICIMNamespace::GetClass");
///
/// All elements are wrapped but the classes that values name. A wrapped class that is stored in the
/// real namespace, within a reference value, would own that namespace for ever: give a faulty
/// target nothing with references.
#ifndef TESTS_SUPPORT_FAULTY_PROVIDER_H_
#define TESTS_SUPPORT_FAULTY_PROVIDER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <boost/core/demangle.hpp>
#include <boost/function.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <boost/weak_ptr.hpp>

/// What a fault throws, so that a test can tell it from what others make of it.
struct TInjected : NVORNQDX20::TQDXException {
  using TQDXException::TQDXException;
};

/// What fails. Operations are named "ICIMClass::GetPropertyDecl".
class TFaults {
 public:
  /// `call` counts from now on: 1 is the next one. Only what gives an element can answer null.
  void AnswerNull(const std::string& operation, int call = 1) { Add(operation, call, {}); }
  void Throw(const std::string& operation, NVORNQDX20::EQDXStatusCode status, int call = 1) {
    Add(operation, call, status);
  }
  /// Is told of each call first, for example "ICIMClass::GetPropertyDecl(Id)".
  void Watch(boost::function<void(const std::string&)> watch) { fWatch = std::move(watch); }

  /// Counts the call; throws, or says whether it answers null.
  bool Strikes(const std::string& operation, const std::string& arguments) {
    if (fWatch) fWatch(operation + arguments);
    const auto fault = fFaults.find({operation, ++fCalls[operation]});
    if (fault == fFaults.end()) return false;
    if (fault->second) throw TInjected(*fault->second);
    return true;
  }

 private:
  using TStatus = std::optional<NVORNQDX20::EQDXStatusCode>;  // none: answer null

  void Add(const std::string& operation, int call, TStatus fault) {
    fFaults[{operation, fCalls[operation] + call}] = fault;
  }

  boost::function<void(const std::string&)> fWatch;
  std::map<std::string, int> fCalls;
  std::map<std::pair<std::string, int>, TStatus> fFaults;
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
using TType = TCIMValue::TCIMType;
using TValue = const TCIMValue&;

/// What all wrappers of one namespace share. Each class has one wrapper at a time, since
/// references compare classes by identity.
struct TContext {
  TPtr<TFaults> fFaults;
  std::map<ICIMClass*, boost::weak_ptr<ICIMClass>> fClasses;
};

/// "(a,b)" of all arguments but elements and callbacks; of options, the value of the first.
template <typename... TArguments>
std::string TextOf(const TArguments&... arguments) {
  std::string text;
  const auto add = [&](const std::string& one) { text += (text.empty() ? "" : ",") + one; };
  [[maybe_unused]] const auto show = [&](const auto& argument) {
    using T = std::decay_t<decltype(argument)>;
    if constexpr (std::is_same_v<T, std::string>) add(argument);
    if constexpr (std::is_same_v<T, TType>) add(argument.ToString());
    if constexpr (std::is_same_v<T, TCIMValue>) add(argument.IsNull() ? "" : argument.ToString(10));
    if constexpr (std::is_arithmetic_v<T>) add(std::to_string(argument));
    if constexpr (std::is_same_v<T, TOptions>) {
      if (!argument.empty()) add(argument.begin()->second.ToString(10));
    }
  };
  (show(arguments), ...);
  return "(" + text + ")";
}

/// The wrapper of each interface.
template <typename TInterface>
struct TFaulty;

template <typename T>
TPtr<T> Wrap(const TPtr<TContext>& context, const TPtr<T>& real);

template <typename T>
constexpr bool kIsElement = false;
template <typename T>
constexpr bool kIsElement<TPtr<T>> = true;

template <typename TInterface>
struct TWrapper : public TInterface {
  TPtr<TContext> fContext;
  TPtr<TInterface> fReal;

  template <typename T>
  static TPtr<T> RealOf(const TPtr<T>& object) {
    const auto* const wrapper = dynamic_cast<const TWrapper<T>*>(object.get());
    return wrapper == nullptr ? object : wrapper->fReal;
  }
  /// The callback that wraps each element for the caller's.
  template <typename T>
  TEnumerationCallback<T> Wrap(TVisit<T> visit) const {
    return [this, &visit](const TPtr<T>& real) { return visit(faulty::Wrap(fContext, real)); };
  }
  /// What `forward` answers, wrapped if it is an element, unless this call is to fail.
  template <typename TResult, typename TForward>
  TResult Call(const std::string& operation, const std::string& arguments,
               TForward&& forward) const {
    const std::string name = boost::core::demangle(typeid(TInterface).name());
    const bool isNull =
        fContext->fFaults->Strikes(name.substr(name.find("::") + 2) + operation, arguments);
    if constexpr (kIsElement<TResult>) {
      return isNull ? nullptr : faulty::Wrap(fContext, forward());
    } else {
      return forward();
    }
  }
};

/// Overrides an operation (with options o, a callback v) with one that fails when it is to, or asks
/// the real one.
#define FAULTY(TResult, operation, parameters, arguments)                                     \
  TResult operation parameters override {                                                     \
    return this->template Call<TResult>("::" #operation, TextOf arguments, [&]() -> TResult { \
      return this->fReal->operation arguments;                                                \
    });                                                                                       \
  }

/// Of an element that carries qualifiers.
template <typename TInterface>
struct TElementWrapper : public TWrapper<TInterface> {
  FAULTY(TPtr<ICIMQualifier>, AddQualifier, (TPtr<ICIMQualifierDecl> decl, TValue value),
         (this->RealOf(decl), value))
  FAULTY(void, EnumerateQualifiers, (TVisit<ICIMQualifier> v) const, (this->Wrap(v)))
};

template <>
struct TFaulty<ICIMQualifierDecl> final : TWrapper<ICIMQualifierDecl> {
  FAULTY(void, Commit, (), ())
  FAULTY(TName, GetName, () const, ())
  FAULTY(TValue, GetDefaultValue, () const, ())
  FAULTY(std::uint32_t, GetScope, () const, ())
  FAULTY(std::uint32_t, GetFlavor, () const, ())
};

template <>
struct TFaulty<ICIMQualifier> final : TWrapper<ICIMQualifier> {
  FAULTY(void, Commit, (), ())
  FAULTY(TPtr<const ICIMQualifierDecl>, GetDecl, () const, ())
  FAULTY(TValue, GetValue, () const, ())
};

template <>
struct TFaulty<ICIMPropertyDecl> final : TElementWrapper<ICIMPropertyDecl> {
  FAULTY(TPtr<ICIMQualifier>, GetQualifier, (TName name) const, (name))
  FAULTY(void, Commit, (), ())
  FAULTY(TName, GetName, () const, ())
  FAULTY(TType, GetType, () const, ())
  FAULTY(TValue, GetDefaultValue, () const, ())
};

template <>
struct TFaulty<ICIMParameterDecl> final : TElementWrapper<ICIMParameterDecl> {
  FAULTY(void, Commit, (), ())
  FAULTY(TName, GetName, () const, ())
  FAULTY(TType, GetType, () const, ())
};

template <>
struct TFaulty<ICIMMethodDecl> final : TElementWrapper<ICIMMethodDecl> {
  FAULTY(TName, GetName, () const, ())
  FAULTY(TType, GetReturnType, () const, ())
  FAULTY(TPtr<ICIMParameterDecl>, CreateParameterDecl, (TName name, TType type), (name, type))
  FAULTY(void, EnumerateParameterDecls, (TVisit<ICIMParameterDecl> v) const, (Wrap(v)))
};

template <>
struct TFaulty<ICIMProperty> final : TWrapper<ICIMProperty> {
  FAULTY(TValue, GetValue, () const, ())
  FAULTY(TPtr<const ICIMPropertyDecl>, GetDecl, () const, ())
};

template <>
struct TFaulty<ICIMInstance> final : TWrapper<ICIMInstance> {
  FAULTY(void, Commit, (TOptions o), (o))
  FAULTY(TPtr<ICIMClass>, GetClass, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMProperty>, GetProperty, (TName name, TOptions o) const, (name, o))
  FAULTY(void, SetPropertyValue, (TName name, TValue value, TOptions o), (name, value, o))
  FAULTY(void, EnumerateProperties, (TVisit<ICIMProperty> v, TOptions o) const, (Wrap(v), o))
};

template <>
struct TFaulty<ICIMClass> final : TElementWrapper<ICIMClass> {
  ~TFaulty() override { fContext->fClasses.erase(fReal.get()); }
  FAULTY(void, Commit, (TOptions o), (o))
  FAULTY(TName, GetName, (TOptions o) const, (o))
  FAULTY(bool, IsAssociation, (TOptions o) const, (o))
  FAULTY(bool, IsAbstract, (TOptions o) const, (o))
  FAULTY(bool, IsRootClass, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMClass>, GetSuperclass, (TOptions o) const, (o))
  FAULTY(void, EnumerateSubclasses, (TVisit<ICIMClass> v, bool deep, TOptions o) const,
         (Wrap(v), deep, o))
  FAULTY(TPtr<ICIMQualifier>, GetQualifier, (TName name) const, (name))
  FAULTY(TPtr<ICIMPropertyDecl>, CreatePropertyDecl, (TName name, TValue value, TOptions o),
         (name, value, o))
  FAULTY(TPtr<const ICIMPropertyDecl>, GetPropertyDecl, (TName name, TOptions o) const, (name, o))
  FAULTY(void, EnumeratePropertyDecls, (TVisit<ICIMPropertyDecl> v, TOptions o) const, (Wrap(v), o))
  FAULTY(void, SetStaticPropertyValue, (TName name, TValue value, TOptions o), (name, value, o))
  FAULTY(void, EnumerateStaticProperties, (TVisit<ICIMProperty> v, TOptions o) const, (Wrap(v), o))
  FAULTY(TPtr<ICIMInstance>, CreateInstance, (TOptions o), (o))
  FAULTY(TPtr<ICIMInstance>, GetInstance, (TPath path, TOptions o) const, (path, o))
  FAULTY(void, EnumerateInstances, (TVisit<ICIMInstance> v, bool deep, TOptions o) const,
         (Wrap(v), deep, o))
  FAULTY(TPtr<ICIMMethodDecl>, CreateMethodDecl, (TName name, TType type, TOptions o),
         (name, type, o))
  FAULTY(void, EnumerateMethodDecls, (TVisit<ICIMMethodDecl> v, TOptions o) const, (Wrap(v), o))
};

template <>
struct TFaulty<ICIMNamespace> final : TWrapper<ICIMNamespace> {
  FAULTY(TName, GetName, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMClass>, CreateClass, (TName name, TPtr<ICIMClass> superclass, TOptions o),
         (name, RealOf(superclass), o))
  FAULTY(TPtr<ICIMClass>, GetClass, (TName name, TOptions o) const, (name, o))
  FAULTY(void, EnumerateClasses, (TVisit<ICIMClass> v, TOptions o) const, (Wrap(v), o))
  FAULTY(TPtr<ICIMQualifierDecl>, CreateQualifierDecl,
         (TName name, TValue value, std::uint32_t s, std::uint32_t f, TOptions o),
         (name, value, s, f, o))
  FAULTY(TPtr<ICIMQualifierDecl>, GetQualifierDecl, (TName name, TOptions o) const, (name, o))
  FAULTY(void, EnumerateQualifierDecls, (TVisit<ICIMQualifierDecl> v, TOptions o) const,
         (Wrap(v), o))
};
#undef FAULTY

template <typename T>
TPtr<T> Wrap(const TPtr<TContext>& context, const TPtr<T>& real) {
  using TInterface = std::remove_const_t<T>;
  if (!real) return nullptr;
  if constexpr (std::is_same_v<TInterface, ICIMClass>) {
    const TPtr<ICIMClass> known = context->fClasses[real.get()].lock();
    if (known) return known;
  }
  const auto wrapper = boost::make_shared<TFaulty<TInterface>>();
  wrapper->fContext = context;
  wrapper->fReal = boost::const_pointer_cast<TInterface>(real);
  if constexpr (std::is_same_v<TInterface, ICIMClass>) context->fClasses[real.get()] = wrapper;
  return wrapper;
}

}  // namespace faulty

inline boost::shared_ptr<NVORNQDX20::ICIMNamespace> MakeFaultyNamespace(
    const boost::shared_ptr<NVORNQDX20::ICIMNamespace>& real,
    const boost::shared_ptr<TFaults>& faults) {
  const auto context = boost::make_shared<faulty::TContext>();
  context->fFaults = faults;
  return faulty::Wrap(context, real);
}

#endif  // TESTS_SUPPORT_FAULTY_PROVIDER_H_
