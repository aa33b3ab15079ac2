// SPDX-License-Identifier: Apache-2.0
// The verb show.
#include <qdxcore/reference.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "cli/output.h"
#include "completeness.h"
#include "document.h"
#include "machine.h"
#include "namespace_format.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

/// A class, or an instance by its object path; in any namespace unless one is named.
struct TElementName {
  explicit TElementName(const std::string& text) : fText(text), fPath(text) {
    const std::size_t colon = text.find_first_of(":\"");
    if (colon == std::string::npos || text[colon] != ':') return;
    fNamespace = text.substr(0, colon);
    fPath = text.substr(colon + 1);
  }

  std::string fText;  ///< As given; empty for everything.
  std::string fNamespace;
  std::string fPath;
};

/// The request of the command line.
struct TRequest {
  std::string fFile;  ///< Empty for the live machine.
  TElementName fElement{""};
  EDepth fDepth = kValues;
};

/// Returns whether the text looks like a name, or like a name, a dot and "=": unlikely file names.
bool CanNameElement(const std::string& text) {
  const std::string path = TElementName(text).fPath;
  const std::size_t end =
      path.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_");
  if (end == 0 || path.empty()) return false;
  return end == std::string::npos || (path[end] == '.' && path.find('=', end) != std::string::npos);
}

bool NamesFile(const std::string& operand) {
  std::error_code ignored;
  return operand == "-" || std::filesystem::exists(operand, ignored) || !CanNameElement(operand);
}

EDepth DepthOf(const std::string& text) {
  if (text.size() != 1 || text[0] < '0' || text[0] > '3') {
    FailOnUsage("option '--depth' needs a number from 0 to 3");
  }
  return static_cast<EDepth>(text[0] - '0');
}

TRequest RequestOf(const TArguments& arguments) {
  const std::string first = arguments.GetOperand(0);
  const std::string second = arguments.GetOperand(1);
  TRequest request;
  request.fDepth = DepthOf(arguments.Get("depth", "3"));
  if (!second.empty() || (!first.empty() && NamesFile(first))) {
    request.fFile = first;
    request.fElement = TElementName(second);
  } else {
    request.fElement = TElementName(first);
  }
  for (const TOptionSpec& option : TMachine::Options()) {
    const bool isOfReader = option.fName == std::string_view("memory");
    if (!isOfReader && !request.fFile.empty() && arguments.Has(option.fName)) {
      FailOnUsage(std::string("option '--") + option.fName + "' cannot be used with a file");
    }
  }
  return request;
}

/// Reads the requested elements of each namespace; of a namespace that fails, what was read before.
class TSelection {
 public:
  explicit TSelection(const TRequest& request)
      : fRequest(request),
        fLookupFailure(kQDXStatusNotFound, request.fFile.empty() ? "no such class, instance or file"
                                                                 : "no such class or instance") {}

  void Add(const TOrigin& origin, const boost::shared_ptr<ICIMNamespace>& ns) {
    const std::string& wanted = fRequest.fElement.fNamespace;
    if (!wanted.empty() && !NModel::EqualIgnoringCase(wanted, origin.fNamespace)) {
      return;
    }
    const auto element = Find(ns);
    if (!element && !fRequest.fElement.fText.empty()) return;
    fFound.push_back({origin.fNamespace, origin.fProvider, {}, NDescribe::ReadMissingReasons(*ns)});
    Read(*ns, element);
  }

  /// Moves out the results, sorted by name.
  std::vector<TNamespaceContents> TakeFound() {
    for (TNamespaceContents& ns : fFound) SortSnapshot(ns.fClasses);
    std::stable_sort(fFound.begin(), fFound.end(),
                     [](const auto& a, const auto& b) { return a.fName < b.fName; });
    return std::move(fFound);
  }
  const TExplainedException& GetLookupFailure() const { return fLookupFailure; }
  /// Returns whether a class lacks some of its instances.
  bool LacksInstances() const { return fLacksInstances; }

 private:
  /// Null if the namespace does not have the element, or if no element is requested.
  boost::shared_ptr<ICIMElement> Find(const boost::shared_ptr<ICIMNamespace>& ns) {
    boost::shared_ptr<ICIMElement> element;
    if (fRequest.fElement.fText.empty()) return element;
    const auto failure =
        Try([&] { element = TCIMReference(ns, fRequest.fElement.fPath, {}).GetCIMElement(); });
    if (failure && failure->GetStatusCode() != kQDXStatusNotFound) fLookupFailure = *failure;
    return element;
  }

  /// Reads into the last namespace; all of it without an element.
  void Read(const ICIMNamespace& ns, const boost::shared_ptr<ICIMElement>& element) {
    const TNamespaceContents& contents = fFound.back();
    TSnapshotReader reader(ns, fRequest.fDepth, fFound.back().fClasses);
    if (const auto instance = boost::dynamic_pointer_cast<ICIMInstance>(element)) {
      return reader.ReadInstance(*instance);
    }
    const auto cimClass = boost::dynamic_pointer_cast<ICIMClass>(element);
    cimClass ? reader.ReadTree(cimClass) : reader.ReadAll();
    const bool lost = ReportLostInstances(contents.fName, contents.fClasses, contents.fReasons);
    fLacksInstances = fLacksInstances || lost;
  }

  const TRequest& fRequest;
  std::vector<TNamespaceContents> fFound;
  TExplainedException fLookupFailure;
  bool fLacksInstances = false;
};

/// Returns whether all values of the document could be read.
bool AddDocument(const std::string& file, const TArguments& arguments, TSelection& selection) {
  bool incomplete = false;
  for (const auto& ns : OpenDocument(file, arguments, incomplete)) {
    selection.Add({"", ns->GetName({})}, ns);
  }
  return !incomplete;
}

/// Returns whether all providers succeeded.
bool AddLiveMachine(const TArguments& arguments, TSelection& selection) {
  TMachine machine(arguments);
  for (const auto& [origin, ns] : machine.TakeAll()) selection.Add(origin, ns);
  return machine.IsComplete();
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

EExitCode RunShow(const TArguments& arguments) {
  const TRequest request = RequestOf(arguments);
  TSelection selection(request);
  const bool complete = request.fFile.empty() ? AddLiveMachine(arguments, selection)
                                              : AddDocument(request.fFile, arguments, selection);
  const auto found = selection.TakeFound();
  if (found.empty()) {
    FailToFind(request, complete || !request.fFile.empty(), selection.GetLookupFailure());
  }
  arguments.Has("json") ? WriteJSON(NamespacesAsJSON(found, request.fDepth))
                        : WriteOutput(FormatNamespaces(found));
  return complete && !selection.LacksInstances() ? kExitDone : kExitPartlyDone;
}

std::vector<TOptionSpec> ShowOptions() {
  std::vector<TOptionSpec> options = TMachine::Options();
  options.push_back(
      {"depth", "N", "Stop at namespaces (0), classes (1), instances (2) or values (3)."});
  options.push_back({"json", nullptr, "Print one JSON object."});
  return options;
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
      "an element.\n",
      ShowOptions(),
      RunShow,
      {{"FILE", TOperandSpec::kOptional}, {"ELEMENT", TOperandSpec::kOptional}}};
}

}  // namespace NVORNQDX20
