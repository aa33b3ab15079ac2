// SPDX-License-Identifier: Apache-2.0
// The verb show.
#include <qdxcore/os_specific.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <qdxsnapshot/associations.h>
#include <qdxsnapshot/json_lines.h>
#include <qdxsnapshot/record.h>

#include "cli/failure.h"
#include "cli/output.h"
#include "format/schema_format.h"
#include "input/document.h"
#include "input/machine.h"
#include "show_contents.h"
#include "show_find.h"
#include "show_request.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

void ShowSchemas(const std::vector<TFoundElement>& found, ISchemaFormat& format) {
  for (const TFoundElement& each : found) {
    const auto& [origin, ns] = each.fOrigin;
    const auto cimClass = each.GetClass();
    format.BeginNamespace(origin.fNamespace, origin.fProvider,
                          cimClass ? std::vector<TQualifierSchema>() : ReadQualifiers(*ns));
    if (cimClass) {
      format.AddClass(ReadSchema(cimClass));
    } else {
      for (const TClassNode& node : ReadClassTree(*ns, nullptr)) {
        format.AddClass(ReadSchema(ns->GetClass(node.fName, {})));
      }
    }
    format.EndNamespace();
  }
  format.End();
}

std::vector<TNamespaceTree> ReadTrees(const std::vector<TFoundElement>& found) {
  std::vector<TNamespaceTree> all;
  for (const TFoundElement& each : found) {
    const auto& [origin, ns] = each.fOrigin;
    all.push_back({origin.fNamespace, origin.fProvider, ReadClassTree(*ns, each.GetClass())});
  }
  return all;
}

/// Walks the associations of an instance, through all namespaces.
class TWalk {
 public:
  TWalk(const TRequest& request, const std::vector<TMachineNamespace>& namespaces)
      : fRequest(request),
        fOrigins(namespaces),
        fClassName(FindClassName(request.fClass, namespaces)) {
    for (const TMachineNamespace& ns : namespaces) fNamespaces.push_back(ns.fNamespace);
  }

  void From(const TFoundElement& start) {
    const auto ns = std::find(fNamespaces.begin(), fNamespaces.end(), start.fOrigin.fNamespace);
    const TFoundInstance target{static_cast<std::size_t>(ns - fNamespaces.begin()),
                                start.GetInstance()};
    const TAssociationSearch search(fNamespaces);
    // The namespace of the instance is shown even if nothing is found.
    fFound[target.fNamespace];
    if (fRequest.fView == EView::kReferences) return Add(search.FindReferences(target));
    const auto associators = search.FindAssociators(target);
    Add(associators.fInstances);
    fMissing.insert(fMissing.end(), associators.fMissing.begin(), associators.fMissing.end());
  }

  std::vector<TNamespaceToShow> Get() const {
    std::vector<TNamespaceToShow> all;
    for (const auto& [ns, classes] : fFound) {
      TNamespaceToShow& shown = all.emplace_back(TNamespaceToShow{fOrigins[ns], {}});
      for (const auto& [name, instances] : classes) {
        shown.fClasses.push_back({instances.front()->GetClass({}), instances, true});
      }
    }
    std::stable_sort(all.begin(), all.end(), [](const auto& left, const auto& right) {
      return left.fOrigin.fOrigin.fNamespace < right.fOrigin.fOrigin.fNamespace;
    });
    return all;
  }

  /// Returns the paths to which an association leads, but where no instance is.
  const std::vector<std::string>& GetMissing() const { return fMissing; }

 private:
  void Add(const std::vector<TFoundInstance>& found) {
    for (const auto& [ns, instance] : found) {
      const auto cimClass = instance->GetClass({});
      if (!fClassName.empty() && !IsOrDerivesFrom(cimClass, fClassName)) continue;
      // Several starting points can lead to the same one.
      if (!fSeen.insert(instance.get()).second) continue;
      fFound[ns][cimClass->GetName({})].push_back(instance);
    }
  }

  const TRequest& fRequest;
  const std::vector<TMachineNamespace>& fOrigins;
  const std::string fClassName;
  TNamespaces fNamespaces;
  std::set<const ICIMInstance*> fSeen;
  std::map<std::size_t, std::map<std::string, TInstances>> fFound;
  std::vector<std::string> fMissing;
};

