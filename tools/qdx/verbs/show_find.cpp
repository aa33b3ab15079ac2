// SPDX-License-Identifier: Apache-2.0
#include "show_find.h"

#include <qdxcore/reference.h>
#include <qdxdisplay/names.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <set>

#include <boost/algorithm/string/join.hpp>

#include <qdxsnapshot/associations.h>

#include "cli/failure.h"

namespace NVORNQDX20 {
namespace {

using TMachineNamespaces = std::vector<TMachineNamespace>;
using TFoundInstances = std::vector<boost::shared_ptr<ICIMInstance>>;

/// Returns the names of all classes, each once.
std::vector<std::string> ClassNames(const TMachineNamespaces& namespaces) {
  std::set<std::string> names;
  for (const TMachineNamespace& ns : namespaces) {
    ns.fNamespace->EnumerateClasses(
        [&names](const boost::shared_ptr<ICIMClass>& root) {
          for (const auto& each : NModel::WithSubclasses(root)) names.insert(each->GetName({}));
          return true;
        },
        {});
  }
  return {names.begin(), names.end()};
}

/// Returns the class of that name in the first namespace that has it, or null.
boost::shared_ptr<ICIMClass> ClassNamed(const std::string& name,
                                        const TMachineNamespaces& namespaces) {
  boost::shared_ptr<ICIMClass> cimClass;
  for (const TMachineNamespace& ns : namespaces) {
    if (!cimClass) (void)Try([&] { cimClass = ns.fNamespace->GetClass(name, {}); });
  }
  return cimClass;
}

/// Returns the one of which all others are subclasses; empty if there is none.
std::string CommonSuperclass(const std::vector<std::string>& names,
                             const TMachineNamespaces& namespaces) {
  constexpr std::size_t kMost = 100;  // of more, as of "c", nobody means all
  if (names.size() > kMost) return "";
  for (const std::string& superclass : names) {
    const bool isCommon = std::all_of(names.begin(), names.end(), [&](const std::string& name) {
      const auto cimClass = ClassNamed(name, namespaces);
      return cimClass && IsOrDerivesFrom(cimClass, superclass);
    });
    if (isCommon) return superclass;
  }
  return "";
}

std::string Listed(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 8;
  std::string list;
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    list += (i == 0 ? "" : ", ") + names[i];
  }
  return names.size() > kMost ? list + " and " + std::to_string(names.size() - kMost) + " more"
                              : list;
}

/// What a person meant by the name of a class.
struct TMeaning {
  std::string fName;     ///< Empty if no class has such a name.
  std::string fNearest;  ///< Then one that is spelled similarly, or empty.
};

/// Throws a TCommandFailure if there are several.
TMeaning MeaningOf(const std::string& typed, const TMachineNamespaces& namespaces) {
  const TClassMatch match = FindClassFor(typed, ClassNames(namespaces));
  if (match.fNames.size() <= 1) {
    return {match.fNames.empty() ? "" : match.fNames.front(), match.fNearest};
  }
  const std::string common = CommonSuperclass(match.fNames, namespaces);
  if (!common.empty()) return {common, ""};
  throw TCommandFailure(
      kExitBadInput, "looking for " + typed,
      {kQDXStatusNotFound, "several classes are called so: " + Listed(match.fNames)});
}

/// Returns the instances of the class and its subclasses with the values of the path.
TFoundInstances InstancesWith(const TCIMReference& path) {
  TFoundInstances found;
  for (const auto& each : NModel::WithSubclasses(path.GetClass())) {
    for (const auto& instance : NModel::InstancesOf(*each)) {
      bool isMeant = true;
      path.EnumerateKeyBindings([&](const std::pair<std::string, TCIMValue>& binding) {
        isMeant = instance->GetProperty(binding.first, {})->GetValue() == binding.second;
        return isMeant;
      });
      if (isMeant) found.push_back(instance);
    }
  }
  return found;
}

std::string KeysOf(const ICIMClass& cimClass) {
  std::vector<std::string> names;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
    if (isKey) names.push_back(decl->GetName());
  }
  return boost::algorithm::join(names, ", ");
}

