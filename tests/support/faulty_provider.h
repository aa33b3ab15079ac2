// SPDX-License-Identifier: Apache-2.0
/// A namespace that stands in front of another and fails where a test wants it to.
///
///   const auto faults = boost::make_shared<TFaults>();
///   const auto ns = MakeFaultyNamespace(real, faults);
///   faults->Throw("ICIMClass::GetPropertyDecl", kQDXStatusAccessDenied, 2);  // the second call
///   faults->AnswerNull("ICIMNamespace::GetClass", TFaults::kEveryCall);
///
/// What reads no more than a name or a flag, or enumerates declarations, cannot be made to fail.
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

  /// The result of `forward`, unless this call is to fail.
  template <typename TForward>
  auto Call(const std::string& operation, TForward&& forward) -> decltype(forward()) {
    if (Strikes(operation)) return decltype(forward())();
    return forward();
  }

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

class TClass;

/// What all wrappers of one namespace share. Each class has one wrapper at a time, since
/// references compare classes by identity.
struct TContext {
  TPtr<TFaults> fFaults;
  std::map<ICIMClass*, boost::weak_ptr<ICIMClass>> fClasses;
};
using TContextPtr = TPtr<TContext>;

inline TPtr<ICIMClass> Wrap(const TContextPtr& context, const TPtr<ICIMClass>& real);
inline TPtr<ICIMInstance> Wrap(const TContextPtr& context, const TPtr<ICIMInstance>& real);
inline TPtr<ICIMProperty> Wrap(const TContextPtr& context, const TPtr<ICIMProperty>& real);

/// The callback that wraps each element for the caller's.
template <typename T>
TEnumerationCallback<T> Wrapping(const TContextPtr& context,
                                 const TEnumerationCallback<T>& callback) {
  return [context, &callback](TPtr<T> element) { return callback(Wrap(context, element)); };
}

class TProperty final : public ICIMProperty {
 public:
  TProperty(const TContextPtr& context, const TPtr<ICIMProperty>& real)
      : fContext(context), fReal(real) {}
  const TCIMValue& GetValue() const override {
    return fContext->fFaults->Strikes("ICIMProperty::GetValue") ? fNull : fReal->GetValue();
  }
  TPtr<const ICIMPropertyDecl> GetDecl() const override {
    return fContext->fFaults->Call("ICIMProperty::GetDecl", [&] { return fReal->GetDecl(); });
  }

 private:
  const TContextPtr fContext;
  const TPtr<ICIMProperty> fReal;
  const TCIMValue fNull;
};

class TInstance final : public ICIMInstance {
 public:
  TInstance(const TContextPtr& context, const TPtr<ICIMInstance>& real)
      : fContext(context), fReal(real) {}
  void Commit(TOptionsMap o) override {
    fContext->fFaults->Call("ICIMInstance::Commit", [&] { fReal->Commit(o); });
  }
  TPtr<ICIMClass> GetClass(TOptionsMap o) const override {
    return fContext->fFaults->Call("ICIMInstance::GetClass",
                                   [&] { return Wrap(fContext, fReal->GetClass(o)); });
  }
  TPtr<ICIMProperty> GetProperty(const std::string& name, TOptionsMap o) const override {
    return fContext->fFaults->Call("ICIMInstance::GetProperty",
                                   [&] { return Wrap(fContext, fReal->GetProperty(name, o)); });
  }
  void SetPropertyValue(const std::string& name, const TCIMValue& value, TOptionsMap o) override {
    fContext->fFaults->Call("ICIMInstance::SetPropertyValue",
                            [&] { fReal->SetPropertyValue(name, value, o); });
  }
  void EnumerateProperties(const TEnumerationCallback<ICIMProperty>& callback,
                           TOptionsMap o) const override {
    fContext->fFaults->Call("ICIMInstance::EnumerateProperties",
                            [&] { fReal->EnumerateProperties(Wrapping(fContext, callback), o); });
  }

 private:
  const TContextPtr fContext;
  const TPtr<ICIMInstance> fReal;
};

