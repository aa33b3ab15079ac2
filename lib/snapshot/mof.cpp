// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/mof.h>

#include <qdxmodel/names.h>
#include <qdxmodel/type.h>
#include <qdxmodel/visit.h>
#include <qdxrepository/repository.h>
#include <qdxsystem/utf8.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string_view>
#include <type_traits>

#include <boost/algorithm/string/join.hpp>

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;
using NDescribe::EStringKind;
using TTexts = std::vector<std::string>;

constexpr std::size_t kLineWidth = 90;
constexpr std::size_t kDateTimeLength = 25;

struct TFlagName {
  std::uint32_t fBit;
  const char* fName;
};

constexpr TFlagName kScopeNames[] = {
    {kScopeClass, "class"},          {kScopeAssociation, "association"},
    {kScopeReference, "reference"},  {kScopeProperty, "property"},
    {kScopeMethod, "method"},        {kScopeParameter, "parameter"},
    {kScopeIndication, "indication"}};

/// Returns the escape sequence of a character; empty for one that is written as it is.
std::string EscapeOf(char32_t character) {
  switch (character) {
    case '\b':
      return "\\b";
    case '\t':
      return "\\t";
    case '\n':
      return "\\n";
    case '\f':
      return "\\f";
    case '\r':
      return "\\r";
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    default:
      break;
  }
  // Those above U+FFFF have no escape sequence, and need none.
  const bool directs = (character >= 0x202a && character <= 0x202e) ||
                       (character >= 0x2066 && character <= 0x2069) || character == 0x200e ||
                       character == 0x200f || character == 0x061c;
  if (!directs && !IsControl(character)) return "";
  // Always four digits: a digit may follow in the text.
  char text[sizeof "\\x0000"];
  std::snprintf(text, sizeof text, "\\x%04X", static_cast<unsigned>(character & 0xffff));
  return text;
}

/// Returns the strings, each in quotes, into which a text is cut: after line ends, and after blanks
/// if it gets long. MOF joins strings that follow each other.
TTexts QuotedPieces(std::string_view text, std::size_t width) {
  TTexts pieces{"\""};
  while (!text.empty()) {
    const TUTF8Character character = TakeCharacter(text);
    const std::string escape =
        character.fCodePoint ? EscapeOf(*character.fCodePoint) : "\xEF\xBF\xBD";
    pieces.back() += escape.empty() ? std::string(character.fBytes) : escape;
    const bool canCut =
        escape == "\\n" || (character.fBytes == " " && pieces.back().size() >= width);
    if (canCut && !text.empty()) {
      pieces.back() += '"';
      pieces.emplace_back("\"");
    }
  }
  pieces.back() += '"';
  return pieces;
}

std::string Literal(bool value) { return value ? "true" : "false"; }
std::string Literal(const std::string& value) { return QuotedForMOF(value); }
std::string Literal(const TCIMReference& value) { return QuotedForMOF(value.GetPath()); }

std::string Literal(const TCIMDateTime& value) {
  const std::string text = value.IsNull() ? "" : value.ToString();
  // Years and days of too many digits make a longer text, which is no date-time.
  return text.size() == kDateTimeLength ? QuotedForMOF(text) : "null";
}

template <typename T>
std::string Literal(T number) {
  char text[64];
  std::string literal(text, std::to_chars(text, std::end(text), number).ptr);
  if constexpr (std::is_floating_point_v<T>) {
    if (!std::isfinite(number)) return "null /* " + literal + " */";
    if (literal.find('.') == std::string::npos) {
      literal.insert(std::min(literal.find('e'), literal.size()), ".0");
    }
  }
  return literal;
}

/// Returns a text that is declared as a character in single quotes.
std::string CharacterText(const std::string& text) {
  std::string_view rest = text;
  const auto codePoint = rest.empty() ? std::nullopt : TakeCharacter(rest).fCodePoint;
  constexpr char32_t kLast = 0xFFFF;
  if (!codePoint || *codePoint > kLast || !rest.empty()) return "null /* no character */";
  const std::string escape = text == "'" ? "\\'" : EscapeOf(*codePoint);
  return "'" + (escape.empty() ? text : escape) + "'";
}