[[noreturn]] void FailOnSeveral(std::size_t count, const ICIMClass& cimClass,
                                const std::string& typed) {
  throw TCommandFailure(
      kExitBadInput, "looking for " + typed,
      {kQDXStatusNotFound,
       std::to_string(count) + " instances have these values; the keys are " + KeysOf(cimClass)});
}

std::string Suggestion(const std::string& nearest) {
  return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

/// Finds the requested element in each namespace.
class TSelection {
 public:
  TSelection(const TRequest& request, const TMachineNamespaces& namespaces)
      : fRequest(request),
        fLookupFailure(kQDXStatusNotFound, request.fFile.empty() ? "no such class, instance or file"
                                                                 : "no such class or instance") {
    const std::string& wanted = request.fElement.fNamespace;
    std::copy_if(namespaces.begin(), namespaces.end(), std::back_inserter(fNamespaces),
                 [&wanted](const TMachineNamespace& ns) {
                   return wanted.empty() ||
                          NModel::EqualIgnoringCase(wanted, ns.fOrigin.fNamespace);
                 });
    std::stable_sort(fNamespaces.begin(), fNamespaces.end(),
                     [](const TMachineNamespace& left, const TMachineNamespace& right) {
                       return left.fOrigin.fNamespace < right.fOrigin.fNamespace;
                     });
  }

  std::vector<TFoundElement> Find() {
    const std::string& path = fRequest.fElement.fPath;
    std::vector<TFoundElement> found = FindExactly(path);
    const bool isUnknown = fLookupFailure.GetStatusCode() == kQDXStatusNotFound;
    if (!found.empty() || !isUnknown || path.empty()) return found;
    const std::size_t end = std::min(path.find('.'), path.size());
    const std::string typed = path.substr(0, end);
    const TMeaning meaning = MeaningOf(typed, fNamespaces);
    // A document was read for a whole name only: it may lack the instances of another class.
    const bool isFound = !meaning.fName.empty() && IsShortName(typed);
    if (isFound) return FindExactly(meaning.fName + path.substr(end));
    const bool isOther = !NModel::EqualIgnoringCase(meaning.fName, typed);
    fSuggestion = Suggestion(meaning.fName.empty() ? meaning.fNearest
                             : isOther             ? meaning.fName
                                                   : "");
    return found;
  }
  const TExplainedException& GetLookupFailure() const { return fLookupFailure; }
  const std::string& GetSuggestion() const { return fSuggestion; }
  /// Returns the name of the class of which a path names no instance; empty if there is none.
  std::string GetClassOfPath() const { return fClassOfPath ? fClassOfPath->GetName({}) : ""; }

 private:
  std::vector<TFoundElement> FindExactly(const std::string& path) {
    std::vector<TFoundElement> found;
    for (const TMachineNamespace& ns : fNamespaces) {
      const auto element = FindIn(ns.fNamespace, path);
      if (element || fRequest.fElement.fText.empty()) found.push_back({ns, element});
    }
    return found;
  }

  /// Null if the namespace does not have the element, or if no element is requested.
  boost::shared_ptr<ICIMElement> FindIn(const boost::shared_ptr<ICIMNamespace>& ns,
                                        const std::string& path) {
    boost::shared_ptr<ICIMElement> element;
    if (fRequest.fElement.fText.empty()) return element;
    const auto failure = Try([&] { element = TCIMReference(ns, path, {}).GetCIMElement(); });
    if (failure && failure->GetStatusCode() != kQDXStatusNotFound) fLookupFailure = *failure;
    if (element || path.find('.') == path.npos) return element;
    TFoundInstances some;
    // The path may name a superclass, as references do, and leave out keys.
    (void)TryUnlessOutOfMemory([&] {
      const TCIMReference reference(ns, path, {});
      fClassOfPath = reference.GetClass();
      element = FindInstance(*ns, reference);
      if (!element) some = InstancesWith(reference);
    });
    if (some.size() > 1) FailOnSeveral(some.size(), *fClassOfPath, fRequest.fElement.fText);
    return some.empty() ? element : some.front();
  }

  const TRequest& fRequest;
  TMachineNamespaces fNamespaces;
  TExplainedException fLookupFailure;
  boost::shared_ptr<ICIMClass> fClassOfPath;
  std::string fSuggestion;
};

/// Returns the error in the text of an element, without the text itself, which the core repeats and
/// the line already has.
TExplainedException ExplainInvalidElement(const TExplainedException& failure) {
  std::string reason = failure.GetReason().substr(0, failure.GetReason().find(", path="));
  if (failure.GetStatusCode() == kQDXStatusInvalidReference) {
    reason += "; in the shell an object path needs single quotes: 'CLASS.KEY=\"VALUE\"'";
  }
  return {failure.GetStatusCode(), reason};
}

[[noreturn]] void FailToFindElement(const TRequest& request,
                                    const std::vector<std::string>& partsLeftOut, bool isComplete,
                                    const TSelection& selection) {
  const TExplainedException& failure = selection.GetLookupFailure();
  const std::string action = "looking for " + request.fElement.fText;
  if (failure.GetStatusCode() != kQDXStatusNotFound) {
    throw TCommandFailure(kExitBadInput, action, ExplainInvalidElement(failure));
  }
  if (!isComplete) {
    throw TCommandFailure(kExitBadInput, action,
                          {kQDXStatusNotFound, "not found, but a provider failed"});
  }
  const std::string file = request.fFile.empty() ? "" : " " + request.fFile;
  const std::string cimClass = selection.GetClassOfPath();
  if (!cimClass.empty()) {
    throw TCommandFailure(
        kExitBadInput, action,
        {kQDXStatusNotFound, cimClass + " has no such instance; 'qdx show" + file + " " + cimClass +
                                 " --depth 2' lists those that it has"});
  }
  std::string advice = selection.GetSuggestion();
  if (!partsLeftOut.empty()) {
    const bool isOne = partsLeftOut.size() == 1;
    advice += (advice.empty() ? "; " : " ") + std::string(isOne ? "part " : "parts ") +
              Listed(partsLeftOut) + (isOne ? " is left out" : " are left out");
  }
  if (advice.empty()) advice = "; 'qdx show" + file + " --depth 1' lists the classes";
  throw TCommandFailure(kExitBadInput, action, {kQDXStatusNotFound, failure.GetReason() + advice});
}

[[noreturn]] void FailToFind(const TRequest& request, const std::vector<std::string>& partsLeftOut,
                             bool isComplete, const TSelection& selection) {
  if (!request.fElement.fText.empty()) {
    FailToFindElement(request, partsLeftOut, isComplete, selection);
  }
  // The lines about failed providers are the reason.
  if (!isComplete) throw TCommandFailure(kExitNothingCollected);
  throw TCommandFailure(kExitNothingCollected,
                        "showing " + (request.fFile.empty() ? "this machine" : request.fFile),
                        {kQDXStatusNotFound, "it has no namespaces"});
}

}  // namespace

boost::shared_ptr<ICIMClass> TFoundElement::GetClass() const {
  return boost::dynamic_pointer_cast<ICIMClass>(fElement);
}

boost::shared_ptr<ICIMInstance> TFoundElement::GetInstance() const {
  return boost::dynamic_pointer_cast<ICIMInstance>(fElement);
}

std::vector<TFoundElement> FindRequested(const TRequest& request,
                                         const TMachineNamespaces& namespaces,
                                         const std::vector<std::string>& partsLeftOut,
                                         bool isComplete) {
  TSelection selection(request, namespaces);
  std::vector<TFoundElement> found = selection.Find();
  if (found.empty()) FailToFind(request, partsLeftOut, isComplete, selection);
  return found;
}

std::string FindClassName(const std::string& typed, const TMachineNamespaces& namespaces) {
  if (typed.empty()) return "";
  const TMeaning meaning = MeaningOf(typed, namespaces);
  if (!meaning.fName.empty()) return meaning.fName;
  throw TCommandFailure(kExitBadInput, "looking for " + typed,
                        {kQDXStatusNotFound, "no such class" + Suggestion(meaning.fNearest)});
}

}  // namespace NVORNQDX20
