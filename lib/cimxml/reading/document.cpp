// SPDX-License-Identifier: Apache-2.0
#include "document.h"

#include <qdxcimxml/document_reader.h>
#include <qdxcore/logger.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>

#include <algorithm>
#include <initializer_list>
#include <set>
#include <utility>

#include <boost/make_shared.hpp>

#include "object_path.h"
#include "xml/document_limits.h"
#include "xml/input.h"

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr char kDefaultNamespace[] = "root/cimv2";
constexpr std::size_t kMostStrayText = 100;

/// Returns whether it names an object, perhaps with its namespace.
bool IsName(const TElement& element) {
  return element.IsOneOf("INSTANCENAME", "CLASSNAME", "INSTANCEPATH", "CLASSPATH",
                         "LOCALINSTANCEPATH", "LOCALCLASSPATH", "OBJECTPATH");
}

TElement* FindChild(TElement& object, std::string_view name) {
  const auto found = std::find_if(object.fChildren.begin(), object.fChildren.end(),
                                  [&](const TElement& child) { return child.Is(name); });
  return found == object.fChildren.end() ? nullptr : &*found;
}

bool HasInstance(const ICIMClass& cimClass, const TCIMReference& path) {
  bool isThere = false;
  (void)TryUnlessOutOfMemory([&] { isThere = cimClass.GetInstance(path, {}) != nullptr; });
  return isThere;
}

bool HasInstances(const ICIMClass& cimClass) {
  bool isEmpty = true;
  cimClass.EnumerateInstances([&isEmpty](const auto&) { return isEmpty = false; }, true, {});
  return !isEmpty;
}

}  // namespace

void TDocument::BeginContainer(const TElement& container, bool isGroup) {
  fHasBegun = true;
  if (isGroup) fGroup = nullptr;
  if (container.IsOneOf("IMETHODCALL", "METHODCALL", "EXPMETHODCALL")) {
    fIsInCall = true;
    if (fCall.fLine == 0) fCall = container.fPosition;
  } else if (container.IsOneOf("DECLARATION", "SIMPLERSP", "SIMPLEEXPRSP")) {
    fIsInCall = false;
  }
  if (container.IsOneOf("DECLARATION", "MESSAGE")) fIsInMessage = container.Is("MESSAGE");
  if (container.Is("METHODRESPONSE") && fResponse.fLine == 0) fResponse = container.fPosition;
}

void TDocument::AddStrayText(const TElement& holder) {
  fState.Warn(holder, "text in <" + std::string(holder.fName) +
                          "> is ignored: " + Shown(holder.fText.substr(0, kMostStrayText)));
}

void TDocument::AddObject(TElement&& object, std::size_t bytes) {
  fState.fMemory.BeginObject(bytes);
  try {
    Add(std::move(object), bytes);
  } catch (const TDocumentError& error) {
    if (error.fIsFatal) throw;
    fState.LeaveOut("<" + std::string(object.fName) + ">", error);
  }
}

void TDocument::Add(TElement&& object, std::size_t bytes) {
  if (object.IsOneOf("LOCALNAMESPACEPATH", "NAMESPACEPATH")) {
    BeginGroup(object);
  } else if (object.Is("QUALIFIER.DECLARATION")) {
    Group().AddQualifierDecl(object);
  } else if (object.Is("CLASS")) {
    Group().AddClass(std::move(object), bytes);
  } else if (object.Is("INSTANCE")) {
    Group().AddInstance(std::move(object), bytes);
  } else if (object.IsOneOf("VALUE.NAMEDOBJECT", "VALUE.NAMEDINSTANCE", "VALUE.OBJECT",
                            "VALUE.OBJECTWITHPATH", "VALUE.OBJECTWITHLOCALPATH",
                            "VALUE.INSTANCEWITHPATH")) {
    AddNamedObject(std::move(object), bytes);
  } else if (object.Is("ERROR")) {
    AddError(object);
  } else {
    AddValue(std::move(object), bytes);
  }
}

/// Objects after a path that names nothing are taken as objects without a path.
void TDocument::BeginGroup(const TElement& path) {
  fGroup = nullptr;
  const TElement* const host = FindHost(path);
  if (host != nullptr) fState.fHosts.AddOwn(*host);
  try {
    fGroup = &List(*NamespaceNameOf(path));
  } catch (TDocumentError& error) {
    if (!error.fIsFatal)
      error.fReason += std::string("; the objects after it are read into ") + kDefaultNamespace;
    throw;
  }
}

