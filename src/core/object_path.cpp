// SPDX-License-Identifier: Apache-2.0
// The text form of a reference.
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include "value_payload.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace NVORNQDX20 {
namespace {

/// References within references: far more than any schema has, far less than a main thread's stack
/// holds.
constexpr int kMaxDepth = 1000;

/// Returns the bytes of a word that are this character: the high bit of each. Those above the first
/// may be wrong.
std::uint64_t BytesThatAre(char c, std::uint64_t word) {
  constexpr std::uint64_t kEach = 0x0101010101010101U;
  const std::uint64_t difference = word ^ kEach * static_cast<unsigned char>(c);
  return (difference - kEach) & ~difference & (0x80 * kEach);
}

/// Returns the size of the text if there is neither. Eight characters at a time: the processor
/// cannot foresee when a loop over the characters of a value ends.
std::size_t FindQuoteOrBackslash(std::string_view text, std::size_t from) {
  std::size_t at = from;
  for (; at + sizeof(std::uint64_t) <= text.size(); at += sizeof(std::uint64_t)) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + at, sizeof(word));
    const std::uint64_t found = BytesThatAre('"', word) | BytesThatAre('\\', word);
    if (found != 0) return at + static_cast<std::size_t>(__builtin_ctzll(found)) / 8;
  }
  while (at < text.size() && text[at] != '"' && text[at] != '\\') ++at;
  return at;
}

/// Reads one text, the paths nested in it included.
class TObjectPathParser {
 public:
  TObjectPathParser(boost::shared_ptr<ICIMNamespace> ns, const TOptionsMap& options,
                    const std::string& path, std::uint64_t& position)
      : fNamespace(std::move(ns)), fOptions(options), fPath(path), fPosition(position) {}

  void Parse(TCIMReferenceImpl& target) {
    const bool nested = fPosition != 0;
    if (nested) ++fPosition;  // over the opening quote
    const std::size_t dot = fPath.find('.', fPosition);
    if (dot == std::string::npos) {
      target.SetClassName(std::string(fPath.substr(std::min(fPosition, fPath.size()))));
      fPosition = fPath.size();
      return;
    }
    const boost::shared_ptr<ICIMClass> cimClass =
        fNamespace->GetClass(std::string(fPath.substr(fPosition, dot - fPosition)), fOptions);
    target.SetClass(cimClass);
    fPosition = dot;
    while (!AtEnd(nested)) ParseBinding(target, cimClass);
  }

 private:
  bool AtEnd(bool nested) const {
    // A nested path that ran into the end of the text leaves the position one beyond it.
    return fPosition >= fPath.size() || (nested && fPath[fPosition] == '"');
  }

  void ParseBinding(TCIMReferenceImpl& target, const boost::shared_ptr<ICIMClass>& cimClass) {
    if (fPath[fPosition] != ',' && fPath[fPosition] != '.') {
      Refuse("Reference missing '.' or ',', path=");
    }
    const std::size_t equals = fPath.find('=', fPosition + 1);
    if (equals == std::string::npos) Refuse("Reference missing property value, path=");
    std::string name(fPath.substr(fPosition + 1, equals - fPosition - 1));
    const boost::shared_ptr<const ICIMPropertyDecl> decl = cimClass->GetPropertyDecl(name, {});

    fPosition = equals + 1;
    if (fPosition >= fPath.size() || fPath[fPosition] != '"') {
      Refuse("Reference missing opening '\"', path=");
    }
    // The declaration is asked for again: a class sees both calls.
    target.AddKeyValue(std::move(name), ParseValue(*decl));
    ++fPosition;  // over the closing quote
  }

  TCIMValue ParseValue(const ICIMPropertyDecl& decl) {
    if (decl.GetDefaultValue().IsReference()) return ParseNestedPath();
    std::string text = ParseQuotedText();
    const TCIMValue::TCIMType type = decl.GetType();
    if (type == TCIMValue::TCIMType::kCIMTypeString) {
      return TCIMStringValueImpl::ToValue(std::move(text));
    }
    return TCIMValue(type, text, fNamespace);
  }

  /// Reads it into a value at once: a copy would cost as much as all that is nested in it.
  TCIMValue ParseNestedPath() {
    if (fDepth == kMaxDepth) Refuse("Reference nested too deep, path=");
    ++fDepth;
    auto nested = std::make_unique<TCIMReferenceValueImpl>(TCIMReference(fNamespace, fOptions));
    Parse(nested->Body());
    --fDepth;
    return TCIMReferenceValueImpl::ToValue(std::move(nested));
  }

  /// From the opening quote up to the closing one, where the position is left.
  std::string ParseQuotedText() {
    const std::size_t start = fPosition + 1;
    std::size_t at = FindQuoteOrBackslash(fPath, start);
    std::string text(fPath.substr(start, at - start));
    for (; at < fPath.size() && fPath[at] != '"'; ++at) {
      if (fPath[at] == '\\' && IsQuotable(at + 1)) ++at;
      text += fPath[at];
    }
    fPosition = at;
    if (at == fPath.size()) Refuse("Reference missing closing '\"', path=");
    return text;
  }

  bool IsQuotable(std::size_t position) const {
    return position < fPath.size() && (fPath[position] == '"' || fPath[position] == '\\');
  }

  [[noreturn]] void Refuse(std::string_view reason) const {
    LogErrorAndThrow(kQDXStatusInvalidReference, {reason, fPath});
  }

  const boost::shared_ptr<ICIMNamespace> fNamespace;
  const TOptionsMap& fOptions;
  const std::string_view fPath;  // not a reference, from which each use would load it again
  std::uint64_t& fPosition;
  int fDepth = 0;
};

void AppendQuoted(std::string& path, const std::string& text) {
  if (text.find_first_of("\"\\") == std::string::npos) {
    path += text;
    return;
  }
  for (const char c : text) {
    if (c == '"' || c == '\\') path += '\\';
    path += c;
  }
}

void AppendPath(std::string& path, const TCIMReferenceImpl& reference) {
  path += reference.GetClassName();
  char separator = '.';
  for (const auto& [name, value] : reference.GetKeyBindings()) {
    path += separator;
    path += name;
    path += "=\"";
    if (const TCIMReference* const nested = value.FindReference()) {
      AppendPath(path, *nested->GetBody());  // keeps its quotes as they are
    } else if (const std::string* const text = value.FindString()) {
      AppendQuoted(path, *text);
    } else {
      AppendQuoted(path, value.ToString(10));
    }
    path += '"';
    separator = ',';
  }
}

}  // namespace

void TCIMReferenceImpl::ParsePath(TCIMReferenceImpl* target, const std::string& path,
                                  std::uint64_t& position) {
  TObjectPathParser(fNamespace, fOptions, path, position).Parse(*target);
}

std::string TCIMReferenceImpl::GetPath() const {
  std::string path;
  path.reserve(128);
  AppendPath(path, *this);
  return path;
}

}  // namespace NVORNQDX20
