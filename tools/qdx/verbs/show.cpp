// SPDX-License-Identifier: Apache-2.0
// The verb show.
#include <qdxcore/reference.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <utility>

#include <qdxsnapshot/associations.h>

#include "cli/output.h"
#include "format/namespace_format.h"
#include "format/schema_format.h"
#include "input/completeness.h"
#include "input/document.h"
#include "input/machine.h"
#include "show_request.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

/// What the request names in a namespace.
struct TFoundElement {
  TMachineNamespace fOrigin;
  boost::shared_ptr<ICIMElement> fElement;  ///< Null for the whole namespace.
};

/// Finds the requested element in each namespace.
class TSelection {
 public:
  explicit TSelection(const TRequest& request)
      : fRequest(request),
        fLookupFailure(kQDXStatusNotFound, request.fFile.empty() ? "no such class, instance or file"
                                                                 : "no such class or instance") {}

  /// Returns what was found, in the order of the names of the namespaces.
  std::vector<TFoundElement> Find(const std::vector<TMachineNamespace>& namespaces) {
    std::vector<TFoundElement> found;
    const std::string& wanted = fRequest.fElement.fNamespace;
    for (const TMachineNamespace& ns : namespaces) {
      if (!wanted.empty() && !NModel::EqualIgnoringCase(wanted, ns.fOrigin.fNamespace)) continue;
      const auto element = FindIn(ns.fNamespace);
      if (element || fRequest.fElement.fText.empty()) found.push_back({ns, element});
    }
    std::stable_sort(found.begin(), found.end(), [](const auto& left, const auto& right) {
      return left.fOrigin.fOrigin.fNamespace < right.fOrigin.fOrigin.fNamespace;
    });
    return found;
  }
  const TExplainedException& GetLookupFailure() const { return fLookupFailure; }

 private:
  /// Null if the namespace does not have the element, or if no element is requested.
  boost::shared_ptr<ICIMElement> FindIn(const boost::shared_ptr<ICIMNamespace>& ns) {
    boost::shared_ptr<ICIMElement> element;
    if (fRequest.fElement.fText.empty()) return element;
    const auto failure =
        Try([&] { element = TCIMReference(ns, fRequest.fElement.fPath, {}).GetCIMElement(); });
    if (failure && failure->GetStatusCode() != kQDXStatusNotFound) fLookupFailure = *failure;
    // The path may name a superclass, as references do.
    if (!element)
      (void)Try(
          [&] { element = FindInstance(*ns, TCIMReference(ns, fRequest.fElement.fPath, {})); });
    return element;
  }

  const TRequest& fRequest;
  TExplainedException fLookupFailure;
};

TNamespaceContents EmptyContents(const TMachineNamespace& ns) {
  return {ns.fOrigin.fNamespace,
          ns.fOrigin.fProvider,
          {},
          NDescribe::ReadMissingReasons(*ns.fNamespace)};
}

boost::shared_ptr<ICIMClass> ClassOf(const TFoundElement& found) {
  return boost::dynamic_pointer_cast<ICIMClass>(found.fElement);
}

boost::shared_ptr<ICIMInstance> InstanceOf(const TFoundElement& found) {
  return boost::dynamic_pointer_cast<ICIMInstance>(found.fElement);
}

/// Reads the elements; of a namespace that fails, what was read before. Clears `complete` if a
/// class lacks some of its instances.
std::vector<TNamespaceContents> ReadContents(const std::vector<TFoundElement>& found, EDepth depth,
                                             bool& complete) {
  std::vector<TNamespaceContents> all;
  all.reserve(found.size());
  for (const TFoundElement& each : found) {
    TNamespaceContents& contents = all.emplace_back(EmptyContents(each.fOrigin));
    TSnapshotReader reader(*each.fOrigin.fNamespace, depth, contents.fClasses);
    if (const auto instance = InstanceOf(each)) {
      reader.ReadInstance(*instance);
      continue;
    }
    const auto cimClass = ClassOf(each);
    cimClass ? reader.ReadTree(cimClass) : reader.ReadAll();
    if (ReportLostInstances(contents.fName, contents.fClasses, contents.fReasons)) complete = false;
    SortSnapshot(contents.fClasses);
  }
  return all;
}

std::vector<TNamespaceSchema> ReadSchemas(const std::vector<TFoundElement>& found) {
  std::vector<TNamespaceSchema> all;
  for (const TFoundElement& each : found) {
    const auto& [origin, ns] = each.fOrigin;
    TNamespaceSchema schema{origin.fNamespace, origin.fProvider, {}, {}};
    if (const auto cimClass = ClassOf(each)) {
      schema.fClasses.push_back(ReadSchema(cimClass));
    } else {
      schema.fQualifiers = ReadQualifiers(*ns);
      for (const TClassNode& node : ReadClassTree(*ns, nullptr)) {
        schema.fClasses.push_back(ReadSchema(ns->GetClass(node.fName, {})));
      }
    }
    all.push_back(std::move(schema));
  }
  return all;
}

