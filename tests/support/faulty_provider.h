// SPDX-License-Identifier: Apache-2.0
/// A namespace that stands in front of another and fails where a test wants it to:
///   const auto faults = boost::make_shared<TFaults>();
///   const auto ns = MakeFaultyNamespace(real, faults);
///   faults->Fail("ICIMClass::GetPropertyDecl", kQDXStatusAccessDenied, 2);  // the second call
/// All elements are wrapped but the classes that values name. A wrapped class that is stored in the
/// real namespace, within a reference value, would own that namespace for ever: give a faulty
/// target nothing with references.
#ifndef TESTS_SUPPORT_FAULTY_PROVIDER_H_
#define TESTS_SUPPORT_FAULTY_PROVIDER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <utility>

#include <boost/core/demangle.hpp>
#include <boost/function.hpp>
#include <boost/smart_ptr/make_shared.hpp>

/// What a fault throws, so that a test can tell it from what others make of it.
struct TInjected : NVORNQDX20::TQDXException {
  using TQDXException::TQDXException;
};

struct TFaults {
  /// Throws the status, or answers null for kQDXStatusOK, which only what gives an element can.
  /// `call` counts from now on: 1 is the next one.
  void Fail(const std::string& operation, NVORNQDX20::EQDXStatusCode status, int call = 1) {
    fFaults[{operation, fCalls[operation] + call}] = status;
  }
  /// Counts the call; throws, or says whether it answers null.
  bool Strikes(const std::string& operation, const std::string& arguments) {
    if (fWatch) fWatch(operation + arguments);
    const auto fault = fFaults.find({operation, ++fCalls[operation]});
    if (fault == fFaults.end()) return false;
    if (fault->second != NVORNQDX20::kQDXStatusOK) throw TInjected(fault->second);
    return true;
  }

  /// Is told of each call first, for example "ICIMClass::GetPropertyDecl(Id)".
  boost::function<void(const std::string&)> fWatch;
  /// Classes then enumerate only the declarations that they do not inherit, as they may.
  bool fHidesInherited = false;
  /// Classes then enumerate their instances again and again.
  bool fIsEndless = false;
  std::map<std::string, int> fCalls;
  std::map<std::pair<std::string, int>, NVORNQDX20::EQDXStatusCode> fFaults;
};

namespace faulty {

using namespace NVORNQDX20;
template <typename T>
using TPtr = boost::shared_ptr<T>;
// As operations take and answer them.
template <typename T>
using TEach = const TEnumerationCallback<T>&;
using TName = const std::string&;
using TOptions = TOptionsMap;
using TType = TCIMValue::TCIMType;
using TValue = const TCIMValue&;

inline std::string AddressOf(const TCIMReference& reference) {
  return std::to_string(reinterpret_cast<std::uintptr_t>(&reference));
}

/// ",a", or nothing for an element or a callback; of options, the value of the first.
template <typename T>
std::string TextOf(const T& argument) {
  if constexpr (std::is_same_v<T, std::string>) return "," + argument;
  if constexpr (std::is_same_v<T, TType>) return "," + argument.ToString();
  if constexpr (std::is_same_v<T, TCIMValue>) {
    return argument.IsNull() ? "," : "," + argument.ToString(10);
  }
  if constexpr (std::is_arithmetic_v<T>) return "," + std::to_string(argument);
  if constexpr (std::is_same_v<T, TCIMReference>) return "," + AddressOf(argument);
  if constexpr (std::is_same_v<T, TOptions>) {
    if (!argument.empty()) return TextOf(argument.begin()->second);
  }
  return "";
}

/// "(a,b)"
template <typename... T>
std::string TextOfAll(const T&... arguments) {
  const std::string text = (std::string() + ... + TextOf(arguments));
  return "(" + text.substr(text.empty() ? 0 : 1) + ")";
}

/// The wrapper of each interface.
template <typename TInterface>
struct TFaulty;

template <typename T>
TPtr<T> Wrap(const TPtr<TFaults>& faults, const TPtr<T>& real) {
  using TInterface = std::remove_const_t<T>;
  if (!real) return nullptr;
  const auto wrapper = boost::make_shared<TFaulty<TInterface>>();
  wrapper->fFaults = faults;
  wrapper->fReal = boost::const_pointer_cast<TInterface>(real);
  return wrapper;
}

template <typename TInterface>
struct TWrapper : public TInterface {
  TPtr<TFaults> fFaults;
  TPtr<TInterface> fReal;