/// What to show something of.
struct TShownSource {
  std::vector<TMachineNamespace> fNamespaces;
  TCollectionRecord fRecord;
  bool fIsComplete;
  std::vector<std::string> fPartsLeftOut = {};  // by options: their classes are missing
};

TShownSource OpenDocumentOf(const TRequest& request, const TArguments& arguments) {
  bool incomplete = false;
  const TNamespaces document =
      OpenDocument(request.fFile, arguments, incomplete, ShownInstancesOf(request));
  TShownSource source{{}, FindRecord(document), !incomplete, FindPartsExcluded(document)};
  for (const auto& ns : document) source.fNamespaces.push_back({{"", ns->GetName({})}, ns});
  return source;
}

TShownSource OpenMachine(const TRequest& request, const TArguments& arguments) {
  TMachine machine(arguments);
  TShownSource source{machine.TakeAll(), {}, true};
  source.fIsComplete = machine.IsComplete();
  source.fPartsLeftOut = machine.GetParts().fExcluded;
  if (request.fForm != EForm::kJSONLines) return source;
  source.fRecord.fHostName = HostNameOf(source.fNamespaces, machine.GetRoot());
  source.fRecord.fTime = TOSSpecific::GetLocalTime();
  return source;
}

/// Returns whether nothing is missing.
bool ShowWalk(const TRequest& request, const std::vector<TFoundElement>& found,
              const TShownSource& source) {
  TWalk walk(request, source.fNamespaces);
  for (const TFoundElement& each : found) walk.From(each);
  for (const std::string& path : walk.GetMissing()) PrintError("no instance " + path);
  return ShowContents(request, walk.Get(), source.fRecord) && walk.GetMissing().empty();
}

/// Prints what the request shows. Returns whether nothing is missing.
bool ShowView(const TRequest& request, const std::vector<TFoundElement>& found,
              const TShownSource& source) {
  const bool asJSON = request.fForm == EForm::kJSON;
  switch (request.fView) {
    case EView::kSchema:
      ShowSchemas(found, asJSON ? *MakeSchemaJSON() : *MakeSchemaText());
      return true;
    case EView::kMOF:
      ShowSchemas(found, *MakeSchemaMOF());
      return true;
    case EView::kTree:
      asJSON ? WriteJSON(TreeAsJSON(ReadTrees(found))) : WriteOutput(FormatTree(ReadTrees(found)));
      return true;
    case EView::kAssociators:
    case EView::kReferences:
      return ShowWalk(request, found, source);
    case EView::kContents:
      break;
  }
  return ShowContents(request, ContentsOf(found), source.fRecord);
}

EExitCode RunShow(const TArguments& arguments) {
  const TRequest request = RequestOf(arguments);
  const bool isMachine = request.fFile.empty();
  const TShownSource source =
      isMachine ? OpenMachine(request, arguments) : OpenDocumentOf(request, arguments);
  const auto found = FindRequested(request, source.fNamespaces, source.fPartsLeftOut,
                                   source.fIsComplete || !isMachine);
  const bool isWhole = ShowView(request, found, source);
  return isWhole && source.fIsComplete ? kExitDone : kExitPartlyDone;
}

}  // namespace

TVerb ShowVerb() {
  return {
      "show",
      "Shows a document, or this machine, as a tree of CIM classes and instances.",
      "FILE is a CIM-XML document, '-' is standard input; without it this machine is shown.\n"
      "ELEMENT is a class, shown with all its subclasses, or an object path such as\n"
      "'VORNSG_SCSIDevice.DeviceID=\"/dev/sg0\"'; 'root/cimv2:' before it searches only that\n"
      "namespace. Of the name of a class, 'DiskDrive', 'disk' or a word of it is enough. A single\n"
      "argument is FILE if a file with this name exists, or if it cannot be an element.\n"
      "--associators and --references take a CLASS after an object path.\n"
      "CONDITION is a property, one of = != < <= > >= ~ and a value; NAMES have commas between\n"
      "them.\n",
      ShowOptions(),
      RunShow,
      {{"FILE", TOperandSpec::kOptional},
       {"ELEMENT", TOperandSpec::kOptional},
       {"CLASS", TOperandSpec::kOptional}}};
}

}  // namespace NVORNQDX20
