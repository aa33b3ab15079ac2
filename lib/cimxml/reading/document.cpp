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

}  // namespace

void TDocument::BeginGroup(const TElement&) { fGroup = nullptr; }

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
    object.Refuse("it is no object of a namespace");
  }
}

void TDocument::AddNamedObject(TElement&& object, std::size_t bytes) {
  const auto path = NamespaceNameOf(object);
  TNamespaceBuilder& builder = path ? List(*path) : Group();
  TElement* const cimClass = FindChild(object, "CLASS");
  if (cimClass != nullptr) {
    builder.AddClass(std::move(*cimClass), bytes);
  } else if (FindChild(object, "INSTANCE") != nullptr) {
    builder.AddInstance(std::move(object), bytes);
  } else {
    object.Refuse("it has neither class nor instance");
  }
}

/// An error response does not invalidate the other responses.
void TDocument::AddError(const TElement& error) {
  const std::string* const description = error.Find("DESCRIPTION");
  if (fState.fErrors.GetCount() == 0) fFirstError = error.fPosition;
  fState.fErrors.Add("error " + Shown(error.Get("CODE")) +
                     (description == nullptr ? "" : ", " + Shown(*description)));
}

void TDocument::Complete() {
  if (fState.fErrors.GetCount() != 0 && !fHasObjects) {
    throw TDocumentError("a response with " + fState.fErrors.GetFirst(), fFirstError);
  }
  if (fListed.empty()) List(kDefaultNamespace);
  // References may add namespaces while their uses are noted.
  for (std::size_t i = 0; i < fBuilders.size(); ++i) fBuilders[i]->NoteUses();
  for (TNamespaceBuilder* each : fBuilders) each->MakeClasses();
  for (std::size_t i = 0; i < fBuilders.size(); ++i) fBuilders[i]->ResolveReferences();
  for (std::size_t i = 0; i < fBuilders.size(); ++i) fBuilders[i]->MakeInstances();
}

TNamespaceBuilder& TDocument::BuilderOf(const TElement& reference, TNamespaceBuilder& own) {
  const auto name = NamespaceNameOf(reference);
  return name ? *Entry(*name).fBuilder : own;
}

TSpace& TDocument::SpaceOf(const TElement& reference, TSpace& own) {
  const auto name = NamespaceNameOf(reference);
  return name ? *Entry(*name).fBuilder : own;
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
  if (fGroup == nullptr) fGroup = &List(kDefaultNamespace);
  return *fGroup;
}

boost::shared_ptr<TRepositoryProvider> ReadDocument(const std::string& name, int descriptor) {
  TDocument document;
  try {
    TInput input(descriptor);
    ParseDocument(input, document);
    document.Complete();
  } catch (const TDocumentError& error) {
    const bool isOfFile = error.fStatus != kQDXStatusInvalidDataCollectionDocument;
    LogErrorAndThrow(error.fStatus, {"cimxml: ", name, isOfFile ? "" : AtPosition(error.fPosition),
                                     ": ", error.what()});
  }
  document.Report(name);
  return document.GetNamespaces();
}

}  // namespace NVORNQDX20::NCIMXML