  template <typename T>
  static TPtr<T> RealOf(const TPtr<T>& object) {
    const auto* const wrapper = dynamic_cast<const TWrapper<T>*>(object.get());
    return wrapper == nullptr ? object : wrapper->fReal;
  }
  /// The callback that wraps each element for the caller's.
  template <typename T>
  TEnumerationCallback<T> Wrap(TEach<T> visit) const {
    return [this, &visit](const TPtr<T>& real) { return visit(faulty::Wrap(fFaults, real)); };
  }
  /// What `forward` answers, wrapped if it is an element, unless this call is to fail.
  template <typename TResult, typename TForward>
  TResult Call(const std::string& operation, const std::string& text, TForward&& forward) const {
    const std::string name = boost::core::demangle(typeid(TInterface).name());
    const bool isNull = fFaults->Strikes(name.substr(name.find("::") + 2) + operation, text);
    if constexpr (std::is_convertible_v<TResult, TPtr<const void>>) {
      return isNull ? nullptr : faulty::Wrap(fFaults, forward());
    } else {
      return forward();
    }
  }
};

/// Overrides an operation (of a name n, a value or visitor v, a type t, options o) with one that
/// fails when it is to, or asks the real one.
#define FAULTY(TResult, operation, parameters, arguments)                                        \
  TResult operation parameters override {                                                        \
    return this->template Call<TResult>("::" #operation, TextOfAll arguments, [&]() -> TResult { \
      return this->fReal->operation arguments;                                                   \
    });                                                                                          \
  }

/// Of an element that carries qualifiers.
template <typename TInterface>
struct TElementWrapper : public TWrapper<TInterface> {
  FAULTY(TPtr<ICIMQualifier>, AddQualifier, (TPtr<ICIMQualifierDecl> decl, TValue value),
         (this->RealOf(decl), value))
  FAULTY(void, EnumerateQualifiers, (TEach<ICIMQualifier> v) const, (this->Wrap(v)))
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
  FAULTY(TPtr<ICIMQualifier>, GetQualifier, (TName n) const, (n))
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
  FAULTY(TPtr<ICIMParameterDecl>, CreateParameterDecl, (TName n, TType t), (n, t))
  FAULTY(void, EnumerateParameterDecls, (TEach<ICIMParameterDecl> v) const, (Wrap(v)))
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
  FAULTY(TPtr<ICIMProperty>, GetProperty, (TName n, TOptions o) const, (n, o))
  FAULTY(void, SetPropertyValue, (TName n, TValue v, TOptions o), (n, v, o))
  FAULTY(void, EnumerateProperties, (TEach<ICIMProperty> v, TOptions o) const, (Wrap(v), o))
};