class TClass final : public ICIMClass {
 public:
  TClass(const TContextPtr& context, const TPtr<ICIMClass>& real)
      : fContext(context), fReal(real) {}
  ~TClass() override { fContext->fClasses.erase(fReal.get()); }

  const TPtr<ICIMClass>& Real() const { return fReal; }

  TPtr<ICIMQualifier> AddQualifier(TPtr<ICIMQualifierDecl> decl, const TCIMValue& value) override {
    return Call("AddQualifier", [&] { return fReal->AddQualifier(decl, value); });
  }
  void Commit(TOptionsMap o) override {
    Call("Commit", [&] { fReal->Commit(o); });
  }
  const std::string& GetName(TOptionsMap o) const override { return fReal->GetName(o); }
  bool IsAssociation(TOptionsMap o) const override { return fReal->IsAssociation(o); }
  bool IsAbstract(TOptionsMap o) const override { return fReal->IsAbstract(o); }
  bool IsRootClass(TOptionsMap o) const override { return fReal->IsRootClass(o); }
  TPtr<ICIMClass> GetSuperclass(TOptionsMap o) const override {
    return Call("GetSuperclass", [&] { return Wrap(fContext, fReal->GetSuperclass(o)); });
  }
  void EnumerateSubclasses(const TEnumerationCallback<ICIMClass>& callback, bool deep,
                           TOptionsMap o) const override {
    Call("EnumerateSubclasses",
         [&] { fReal->EnumerateSubclasses(Wrapping(fContext, callback), deep, o); });
  }
  TPtr<ICIMQualifier> GetQualifier(const std::string& name) const override {
    return Call("GetQualifier", [&] { return fReal->GetQualifier(name); });
  }
  void EnumerateQualifiers(const TEnumerationCallback<ICIMQualifier>& callback) const override {
    fReal->EnumerateQualifiers(callback);
  }
  TPtr<ICIMPropertyDecl> CreatePropertyDecl(const std::string& name, const TCIMValue& value,
                                            TOptionsMap o) override {
    return Call("CreatePropertyDecl", [&] { return fReal->CreatePropertyDecl(name, value, o); });
  }
  TPtr<const ICIMPropertyDecl> GetPropertyDecl(const std::string& name,
                                               TOptionsMap o) const override {
    return Call("GetPropertyDecl", [&] { return fReal->GetPropertyDecl(name, o); });
  }
  void EnumeratePropertyDecls(const TEnumerationCallback<ICIMPropertyDecl>& callback,
                              TOptionsMap o) const override {
    fReal->EnumeratePropertyDecls(callback, o);
  }
  void SetStaticPropertyValue(const std::string& name, const TCIMValue& value,
                              TOptionsMap o) override {
    Call("SetStaticPropertyValue", [&] { fReal->SetStaticPropertyValue(name, value, o); });
  }
  void EnumerateStaticProperties(const TEnumerationCallback<ICIMProperty>& callback,
                                 TOptionsMap o) const override {
    Call("EnumerateStaticProperties",
         [&] { fReal->EnumerateStaticProperties(Wrapping(fContext, callback), o); });
  }
  TPtr<ICIMInstance> CreateInstance(TOptionsMap o) override {
    return Call("CreateInstance", [&] { return Wrap(fContext, fReal->CreateInstance(o)); });
  }
  TPtr<ICIMInstance> GetInstance(const TCIMReference& path, TOptionsMap o) const override {
    return Call("GetInstance", [&] { return Wrap(fContext, fReal->GetInstance(path, o)); });
  }
  void EnumerateInstances(const TEnumerationCallback<ICIMInstance>& callback, bool deep,
                          TOptionsMap o) const override {
    Call("EnumerateInstances",
         [&] { fReal->EnumerateInstances(Wrapping(fContext, callback), deep, o); });
  }
  TPtr<ICIMMethodDecl> CreateMethodDecl(const std::string& name, TCIMValue::TCIMType type,
                                        TOptionsMap o) override {
    return Call("CreateMethodDecl", [&] { return fReal->CreateMethodDecl(name, type, o); });
  }
  void EnumerateMethodDecls(const TEnumerationCallback<ICIMMethodDecl>& callback,
                            TOptionsMap o) const override {
    fReal->EnumerateMethodDecls(callback, o);
  }

