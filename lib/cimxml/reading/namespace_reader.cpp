// SPDX-License-Identifier: Apache-2.0
#include "namespace_reader.h"

#include <qdxcore/status.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <utility>

#include "document.h"
#include "object_path.h"
#include "object_readers.h"
#include "value_reader.h"
#include "xml/document_limits.h"

namespace NVORNQDX20::NCIMXML {
namespace {

/// Scope guard: one more class is being declared.
class TDeclaringScope {
 public:
  TDeclaringScope(TReadingState& state, const TNamespaceReader& ns, const std::string& name)
      : fState(state) {
    fState.fDeclaring.push_back({&ns, name, {}});
  }
  ~TDeclaringScope() { fState.fDeclaring.pop_back(); }
  TDeclaringScope(const TDeclaringScope&) = delete;
  TDeclaringScope& operator=(const TDeclaringScope&) = delete;

 private:
  TReadingState& fState;
};

std::string NameOf(const TReadingState::TDeclaring& declaring) {
  const auto& cimClass = declaring.fClass.fClass;
  return Shown(cimClass ? cimClass->GetName({}) : declaring.fName);
}

}  // namespace

void TReadingState::AddHeld(std::size_t bytes, const TElement& element) {
  fHeldBytes += bytes;
  if (fHeldBytes + fObjectBytes > kMaxHeldBytes) throw TooMuchHeld(element.fPosition);
}

std::size_t TReadingState::GetRoom() const {
  return kMaxHeldBytes - std::min(fHeldBytes, kMaxHeldBytes);
}

TNamespaceReader::TNamespaceReader(TDocument& document, TReadingState& state,
                                   const std::string& name)
    : fDocument(document), fState(state), fNamespace(MakeRepositoryNamespace(name)) {}

void TNamespaceReader::AddQualifierDecl(const TElement& element) {
  const auto decl = ReadQualifierDecl(*this, element);
  AsPartOf(element, "qualifier " + Shown(decl->GetName()), [&] { decl->Commit(); });
}

void TNamespaceReader::AddClass(TElement&& element, std::size_t bytes) {
  const std::string name = element.Get("NAME");
  if (fClasses.count(name) != 0 || fSources.count(name) != 0) {
    element.Refuse("class " + Shown(name) + " is declared twice");
  }
  fState.BeginObject(0);
  fState.AddHeld(bytes, element);
  fSourceOrder.push_back(name);
  fSources[name].fElement = std::move(element);
}

void TNamespaceReader::AddInstance(TElement&& object, std::size_t bytes) {
  try {
    ReadInstance(*this, object);
  } catch (const TNotDeclaredYet&) {
    fState.BeginObject(0);
    fState.AddHeld(bytes, object);
    const TElement& waiting = fWaitingInstances.emplace_back(std::move(object));
    NoteUse(InstanceOf(waiting).Get("CLASSNAME"), waiting);
  }
}

void TNamespaceReader::NoteReferences() {
  for (const TElement& object : fWaitingInstances) NoteReferencesIn(object);
}

void TNamespaceReader::NoteReferencesIn(const TElement& element) {
  for (const TElement& child : element.fChildren) {
    if (!child.Is("VALUE.REFERENCE")) {
      NoteReferencesIn(child);
      continue;
    }
    TNamespaceReader& target = fDocument.NamespaceOf(child, *this);
    const TElement& name = NameOf(child);
    target.NoteUse(ClassNameOf(name), name);
    target.NoteReferencesIn(name);
  }
}

void TNamespaceReader::BuildClasses() {
  for (const std::string& name : fSourceOrder) {
    const auto source = fSources.find(name);
    fState.BeginObject(0);
    if (source != fSources.end()) ClassNamed(name, source->second.fElement);
  }
}

void TNamespaceReader::BuildInstances() {
  for (const TElement& object : fWaitingInstances) {
    fState.BeginObject(0);
    ReadInstance(*this, object);
  }
}

TReadClass TNamespaceReader::ClassNamed(const std::string& name, const TElement& usedBy) {
  const auto found = fClasses.find(name);
  if (found != fClasses.end()) return found->second;
  for (const auto& declaring : fState.fDeclaring) {
    const bool isSame =
        declaring.fNamespace == this && NModel::EqualIgnoringCase(declaring.fName, name);
    if (!isSame) continue;
    const TReadingState::TDeclaring& user = fState.fDeclaring.back();
    if (&declaring == &user && declaring.fClass.fClass) return declaring.fClass;
    usedBy.Refuse("class " + Shown(name) + " needs " +
                  (&declaring == &user ? "itself" : "class " + NameOf(user) + ", which needs it,") +
                  " to be declared first");
  }
  return Declare(name, usedBy);
}

TReadClass TNamespaceReader::Declare(const std::string& name, const TElement& usedBy) {
  if (fState.fDeclaring.size() >= kMaxClassDepth)
    usedBy.Refuse("classes nested deeper than " + std::to_string(kMaxClassDepth));
  const TDeclaringScope scope(fState, *this, name);
  const bool isDeclared = fSources.count(name) != 0;
  if (!isDeclared && !fState.fIsComplete) throw TNotDeclaredYet();
  TReadClass read = Measured(isDeclared ? ReadSource(name) : Synthesize(name, usedBy), usedBy);
  fClasses.emplace(name, read);
  fSources.erase(name);
  return read;
}

boost::shared_ptr<ICIMClass> TNamespaceReader::ReadSource(const std::string& name) {
  TSource& source = fSources.at(name);
  if (source.fIsWaiting && !fState.fIsComplete) throw TNotDeclaredYet();
  source.fIsWaiting = true;  // until the end of the document, unless it succeeds now
  return ReadClass(*this, source.fElement);
}

boost::shared_ptr<ICIMClass> TNamespaceReader::Synthesize(const std::string& name,
                                                          const TElement& usedBy) {
  std::vector<const TElement*> uses;
  const auto noted = fUses.find(name);
  if (noted != fUses.end()) uses = noted->second;
  uses.push_back(&usedBy);
  return SynthesizeClass(*this, name, uses);
}

TReadClass TNamespaceReader::Measured(const boost::shared_ptr<ICIMClass>& cimClass,
                                      const TElement& usedBy) const {
  TReadClass read;
  read.fClass = cimClass;
  std::vector<boost::shared_ptr<ICIMPropertyDecl>> decls;
  cimClass->EnumeratePropertyDecls(TAddToVectorCallback(decls), {});
  read.fProperties = decls.size();
  if (!cimClass->IsRootClass({})) {
    read.fDepth += fClasses.at(cimClass->GetSuperclass({})->GetName({})).fDepth;
  }
  if (read.fDepth > kMaxClassDepth)
    usedBy.Refuse("more than " + std::to_string(kMaxClassDepth - 1) + " superclasses");
  constexpr std::size_t kClassBytes = 1024;
  fState.AddHeld(kClassBytes, usedBy);
  fState.AddValues(2 * read.fProperties, usedBy);  // a class has a table of its properties
  return read;
}

boost::shared_ptr<ICIMQualifierDecl> TNamespaceReader::QualifierDeclFor(const TElement& qualifier) {
  try {
    return fNamespace->GetQualifierDecl(qualifier.Get("NAME"), {});
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() != kQDXStatusNotFound) throw;
  }
  auto decl = ReadQualifierDecl(*this, qualifier);
  decl->Commit();
  return decl;
}

boost::shared_ptr<ICIMQualifierDecl> TNamespaceReader::KeyDecl() {
  TElement key;
  key.fName = "QUALIFIER";
  key.fAttributes = {{"NAME", "Key"}, {"TYPE", "boolean"}, {"OVERRIDABLE", "false"}};
  return QualifierDeclFor(key);
}

}  // namespace NVORNQDX20::NCIMXML
