// SPDX-License-Identifier: Apache-2.0
/// What a string was declared as. TCIMValue has neither characters nor embedded objects: these
/// travel as strings, and a qualifier of their declaration keeps what they are.
#ifndef QDXDESCRIBE_STRING_KIND_H_
#define QDXDESCRIBE_STRING_KIND_H_

#include <qdxcore/interfaces.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace NVORNQDX20::NDescribe {

enum class EStringKind : std::uint8_t {
  kText,
  kCharacter,         ///< Declared as char16.
  kEmbeddedObject,    ///< Contains a class or an instance as text.
  kEmbeddedInstance,  ///< Contains an instance as text.
};

/// A string: "char16", "object" or "instance". Subclasses do not inherit it. Documents contain the
/// kind in place of the qualifier.
inline constexpr const char* kStringKindQualifier = "VORNSG_StringKind";

/// Returns the text of the qualifier; empty for kText.
std::string KeywordOf(EStringKind kind);
/// Returns kText for an unknown keyword.
EStringKind StringKindOf(std::string_view keyword);

bool IsStringKindQualifier(std::string_view name);

/// Returns the kind of a declaration according to this qualifier or, without it, to the qualifiers
/// EmbeddedInstance and EmbeddedObject (DMTF DSP0004), also inherited ones if the declaration has
/// the qualifier Override. Returns kText for other types than strings and arrays of strings.
EStringKind StringKindOf(const ICIMPropertyDecl& decl);
EStringKind StringKindOf(const ICIMParameterDecl& decl);
/// Returns the kind of what the method returns.
EStringKind StringKindOf(const ICIMMethodDecl& decl);

/// Adds the qualifier to a declaration that is not committed, and declares it in its namespace if
/// that has not. REQUIRES: the kind is not kText.
void AddStringKind(ICIMNamespace& ns, ICIMNamedElement& element, EStringKind kind);

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_STRING_KIND_H_