 private:
  template <typename TForward>
  auto Call(const char* operation, TForward&& forward) const -> decltype(forward()) {
    return fContext->fFaults->Call(std::string("ICIMClass::") + operation, forward);
  }

  const TContextPtr fContext;
  const TPtr<ICIMClass> fReal;
};

class TNamespace final : public ICIMNamespace {
 public:
  TNamespace(const TContextPtr& context, const TPtr<ICIMNamespace>& real)
      : fContext(context), fReal(real) {}
  const std::string& GetName(TOptionsMap o) const override { return fReal->GetName(o); }
  TPtr<ICIMClass> CreateClass(const std::string& name, TPtr<ICIMClass> superclass,
                              TOptionsMap o) override {
    const auto* const wrapper = dynamic_cast<const TClass*>(superclass.get());
    const TPtr<ICIMClass> real = wrapper == nullptr ? superclass : wrapper->Real();
    return Call("CreateClass", [&] { return Wrap(fContext, fReal->CreateClass(name, real, o)); });
  }
  TPtr<ICIMClass> GetClass(const std::string& name, TOptionsMap o) const override {
    return Call("GetClass", [&] { return Wrap(fContext, fReal->GetClass(name, o)); });
  }
  void EnumerateClasses(const TEnumerationCallback<ICIMClass>& callback,
                        TOptionsMap o) const override {
    Call("EnumerateClasses", [&] { fReal->EnumerateClasses(Wrapping(fContext, callback), o); });
  }
  TPtr<ICIMQualifierDecl> CreateQualifierDecl(const std::string& name, const TCIMValue& value,
                                              std::uint32_t scope, std::uint32_t flavor,
                                              TOptionsMap o) override {
    return Call("CreateQualifierDecl",
                [&] { return fReal->CreateQualifierDecl(name, value, scope, flavor, o); });
  }
  TPtr<ICIMQualifierDecl> GetQualifierDecl(const std::string& name, TOptionsMap o) const override {
    return Call("GetQualifierDecl", [&] { return fReal->GetQualifierDecl(name, o); });
  }
  void EnumerateQualifierDecls(const TEnumerationCallback<ICIMQualifierDecl>& callback,
                               TOptionsMap o) const override {
    Call("EnumerateQualifierDecls", [&] { fReal->EnumerateQualifierDecls(callback, o); });
  }

 private:
  template <typename TForward>
  auto Call(const char* operation, TForward&& forward) const -> decltype(forward()) {
    return fContext->fFaults->Call(std::string("ICIMNamespace::") + operation, forward);
  }

  const TContextPtr fContext;
  const TPtr<ICIMNamespace> fReal;
};

inline TPtr<ICIMClass> Wrap(const TContextPtr& context, const TPtr<ICIMClass>& real) {
  if (!real) return nullptr;
  boost::weak_ptr<ICIMClass>& known = context->fClasses[real.get()];
  TPtr<ICIMClass> wrapper = known.lock();
  if (!wrapper) known = wrapper = boost::make_shared<TClass>(context, real);
  return wrapper;
}

inline TPtr<ICIMInstance> Wrap(const TContextPtr& context, const TPtr<ICIMInstance>& real) {
  if (!real) return nullptr;
  return boost::make_shared<TInstance>(context, real);
}

inline TPtr<ICIMProperty> Wrap(const TContextPtr& context, const TPtr<ICIMProperty>& real) {
  if (!real) return nullptr;
  return boost::make_shared<TProperty>(context, real);
}

}  // namespace faulty

inline boost::shared_ptr<NVORNQDX20::ICIMNamespace> MakeFaultyNamespace(
    const boost::shared_ptr<NVORNQDX20::ICIMNamespace>& real,
    const boost::shared_ptr<TFaults>& faults) {
  const auto context = boost::make_shared<faulty::TContext>();
  context->fFaults = faults;
  return boost::make_shared<faulty::TNamespace>(context, real);
}

#endif  // TESTS_SUPPORT_FAULTY_PROVIDER_H_