/// Returns a value without its parentheses or braces.
std::string ScalarText(const TCIMValue& value, bool isCharacter = false) {
  if (value.IsNull()) return "null";
  const std::string* const text = isCharacter ? value.FindString() : nullptr;
  if (text != nullptr) return CharacterText(*text);
  return NModel::VisitScalar(value, [](const auto& native) { return Literal(native); });
}

/// Returns the texts with `between` them; in a line of their own each if one line is too short.
std::string Listed(const TTexts& texts, const std::string& between, std::size_t indent) {
  std::string line = boost::algorithm::join(texts, between + " ");
  if (texts.size() < 2 || indent + line.size() <= kLineWidth) return line;
  const std::string end = "\n" + std::string(indent, ' ');
  return end + boost::algorithm::join(texts, between + end);
}

std::string StringText(const std::string& text, std::size_t indent) {
  return Listed(QuotedPieces(text, kLineWidth - indent - 20), "", indent);
}

/// Returns "{...}"; the value must have elements.
std::string ArrayText(const std::vector<TCIMValue>& elements, std::size_t indent,
                      bool areCharacters = false) {
  TTexts texts;
  texts.reserve(elements.size());
  for (const TCIMValue& element : elements) texts.push_back(ScalarText(element, areCharacters));
  return "{" + Listed(texts, ",", indent) + "}";
}

bool IsEmptyArray(const TCIMValue& value) {
  if (value.IsNull() || !value.IsArray()) return false;
  const std::vector<TCIMValue>& elements = value;
  return elements.empty();
}

std::string InitializerText(const TCIMValue& value, std::size_t indent,
                            EStringKind kind = EStringKind::kText) {
  const bool isCharacter = kind == EStringKind::kCharacter;
  if (value.IsNull()) return "";
  if (IsEmptyArray(value)) return " /* = an empty array */";
  if (value.IsArray()) return " = " + ArrayText(value, indent, isCharacter);
  const std::string* const text = isCharacter ? nullptr : value.FindString();
  return " = " + (text != nullptr ? StringText(*text, indent) : ScalarText(value, isCharacter));
}

std::string QualifierText(const TQualifierValue& qualifier, std::size_t indent) {
  const TCIMValue& value = qualifier.fValue;
  if (value == TCIMValue(true)) return qualifier.fName;
  if (IsEmptyArray(value)) return qualifier.fName + " /* an empty array */";
  if (value.IsNull()) return qualifier.fName + " (null)";
  if (value.IsArray()) return qualifier.fName + " " + ArrayText(value, indent + 2);
  const std::string* const text = value.FindString();
  return qualifier.fName + " (" +
         (text != nullptr ? StringText(*text, indent + 2) : ScalarText(value)) + ")";
}

/// Returns "[...]" and `end`, or nothing. `first` is a qualifier that comes before all others.
std::string QualifierList(const std::vector<TQualifierValue>& qualifiers, std::size_t indent,
                          const std::string& first, const std::string& end) {
  TTexts texts;
  if (!first.empty()) texts.push_back(first);
  for (const TQualifierValue& each : qualifiers) {
    if (first.empty() || !NModel::EqualIgnoringCase(each.fName, first)) {
      texts.push_back(QualifierText(each, indent + 2));
    }
  }
  if (texts.empty()) return "";
  return "[" + boost::algorithm::join(texts, ",\n" + std::string(indent + 1, ' ')) + "]" + end;
}

/// The words that the grammar reserves, each between blanks. Names of qualifiers may be such words.
constexpr std::string_view kReserved =
    " any as association boolean char16 class datetime disableoverride enableoverride false flavor"
    " indication instance method null of parameter pragma property qualifier real32 real64 ref"
    " reference restricted schema scope sint16 sint32 sint64 sint8 string tosubclass translatable"
    " true uint16 uint32 uint64 uint8 ";

std::string Name(const std::string& name) {
  const bool isReserved = kReserved.find(" " + NModel::Folded(name) + " ") != kReserved.npos;
  return isReserved ? name + "_ /* " + name + " */" : name;
}