std::vector<TNamespaceTree> ReadTrees(const std::vector<TFoundElement>& found) {
  std::vector<TNamespaceTree> all;
  for (const TFoundElement& each : found) {
    const auto& [origin, ns] = each.fOrigin;
    all.push_back({origin.fNamespace, origin.fProvider, ReadClassTree(*ns, ClassOf(each))});
  }
  return all;
}

/// Walks the associations of an instance, through all namespaces.
class TWalk {
 public:
  TWalk(const TRequest& request, const std::vector<TMachineNamespace>& namespaces)
      : fRequest(request), fOrigins(namespaces) {
    for (const TMachineNamespace& ns : namespaces) fNamespaces.push_back(ns.fNamespace);
    CheckClass();
  }

  void From(const TFoundElement& start) {
    const auto instance = InstanceOf(start);
    const auto ns = std::find(fNamespaces.begin(), fNamespaces.end(), start.fOrigin.fNamespace);
    const TFoundInstance target{static_cast<std::size_t>(ns - fNamespaces.begin()), instance};
    const TAssociationSearch search(fNamespaces);
    // The namespace of the instance is shown even if nothing is found.
    fFound[target.fNamespace];
    if (fRequest.fView == EView::kReferences) return Add(search.FindReferences(target));
    const auto associators = search.FindAssociators(target);
    Add(associators.fInstances);
    fMissing.insert(fMissing.end(), associators.fMissing.begin(), associators.fMissing.end());
  }

  /// Clears `complete` if an association leads to an instance that is missing.
  std::vector<TNamespaceContents> Read(bool& complete) const {
    std::vector<TNamespaceContents> all;
    for (const auto& [ns, classes] : fFound) {
      TNamespaceContents& contents = all.emplace_back(EmptyContents(fOrigins[ns]));
      TSnapshotReader reader(*fNamespaces[ns], fRequest.fDepth, contents.fClasses);
      for (const auto& [name, instances] : classes) {
        reader.ReadInstances(instances.front()->GetClass({}), instances);
      }
      SortSnapshot(contents.fClasses);
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const auto& left, const auto& right) { return left.fName < right.fName; });
    if (!fMissing.empty()) complete = false;
    for (const std::string& path : fMissing) PrintError("no instance " + path);
    return all;
  }

 private:
  using TInstances = std::vector<boost::shared_ptr<ICIMInstance>>;

  /// Throws a TCommandFailure if no namespace has the class of the request.
  void CheckClass() const {
    const std::string& name = fRequest.fClass;
    const auto hasClass = [&name](const auto& ns) {
      boost::shared_ptr<ICIMClass> cimClass;
      (void)Try([&] { cimClass = ns->GetClass(name, {}); });
      return cimClass != nullptr;
    };
    if (name.empty() || std::any_of(fNamespaces.begin(), fNamespaces.end(), hasClass)) return;
    throw TCommandFailure(kExitBadInput, "looking for " + name,
                          {kQDXStatusNotFound, "no such class"});
  }

  void Add(const std::vector<TFoundInstance>& found) {
    for (const auto& [ns, instance] : found) {
      const auto cimClass = instance->GetClass({});
      if (!fRequest.fClass.empty() && !IsOrDerivesFrom(cimClass, fRequest.fClass)) continue;
      // Several starting points can lead to the same one.
      if (!fSeen.insert(instance.get()).second) continue;
      fFound[ns][cimClass->GetName({})].push_back(instance);
    }
  }

  const TRequest& fRequest;
  const std::vector<TMachineNamespace>& fOrigins;
  TNamespaces fNamespaces;
  std::set<const ICIMInstance*> fSeen;
  std::map<std::size_t, std::map<std::string, TInstances>> fFound;
  std::vector<std::string> fMissing;
};

std::vector<TMachineNamespace> OpenDocumentOf(const TRequest& request, const TArguments& arguments,
                                              bool& complete) {
  bool incomplete = false;
  std::vector<TMachineNamespace> namespaces;
  for (const auto& ns :
       OpenDocument(request.fFile, arguments, incomplete, ShownInstancesOf(request))) {
    namespaces.push_back({{"", ns->GetName({})}, ns});
  }
  if (incomplete) complete = false;
  return namespaces;
}

std::vector<TMachineNamespace> OpenMachine(const TArguments& arguments, bool& complete) {
  TMachine machine(arguments);
  auto namespaces = machine.TakeAll();
  if (!machine.IsComplete()) complete = false;
  return namespaces;
}

/// Returns the error in the text of an element, without the text itself, which the core repeats and
/// the line already has.
TExplainedException ExplainInvalidElement(const TExplainedException& failure) {
  std::string reason = failure.GetReason().substr(0, failure.GetReason().find(", path="));
  if (failure.GetStatusCode() == kQDXStatusInvalidReference) {
    reason += "; in the shell an object path needs single quotes: 'CLASS.KEY=\"VALUE\"'";
  }
  return {failure.GetStatusCode(), reason};
}