template <>
struct TFaulty<ICIMClass> final : TElementWrapper<ICIMClass> {
  FAULTY(void, Commit, (TOptions o), (o))
  FAULTY(TName, GetName, (TOptions o) const, (o))
  FAULTY(bool, IsAssociation, (TOptions o) const, (o))
  FAULTY(bool, IsAbstract, (TOptions o) const, (o))
  FAULTY(bool, IsRootClass, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMClass>, GetSuperclass, (TOptions o) const, (o))
  FAULTY(void, EnumerateSubclasses, (TEach<ICIMClass> v, bool d, TOptions o) const, (Wrap(v), d, o))
  FAULTY(TPtr<ICIMQualifier>, GetQualifier, (TName n) const, (n))
  FAULTY(TPtr<ICIMPropertyDecl>, CreatePropertyDecl, (TName n, TValue v, TOptions o), (n, v, o))
  FAULTY(TPtr<const ICIMPropertyDecl>, GetPropertyDecl, (TName n, TOptions o) const, (n, o))
  FAULTY(void, EnumeratePropertyDecls, (TEach<ICIMPropertyDecl> v, TOptions o) const,
         (ButInherited(Wrap(v)), o))
  FAULTY(void, SetStaticPropertyValue, (TName n, TValue v, TOptions o), (n, v, o))
  FAULTY(void, EnumerateStaticProperties, (TEach<ICIMProperty> v, TOptions o) const, (Wrap(v), o))
  FAULTY(TPtr<ICIMInstance>, CreateInstance, (TOptions o), (o))
  FAULTY(TPtr<ICIMInstance>, GetInstance, (const TCIMReference& r, TOptions o) const, (r, o))
  FAULTY(void, EnumerateInstances, (TEach<ICIMInstance> v, bool d, TOptions o) const,
         (Repeated(Wrap(v)), d, o))
  FAULTY(TPtr<ICIMMethodDecl>, CreateMethodDecl, (TName n, TType t, TOptions o), (n, t, o))
  FAULTY(void, EnumerateMethodDecls, (TEach<ICIMMethodDecl> v, TOptions o) const, (Wrap(v), o))

  TEnumerationCallback<ICIMInstance> Repeated(TEach<ICIMInstance> visit) const {
    return [this, visit](const auto& real) {
      while (visit(real)) {
        if (!fFaults->fIsEndless) return true;
      }
      return false;
    };
  }

  TEnumerationCallback<ICIMPropertyDecl> ButInherited(
      const TEnumerationCallback<ICIMPropertyDecl>& visit) const {
    std::set<TPtr<ICIMPropertyDecl>> hidden;
    if (fFaults->fHidesInherited && !fReal->IsRootClass({})) {
      const auto add = [&](const auto& real) { return hidden.insert(real).second; };
      fReal->GetSuperclass({})->EnumeratePropertyDecls(add, {});
    }
    return [visit, hidden](const auto& real) { return hidden.count(real) != 0 || visit(real); };
  }
};

template <>
struct TFaulty<ICIMNamespace> final : TWrapper<ICIMNamespace> {
  FAULTY(TName, GetName, (TOptions o) const, (o))
  FAULTY(TPtr<ICIMClass>, CreateClass, (TName n, TPtr<ICIMClass> c, TOptions o), (n, RealOf(c), o))
  FAULTY(TPtr<ICIMClass>, GetClass, (TName n, TOptions o) const, (n, o))
  FAULTY(void, EnumerateClasses, (TEach<ICIMClass> v, TOptions o) const, (Wrap(v), o))
  FAULTY(TPtr<ICIMQualifierDecl>, CreateQualifierDecl,
         (TName n, TValue v, std::uint32_t s, std::uint32_t f, TOptions o), (n, v, s, f, o))
  FAULTY(TPtr<ICIMQualifierDecl>, GetQualifierDecl, (TName n, TOptions o) const, (n, o))
  FAULTY(void, EnumerateQualifierDecls, (TEach<ICIMQualifierDecl> v, TOptions o) const,
         (Wrap(v), o))
};
#undef FAULTY

}  // namespace faulty

inline boost::shared_ptr<NVORNQDX20::ICIMNamespace> MakeFaultyNamespace(
    const boost::shared_ptr<NVORNQDX20::ICIMNamespace>& real,
    const boost::shared_ptr<TFaults>& faults) {
  return faulty::Wrap(faults, real);
}

#endif  // TESTS_SUPPORT_FAULTY_PROVIDER_H_