/// Names of objects are instances of which only the keys are known. Those in calls say what is
/// asked for. Values and names of classes are results in messages, or the state of an enumeration.
void TDocument::AddValue(TElement&& value, std::size_t bytes) {
  const bool isName = value.IsOneOf("INSTANCENAME", "INSTANCEPATH", "LOCALINSTANCEPATH",
                                    "OBJECTPATH", "VALUE.REFERENCE");
  if (isName && !fIsInCall) {
    AddName(std::move(value), bytes);
  } else if (value.Is("VALUE.REFARRAY")) {
    for (TElement& each : value.fChildren) {
      if (!fIsInCall && each.Is("VALUE.REFERENCE")) AddName(std::move(each), bytes);
      bytes = 0;  // of all of them
    }
  } else if (!isName && !(fIsInMessage && value.IsOneOf("VALUE", "VALUE.ARRAY", "VALUE.NULL",
                                                        "CLASSNAME", "CLASSPATH", "LOCALCLASSPATH",
                                                        "CORRELATOR", "RESPONSEDESTINATION"))) {
    value.Refuse("it is no object of a namespace");
  }
}

void TDocument::AddName(TElement&& path, std::size_t bytes) {
  const TElement* const name = path.Is("INSTANCENAME") ? &path : FindName(path);
  if (name == nullptr) path.Refuse("it names nothing");
  if (name->Is("CLASSNAME")) {
    if (!fIsInMessage) path.Refuse("it names a class, which is no object of a namespace");
    return;
  }
  TNamespaceBuilder& builder = BuilderFor(path);
  TElement object;
  object.fName = "OBJECTPATH";
  object.fPosition = path.fPosition;
  TElement& instance = object.fChildren.emplace_back();
  instance.fName = "INSTANCE";
  instance.fPosition = name->fPosition;
  instance.fAttributes.Add("CLASSNAME", name->Get("CLASSNAME"));
  object.fChildren.push_back(*name);
  builder.AddInstanceName(std::move(object), bytes + instance.Bytes());
}

void TDocument::AddNamedObject(TElement&& object, std::size_t bytes) {
  TNamespaceBuilder& builder = BuilderFor(object);
  TElement* const cimClass = FindChild(object, "CLASS");
  TElement* const first = cimClass != nullptr ? cimClass : FindChild(object, "INSTANCE");
  if (first == nullptr) object.Refuse("it has neither class nor instance");
  WarnOfOthers(object, *first, builder);
  if (cimClass != nullptr) {
    builder.AddClass(std::move(*cimClass), bytes);
  } else {
    builder.AddInstance(std::move(object), bytes);
  }
}

/// Warns of all but the object, one name and one namespace.
void TDocument::WarnOfOthers(const TElement& holder, const TElement& object, const TSpace& space) {
  const TElement* name = nullptr;
  const TElement* path = nullptr;
  for (const TElement& child : holder.fChildren) {
    const bool isObject = child.Is("CLASS") || child.Is("INSTANCE");
    const bool isPath = child.IsOneOf("LOCALNAMESPACEPATH", "NAMESPACEPATH");
    const TElement*& known = isPath ? path : name;
    const bool isTaken = &child == &object || (known == nullptr && (isPath || IsName(child)));
    if (isTaken) {
      if (&child != &object) known = &child;
      continue;
    }
    const std::string what =
        isObject ? Described(space, child) : "<" + std::string(child.fName) + ">";
    const char* const why = isObject                  ? "it follows another object in <"
                            : isPath || IsName(child) ? "it follows another name in <"
                                                      : "it does not belong into <";
    fState.Warn(child, what + " is ignored: " + why + std::string(holder.fName) + ">");
  }
}

/// Returns the builder of the namespace in the path of an object, else that of its group.
TNamespaceBuilder& TDocument::BuilderFor(const TElement& object) {
  const auto path = NamespaceNameOf(object);
  if (!path) return Group();
  fHasObjects = true;
  const TElement* const host = FindHost(object);
  if (host != nullptr) fState.fHosts.AddOwn(*host);
  return List(*path);
}

/// An error response does not invalidate the other responses.
void TDocument::AddError(const TElement& error) {
  const std::string* const description = error.Find("DESCRIPTION");
  if (fState.fErrors.GetCount() == 0) fFirstError = error.fPosition;
  const std::string text = "error " + Shown(error.Get("CODE")) +
                           (description == nullptr ? "" : ", " + Shown(*description));
  fState.fErrors.Add(text);
  fState.fDefects.Add(error.fPosition, "a response with " + text);
}

void TDocument::RequireObjects() const {
  if (fHasObjects) return;
  if (fState.fErrors.GetCount() != 0) {
    throw TDocumentError("a response with " + fState.fErrors.GetFirst(), fFirstError);
  }
  if (fCall.fLine != 0) throw TDocumentError("a request, not a response", fCall);
  if (fResponse.fLine != 0) throw TDocumentError("a response without objects", fResponse);
}