/// Returns a keyword, or the class of a reference. Types that MOF lacks get a comment.
std::string DataType(TType type, const std::string& referencedClass, EStringKind kind) {
  const TType element = NModel::ElementType(type);
  if (kind == EStringKind::kCharacter || element == TType::kCIMTypeChar) return "char16";
  if (!NModel::HasKeyword(type)) return "/* no type */ uint32";
  if (kind != EStringKind::kText) return "string /* embedded " + NDescribe::KeywordOf(kind) + " */";
  if (element != TType::kCIMTypeReference) return element.ToString();
  return (referencedClass.empty() ? "/* of an unknown class */ CIM_ManagedElement"
                                  : Name(referencedClass)) +
         " REF";
}

std::string ArrayMark(const TCIMValue& value) {
  if (!value.IsArray()) return "";
  const unsigned int size = value.GetMaxArraySize();
  return "[" + (size == 0 ? "" : std::to_string(size)) + "]";
}

std::string PropertyText(const TPropertySchema& property) {
  const TCIMValue& value = property.fDefault;
  return "  " + QualifierList(property.fQualifiers, 2, "", "\n  ") +
         DataType(value.GetType(), property.fReferencedClass, property.fStringKind) + " " +
         Name(property.fName) + ArrayMark(value) + InitializerText(value, 6, property.fStringKind) +
         (property.fIsStatic ? " /* static */;\n" : ";\n");
}

std::string ParameterText(const TParameterSchema& parameter) {
  return "\n    " + QualifierList(parameter.fQualifiers, 4, "", "\n    ") +
         DataType(parameter.fType, parameter.fReferencedClass, parameter.fStringKind) + " " +
         Name(parameter.fName) + (NModel::IsArray(parameter.fType) ? "[]" : "");
}

std::string MethodText(const TMethodSchema& method) {
  TTexts parameters;
  for (const TParameterSchema& each : method.fParameters) parameters.push_back(ParameterText(each));
  return "  " + QualifierList(method.fQualifiers, 2, "", "\n  ") +
         DataType(method.fReturnType, "", method.fStringKind) + " " + Name(method.fName) + "(" +
         boost::algorithm::join(parameters, ",") + ");\n";
}

TTexts FlavorNames(std::uint32_t flavor) {
  TTexts names{(flavor & kFlavorOverridable) != 0 ? "EnableOverride" : "DisableOverride",
               (flavor & kFlavorToSubclass) != 0 ? "ToSubclass" : "Restricted"};
  if ((flavor & kFlavorTranslatable) != 0) names.emplace_back("Translatable");
  return names;
}

TTexts ScopeNames(std::uint32_t scope) {
  TTexts names;
  for (const auto& [bit, name] : kScopeNames) {
    if ((scope & bit) != 0) names.emplace_back(name);
  }
  // The grammar requires one.
  if (names.empty()) return {"any /* none */"};
  if (names.size() == std::size(kScopeNames)) return {"any"};
  return names;
}

}  // namespace

std::string QuotedForMOF(const std::string& text) {
  return QuotedPieces(text, std::string::npos).front();
}

std::string ClassAsMOF(const TClassSchema& cimClass) {
  // The grammar distinguishes kinds of classes by the first qualifier.
  const std::string kind = cimClass.fIsAssociation  ? "Association"
                           : cimClass.fIsIndication ? "Indication"
                                                    : "";
  std::string text =
      QualifierList(cimClass.fQualifiers, 0, kind, "\n") + "class " + Name(cimClass.fName);
  if (!cimClass.fSuperclass.empty()) text += " : " + Name(cimClass.fSuperclass);
  text += " {\n";
  for (const TPropertySchema& property : cimClass.fProperties) {
    if (property.fOrigin.fClass == cimClass.fName) text += PropertyText(property);
  }
  for (const TMethodSchema& method : cimClass.fMethods) {
    if (method.fOrigin.fClass == cimClass.fName) text += MethodText(method);
  }
  return text + "};\n";
}

std::string QualifierAsMOF(const TQualifierSchema& qualifier) {
  const TCIMValue& value = qualifier.fDefault;
  return "Qualifier " + qualifier.fName + " : " +
         DataType(value.GetType(), "", EStringKind::kText) + ArrayMark(value) +
         InitializerText(value, 4) + ",\n    Scope(" +
         boost::algorithm::join(ScopeNames(qualifier.fScope), ", ") + "),\n    Flavor(" +
         boost::algorithm::join(FlavorNames(qualifier.fFlavor), ", ") + ");\n";
}

}  // namespace NVORNQDX20
