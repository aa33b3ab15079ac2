// SPDX-License-Identifier: Apache-2.0
#include "document.h"

#include <qdxcimxml/document_reader.h>
#include <qdxcore/logger.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

#include <boost/make_shared.hpp>

#include "object_path.h"
#include "xml/document_limits.h"
#include "xml/input.h"

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr char kDefaultNamespace[] = "root/cimv2";

bool IsOneOf(const TElement& element, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), element.fName) != names.end();
}

TElement* FindChild(TElement& object, std::string_view name) {
  const auto found = std::find_if(object.fChildren.begin(), object.fChildren.end(),
                                  [&](const TElement& child) { return child.Is(name); });
  return found == object.fChildren.end() ? nullptr : &*found;
}

std::string At(const TPosition& position) {
  return ": line " + std::to_string(position.fLine) + ", column " +
         std::to_string(position.fColumn);
}

}  // namespace

void TDocument::BeginGroup(const TElement& group) {
  fGroup = nullptr;
  fHasObjectPaths = group.Is("DECLGROUP.WITHPATH");
}

void TDocument::AddObject(TElement&& object, std::size_t bytes) {
  fState.BeginObject(bytes);
  fHasObjects = fHasObjects || !IsOneOf(object, {"ERROR", "PARAMVALUE"});
  if (IsOneOf(object, {"LOCALNAMESPACEPATH", "NAMESPACEPATH"})) {
    fGroup = &List(*NamespaceNameOf(object));
  } else if (object.Is("QUALIFIER.DECLARATION")) {
    Group().AddQualifierDecl(object);
  } else if (object.Is("CLASS")) {
    Group().AddClass(std::move(object), bytes);
  } else if (object.Is("INSTANCE")) {
    Group().AddInstance(std::move(object), bytes);
  } else if (IsOneOf(object, {"VALUE.NAMEDOBJECT", "VALUE.NAMEDINSTANCE", "VALUE.OBJECT",
                              "VALUE.OBJECTWITHPATH", "VALUE.OBJECTWITHLOCALPATH",
                              "VALUE.INSTANCEWITHPATH"})) {
    AddNamedObject(std::move(object), bytes);
  } else if (object.Is("ERROR")) {
    AddError(object);
  } else if (!object.Is("PARAMVALUE")) {  // the state of an enumeration
    object.Refuse("<" + std::string(object.fName) + "> is no object of a namespace");
  }
}

void TDocument::EndGroup() {
  if (!fHasObjectPaths) Group();
}

void TDocument::AddNamedObject(TElement&& object, std::size_t bytes) {
  const auto path = NamespaceNameOf(object);
  TNamespaceReader& ns = path ? List(*path) : Group();
  TElement* const cimClass = FindChild(object, "CLASS");
  if (cimClass != nullptr) {
    ns.AddClass(std::move(*cimClass), bytes);
  } else if (FindChild(object, "INSTANCE") != nullptr) {
    ns.AddInstance(std::move(object), bytes);
  } else {
    object.Refuse("<" + std::string(object.fName) + "> has neither class nor instance");
  }
}

/// An error response does not invalidate the other responses.
void TDocument::AddError(const TElement& error) {
  const std::string* const description = error.Find("DESCRIPTION");
  if (fErrors.GetCount() == 0) fFirstError = error.fPosition;
  fErrors.Add("error " + Shown(error.Get("CODE")) +
              (description == nullptr ? "" : ", " + Shown(*description)));
}

void TDocument::Complete() {
  if (fErrors.GetCount() != 0 && !fHasObjects) {
    throw TDocumentError("a response with " + fErrors.GetFirst(), fFirstError);
  }
  fState.fIsComplete = true;
  for (TNamespaceReader* ns : fListed) ns->NoteReferences();
  for (TNamespaceReader* ns : fListed) ns->BuildClasses();
  for (TNamespaceReader* ns : fListed) ns->BuildInstances();
}

TNamespaceReader& TDocument::NamespaceOf(const TElement& reference, TNamespaceReader& own) {
  const auto name = NamespaceNameOf(reference);
  return name ? *Entry(*name).fBuilder : own;
}

TDocument::TEntry& TDocument::Entry(const std::string& name) {
  TEntry& entry = fNamespaces[name];
  if (fNamespaces.size() > kMaxNamespaces)
    throw TDocumentError("more than " + std::to_string(kMaxNamespaces) + " namespaces");
  if (!entry.fBuilder) entry.fBuilder = std::make_unique<TNamespaceReader>(*this, fState, name);
  return entry;
}

boost::shared_ptr<TRepositoryProvider> TDocument::GetNamespaces() const {
  auto namespaces = boost::make_shared<TRepositoryProvider>("cimxml");
  for (const TNamespaceReader* ns : fListed) namespaces->AddNamespace(ns->GetNamespace());
  return namespaces;
}

TNamespaceReader& TDocument::List(const std::string& name) {
  TEntry& entry = Entry(name);
  if (!std::exchange(entry.fIsListed, true)) fListed.push_back(entry.fBuilder.get());
  return *entry.fBuilder;
}

TNamespaceReader& TDocument::Group() {
  if (fGroup == nullptr) fGroup = &List(kDefaultNamespace);
  return *fGroup;
}

void TDocument::Report(const std::string& name) const {
  fErrors.Report("responses are errors in", name);
  fState.fDuplicates.Report("instances with the keys of another one were left out of", name);
  fState.fContradictions.Report("instances have another class or other keys than their names in",
                                name);
  fState.fUnheldDateTimes.Report("date-times that cannot be held were read as null from", name);
}

boost::shared_ptr<TRepositoryProvider> ReadDocument(const std::string& name, int descriptor) {
  TDocument document;
  try {
    TInput input(descriptor);
    ParseDocument(input, document);
    document.Complete();
  } catch (const TDocumentError& error) {
    const bool isOfFile = error.fStatus != kQDXStatusInvalidDataCollectionDocument;
    LogErrorAndThrow(error.fStatus,
                     {"cimxml: ", name, isOfFile ? "" : At(error.fPosition), ": ", error.what()});
  }
  document.Report(name);
  return document.GetNamespaces();
}

}  // namespace NVORNQDX20::NCIMXML