void TDocument::Complete() {
  RequireObjects();
  if (fListed.empty()) List(kDefaultNamespace);
  // References may add namespaces while their uses are noted.
  for (std::size_t i = 0; i < fBuilders.size(); ++i) fBuilders[i]->NoteUses();
  for (TNamespaceBuilder* each : fBuilders) each->MakeClasses();
  for (std::size_t i = 0; i < fBuilders.size(); ++i) fBuilders[i]->ResolveReferences();
  for (std::size_t i = 0; i < fBuilders.size(); ++i) fBuilders[i]->MakeInstances();
  for (TNamespaceBuilder* each : fBuilders) each->Reasons().Write(*each->GetNamespace(), fState);
  ReportLostReferences();
}

void TDocument::ReportLostReferences() {
  // Names often repeat the properties of their instances.
  std::set<std::pair<std::string, std::string>> reported;
  for (const TNotedReference& each : fState.fDefects.GetReferences()) {
    if (!IsLost(each)) continue;
    const std::string path = each.fReference.GetPath();
    if (!reported.emplace(each.fObject, each.fNamespace + ':' + path).second) continue;
    fState.fDefects.Add(each.fPosition, each.fObject,
                        "the reference leads nowhere: " + Plain(path));
  }
}

/// A class without declaration and instances is not in the document, so its instances are
/// elsewhere.
bool TDocument::IsLost(const TNotedReference& reference) {
  const auto target = fNamespaces.find(reference.fNamespace);
  const bool isElsewhere = target == fNamespaces.end() || !target->second.fIsListed ||
                           (!reference.fHost.empty() && !fState.fHosts.IsOwn(reference.fHost));
  if (isElsewhere) return false;
  const TNamespaceBuilder& builder = *target->second.fBuilder;
  const TReadClass* const named = builder.FindClass(reference.fReference.GetClassName());
  if (named == nullptr || HasInstance(*named->fClass, reference.fReference)) return false;
  // A reference can name the class that its property declares.
  for (const auto& each : NModel::WithSubclasses(named->fClass)) {
    if (HasInstance(*each, reference.fReference)) return false;
  }
  return builder.Declares(named->fClass->GetName({})) || HasInstances(*named->fClass);
}

void TDocument::ReportEnd(const TDocumentError& error) const {
  const bool isOfDocument =
      !error.fIsFatal && error.fStatus == kQDXStatusInvalidDataCollectionDocument;
  if (fHasBegun && isOfDocument) fState.fDefects.AddLast(error);
}

TNamespaceBuilder& TDocument::BuilderOf(const TElement& reference, TNamespaceBuilder& own) {
  const auto name = NamespaceNameOf(reference);
  return name ? *Entry(*name).fBuilder : own;
}

TSpace& TDocument::SpaceOf(const TElement& reference, TSpace& own) {
  const auto name = NamespaceNameOf(reference);
  if (!name) return own;
  return *Entry(*name).fBuilder;
}

TDocument::TEntry& TDocument::Entry(const std::string& name) {
  TEntry& entry = fNamespaces[name];
  if (fNamespaces.size() > kMaxNamespaces) {
    TDocumentError error("more than " + std::to_string(kMaxNamespaces) + " namespaces");
    error.fIsFatal = true;
    throw error;
  }
  if (!entry.fBuilder) {
    entry.fBuilder = std::make_unique<TNamespaceBuilder>(*this, fState, name);
    fBuilders.push_back(entry.fBuilder.get());
  }
  return entry;
}

boost::shared_ptr<TRepositoryProvider> TDocument::GetNamespaces() const {
  auto namespaces = boost::make_shared<TRepositoryProvider>("cimxml");
  for (const TNamespaceBuilder* each : fListed) namespaces->AddNamespace(each->GetNamespace());
  return namespaces;
}

TNamespaceBuilder& TDocument::List(const std::string& name) {
  TEntry& entry = Entry(name);
  if (!std::exchange(entry.fIsListed, true)) fListed.push_back(entry.fBuilder.get());
  return *entry.fBuilder;
}

TNamespaceBuilder& TDocument::Group() {
  fHasObjects = true;
  if (fGroup == nullptr) fGroup = &List(kDefaultNamespace);
  return *fGroup;
}

boost::shared_ptr<TRepositoryProvider> ReadDocument(const std::string& name, int descriptor,
                                                    const TReadingLimits& limits,
                                                    const TDefectListener& onDefect) {
  TDocument document(limits, onDefect);
  try {
    TInput input(descriptor, limits);
    ParseDocument(input, document, limits);
    document.Complete();
  } catch (const TDocumentError& error) {
    document.ReportEnd(error);
    const bool isOfFile = error.fStatus != kQDXStatusInvalidDataCollectionDocument;
    LogErrorAndThrow(error.fStatus, {"cimxml: ", name, isOfFile ? "" : AtPosition(error.fPosition),
                                     ": ", error.what()});
  }
  document.Report(name);
  return document.GetNamespaces();
}

}  // namespace NVORNQDX20::NCIMXML
