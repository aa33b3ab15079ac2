// SPDX-License-Identifier: Apache-2.0
/// A provider of one namespace whose classes are tables.
///
///   [[maybe_unused]] const bool kRegistered = RegisterProvider([] {
///     return NDescribe::MakeProvider("fans", "root/fans", {Fans()});
///   });
#ifndef QDXDESCRIBE_PROVIDER_H_
#define QDXDESCRIBE_PROVIDER_H_

#include <qdxcore/parts.h>
#include <qdxcore/registry.h>
#include <qdxdescribe/catalogue.h>
#include <qdxdescribe/files.h>
#include <qdxdescribe/table.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NDescribe {

/// Describes a host with the classes' tables; see MakeProvider.
class TDescriber {
 public:
  using TDescribe = std::function<void(const ICIMNamespace&, IInstanceSink&)>;

  /// A class, in the order of the catalogue.
  struct TStep {
    const TClassDeclaration* fDeclaration;
    const std::vector<std::string>* fColumns;
    TDescribe fDescribe;
  };

  /// When the class of missing values is declared.
  enum class EExplains { kAlways, kIfMissing };

  /// More than a server has, and few enough for its memory.
  static constexpr std::size_t kMaxInstances = 100'000;

  /// `provider` begins the log's lines about missing values. Of each class at most `maxInstances`
  /// are taken; a reason records that others are left out.
  TDescriber(std::string provider, std::string ns, std::size_t maxInstances = kMaxInstances)
      : fProvider(std::move(provider)),
        fNamespaceName(std::move(ns)),
        fMaxInstances(maxInstances) {}

  const std::string& GetProviderName() const { return fProvider; }
  const std::string& GetNamespaceName() const { return fNamespaceName; }

  /// Throws a TExplainedException if the provider or the namespace has no name.
  void CheckNames() const;
  /// Throws kQDXStatusNotFound for another namespace, and for an option of the wrong type what
  /// reading it throws.
  TRequest MakeRequest(const std::string& ns, TOptionsMap options) const;
  /// Option "classes" names the wanted ones; the others are left out, except their superclasses,
  /// their subclasses, the classes that all these refer to, and what those need in turn.
  /// Options "only", "without" and "with" choose parts; of classes in other parts, those that the
  /// chosen ones need are declared, without instances.
  boost::shared_ptr<ICIMNamespace> Describe(const std::vector<TStep>& steps,
                                            const TOptionsMap& options, EExplains explains) const;

 private:
  std::string fProvider;
  std::string fNamespaceName;
  std::size_t fMaxInstances;
};

namespace NDetail {

template <typename THost>
std::vector<const TClassDeclaration*> DeclarationsOf(const std::vector<TClassOf<THost>>& classes) {
  std::vector<const TClassDeclaration*> declarations;
  declarations.reserve(classes.size());
  for (const TClassOf<THost>& each : classes) declarations.push_back(&each.fDeclaration);
  return declarations;
}

/// REQUIRES: the classes are checked.
template <typename THost>
boost::shared_ptr<ICIMNamespace> DescribeChecked(const TDescriber& describer,
                                                 const std::vector<const TClassOf<THost>*>& classes,
                                                 const THost& host, const TOptionsMap& options,
                                                 TDescriber::EExplains explains) {
  std::vector<TDescriber::TStep> steps;
  steps.reserve(classes.size());
  for (const TClassOf<THost>* each : classes) {
    steps.push_back({&each->fDeclaration, &each->fColumns, nullptr});
    if (!each->fDescribe) continue;
    steps.back().fDescribe = [each, &host](const ICIMNamespace& ns, IInstanceSink& sink) {
      each->fDescribe(host, ns, sink);
    };
  }
  return describer.Describe(steps, options, explains);
}

}  // namespace NDetail

/// Throws a TExplainedException with kQDXStatusInvalidClass; see CheckDeclarations.
template <typename THost>
void CheckClasses(const std::vector<TClassOf<THost>>& classes) {
  CheckDeclarations(NDetail::DeclarationsOf(classes));
}

/// Returns a new namespace that describes the host with the classes, in their order. Throws what
/// CheckClasses throws.
///
/// For a namespace that no provider publishes; it has the class of missing values only if a value
/// is missing.
template <typename THost>
boost::shared_ptr<ICIMNamespace> Describe(
    const TDescriber& describer, const std::vector<TClassOf<THost>>& classes, const THost& host,
    const TOptionsMap& options = {},
    TDescriber::EExplains explains = TDescriber::EExplains::kIfMissing) {
  CheckRelations(NDetail::DeclarationsOf(classes));
  std::vector<const TClassOf<THost>*> all;
  all.reserve(classes.size());
  for (const TClassOf<THost>& each : classes) all.push_back(&each);
  return NDetail::DescribeChecked(describer, all, host, options, explains);
}

/// Whether a provider checks its classes when it registers. One whose tests do that need not do it
/// at each start.
enum class EClassCheck { kWhenRegistered, kByTests };

/// The provider itself. Each GetNamespace returns a new namespace with the current state.
template <typename THost>
class TTableProvider final : public INamespaceProvider, public IPartsOfProvider {
 public:
  TTableProvider(const TDescriber& describer, TCatalogue<THost> classes,
                 EClassCheck check = EClassCheck::kWhenRegistered)
      : fDescriber(describer), fClasses(std::move(classes)) {
    fDescriber.CheckNames();
    if (check == EClassCheck::kWhenRegistered) fClasses.Check();
  }

  const std::string& GetName(TOptionsMap) const override { return fDescriber.GetProviderName(); }

  /// Passes on what the constructor of THost and the functions that list instances throw.
  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name,
                                                TOptionsMap options) override {
    const TRequest request = fDescriber.MakeRequest(name, std::move(options));
    return NDetail::DescribeChecked(fDescriber, fClasses.Wanted(request.fOptions), THost(request),
                                    request.fOptions, TDescriber::EExplains::kAlways);
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    callback(fDescriber.GetNamespaceName());
  }

  /// In the order of the classes.
  void EnumerateParts(const TPartCallback& callback) const override {
    for (const TPart& part : fClasses.Parts()) {
      if (!callback(part.fName, part.fIsOnRequest)) return;
    }
  }

 private:
  const TDescriber fDescriber;
  TCatalogue<THost> fClasses;
};

/// Returns a provider with this name. The classes are in the order in which they are described: a
/// class comes after its superclass and after those it refers to.
///
/// A THost is made from the TRequest of each call, for what several classes need; it is named as in
/// MakeProvider<TMachine>(...) unless it is the TRequest itself. Throws what CheckClasses, unless
/// tests call that, and TDescriber::CheckNames throw.
template <typename THost = TRequest>
boost::shared_ptr<INamespaceProvider> MakeProvider(
    const std::string& provider, const std::string& ns, std::vector<TClassOf<THost>> classes,
    EClassCheck check = EClassCheck::kWhenRegistered) {
  return boost::make_shared<TTableProvider<THost>>(TDescriber(provider, ns),
                                                   TCatalogue<THost>(std::move(classes)), check);
}

/// The same for a provider of many classes, which are made when a caller first wants them.
template <typename THost = TRequest>
boost::shared_ptr<INamespaceProvider> MakeCatalogueProvider(
    const std::string& provider, const std::string& ns,
    const std::vector<TCatalogueEntry<THost>>& classes,
    EClassCheck check = EClassCheck::kWhenRegistered) {
  return boost::make_shared<TTableProvider<THost>>(TDescriber(provider, ns),
                                                   TCatalogue<THost>(classes), check);
}

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_PROVIDER_H_