[[noreturn]] void FailToFindElement(const TRequest& request, bool complete,
                                    const TExplainedException& failure) {
  const std::string action = "looking for " + request.fElement.fText;
  if (failure.GetStatusCode() != kQDXStatusNotFound) {
    throw TCommandFailure(kExitBadInput, action, ExplainInvalidElement(failure));
  }
  if (!complete) {
    throw TCommandFailure(kExitBadInput, action,
                          {kQDXStatusNotFound, "not found, but a provider failed"});
  }
  const std::string file = request.fFile.empty() ? "" : " " + request.fFile;
  throw TCommandFailure(kExitBadInput, action,
                        {kQDXStatusNotFound, failure.GetReason() + "; 'qdx show" + file +
                                                 " --depth 1' lists the classes"});
}

[[noreturn]] void FailToFind(const TRequest& request, bool complete,
                             const TExplainedException& failure) {
  if (!request.fElement.fText.empty()) FailToFindElement(request, complete, failure);
  // The lines about failed providers are the reason.
  if (!complete) throw TCommandFailure(kExitNothingCollected);
  throw TCommandFailure(kExitNothingCollected,
                        "showing " + (request.fFile.empty() ? "this machine" : request.fFile),
                        {kQDXStatusNotFound, "it has no namespaces"});
}

using TPrint = std::function<void()>;

TPrint PrinterOfJSON(TJSON json) {
  return [json = std::move(json)] { WriteJSON(json); };
}

TPrint PrinterOfText(std::string text) {
  return [text = std::move(text)] { WriteOutput(text); };
}

TPrint PrinterOf(std::vector<TNamespaceContents> contents, EDepth depth, bool asJSON) {
  return [contents = std::move(contents), depth, asJSON] {
    asJSON ? WriteJSON(NamespacesAsJSON(contents, depth)) : WriteOutput(FormatNamespaces(contents));
  };
}

/// Reads what the request shows, and returns a function that prints it without the namespaces:
/// their memory is free then. Clears `complete` if something is missing.
TPrint ReadView(const TRequest& request, bool asJSON, const std::vector<TFoundElement>& found,
                const std::vector<TMachineNamespace>& namespaces, bool& complete) {
  switch (request.fView) {
    case EView::kSchema:
      return asJSON ? PrinterOfJSON(SchemaAsJSON(ReadSchemas(found)))
                    : PrinterOfText(FormatSchema(ReadSchemas(found)));
    case EView::kMOF:
      return PrinterOfText(FormatMOF(ReadSchemas(found)));
    case EView::kTree:
      return asJSON ? PrinterOfJSON(TreeAsJSON(ReadTrees(found)))
                    : PrinterOfText(FormatTree(ReadTrees(found)));
    case EView::kAssociators:
    case EView::kReferences: {
      TWalk walk(request, namespaces);
      for (const TFoundElement& each : found) walk.From(each);
      return PrinterOf(walk.Read(complete), request.fDepth, asJSON);
    }
    case EView::kContents:
      break;
  }
  return PrinterOf(ReadContents(found, request.fDepth, complete), request.fDepth, asJSON);
}

EExitCode RunShow(const TArguments& arguments) {
  const TRequest request = RequestOf(arguments);
  bool complete = true;
  TPrint print;
  {
    const auto namespaces = request.fFile.empty() ? OpenMachine(arguments, complete)
                                                  : OpenDocumentOf(request, arguments, complete);
    TSelection selection(request);
    const auto found = selection.Find(namespaces);
    if (found.empty()) {
      FailToFind(request, complete || !request.fFile.empty(), selection.GetLookupFailure());
    }
    print = ReadView(request, arguments.Has("json"), found, namespaces, complete);
  }
  print();
  return complete ? kExitDone : kExitPartlyDone;
}

}  // namespace

TVerb ShowVerb() {
  return {
      "show",
      "Shows a document, or this machine, as a tree of CIM classes and instances.",
      "FILE is a CIM-XML document, '-' is standard input; without it this machine is shown.\n"
      "ELEMENT is a class, shown with all its subclasses, or an object path such as\n"
      "'VORNSG_SCSIDevice.DeviceID=\"/dev/sg0\"'; 'root/cimv2:' before it searches only that\n"
      "namespace. A single argument is FILE if a file with this name exists, or if it cannot be\n"
      "an element. --associators and --references take a CLASS after an object path.\n",
      ShowOptions(),
      RunShow,
      {{"FILE", TOperandSpec::kOptional},
       {"ELEMENT", TOperandSpec::kOptional},
       {"CLASS", TOperandSpec::kOptional}}};
}

}  // namespace NVORNQDX20
