// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/string_kind.h>

#include <qdxcore/status.h>
#include <qdxmodel/names.h>
#include <qdxmodel/type.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace NVORNQDX20::NDescribe {
namespace {

using TType = TCIMValue::TCIMType;

// By EStringKind.
constexpr std::string_view kKeywords[] = {"", "char16", "object", "instance"};
static_assert(std::size(kKeywords) == static_cast<std::size_t>(EStringKind::kEmbeddedInstance) + 1);

constexpr const char* kEmbeddedInstanceName = "EmbeddedInstance";
constexpr const char* kEmbeddedObjectName = "EmbeddedObject";

/// What the qualifiers of a declaration say.
struct TFindings {
  EStringKind fOwn = EStringKind::kText;
  bool fIsInstance = false;
  bool fIsObject = false;
  bool fIsOverride = false;

  void Add(const std::string& name, const TCIMValue& value) {
    const std::string* const text = value.FindString();
    const bool hasText = text != nullptr && !text->empty();
    if (hasText && IsStringKindQualifier(name)) fOwn = StringKindOf(*text);
    if (hasText && NModel::EqualIgnoringCase(name, kEmbeddedInstanceName)) fIsInstance = true;
    if (NModel::EqualIgnoringCase(name, kEmbeddedObjectName)) fIsObject = value == TCIMValue(true);
    if (NModel::EqualIgnoringCase(name, "Override")) fIsOverride = true;
  }

  EStringKind Kind() const {
    if (fOwn != EStringKind::kText) return fOwn;
    if (fIsInstance) return EStringKind::kEmbeddedInstance;
    return fIsObject ? EStringKind::kEmbeddedObject : EStringKind::kText;
  }
};

template <typename TQualified>
TFindings FindingsOf(const TQualified& decl) {
  TFindings findings;
  decl.EnumerateQualifiers([&findings](const boost::shared_ptr<ICIMQualifier>& qualifier) {
    findings.Add(qualifier->GetDecl()->GetName(), qualifier->GetValue());
    return true;
  });
  return findings;
}

bool IsString(TType type) { return NModel::ElementType(type) == TType::kCIMTypeString; }

/// Adds a qualifier that may be inherited.
void AddInherited(TFindings& findings, const ICIMPropertyDecl& decl, const char* name) {
  try {
    const auto qualifier = decl.GetQualifier(name);
    if (qualifier) findings.Add(name, qualifier->GetValue());
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() == kQDXStatusOutOfMemory) throw;
  }
}

boost::shared_ptr<ICIMQualifierDecl> Declared(ICIMNamespace& ns) {
  try {
    return ns.GetQualifierDecl(kStringKindQualifier, {});
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() != kQDXStatusNotFound) throw;
  }
  auto declared = ns.CreateQualifierDecl(kStringKindQualifier, TCIMValue(TType::kCIMTypeString, 0),
                                         kScopeProperty | kScopeMethod | kScopeParameter, 0, {});
  declared->Commit();
  return declared;
}

}  // namespace

std::string KeywordOf(EStringKind kind) {
  return std::string(kKeywords[static_cast<std::size_t>(kind)]);
}

EStringKind StringKindOf(std::string_view keyword) {
  const auto* const found = std::find(std::begin(kKeywords), std::end(kKeywords), keyword);
  if (found == std::end(kKeywords)) return EStringKind::kText;
  return static_cast<EStringKind>(std::distance(std::begin(kKeywords), found));
}

bool IsStringKindQualifier(std::string_view name) {
  return NModel::EqualIgnoringCase(name, kStringKindQualifier);
}

EStringKind StringKindOf(const ICIMPropertyDecl& decl) {
  if (!IsString(decl.GetType())) return EStringKind::kText;
  TFindings findings = FindingsOf(decl);
  if (findings.fIsOverride && findings.Kind() == EStringKind::kText) {
    AddInherited(findings, decl, kEmbeddedInstanceName);
    AddInherited(findings, decl, kEmbeddedObjectName);
  }
  return findings.Kind();
}

EStringKind StringKindOf(const ICIMParameterDecl& decl) {
  return IsString(decl.GetType()) ? FindingsOf(decl).Kind() : EStringKind::kText;
}

EStringKind StringKindOf(const ICIMMethodDecl& decl) {
  return IsString(decl.GetReturnType()) ? FindingsOf(decl).Kind() : EStringKind::kText;
}

void AddStringKind(ICIMNamespace& ns, ICIMNamedElement& element, EStringKind kind) {
  element.AddQualifier(Declared(ns), TCIMValue(KeywordOf(kind)))->Commit();
}

}  // namespace NVORNQDX20::NDescribe
