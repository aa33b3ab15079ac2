// SPDX-License-Identifier: Apache-2.0
#include "parser.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <expat.h>

#include "document_limits.h"
#include "encoding.h"
#include "literal.h"

namespace NVORNQDX20::NCIMXML {
namespace {

enum class EHolds { kNoObjects, kObjects };
enum class EGroup { kNone, kGroup };

struct TContainer {
  std::string_view fName;
  std::string_view fParent;
  EGroup fGroup = EGroup::kNone;  ///< Whether it can name a namespace of its own.
  EHolds fHolds = EHolds::kNoObjects;
};

/// The elements that contain objects, and their ancestors.
constexpr TContainer kContainers[] = {
    {"CIM", ""},
    {"DECLARATION", "CIM"},
    {"DECLGROUP", "DECLARATION", EGroup::kGroup, EHolds::kObjects},
    {"DECLGROUP.WITHNAME", "DECLARATION", EGroup::kGroup, EHolds::kObjects},
    {"DECLGROUP.WITHPATH", "DECLARATION", EGroup::kGroup, EHolds::kObjects},
    {"MESSAGE", "CIM", EGroup::kGroup},
    {"MULTIRSP", "MESSAGE"},
    {"SIMPLERSP", "MESSAGE"},
    {"SIMPLERSP", "MULTIRSP"},
    {"IMETHODRESPONSE", "SIMPLERSP", EGroup::kNone, EHolds::kObjects},
    {"IRETURNVALUE", "IMETHODRESPONSE", EGroup::kNone, EHolds::kObjects},
    {"PARAMVALUE", "IMETHODRESPONSE", EGroup::kNone, EHolds::kObjects},
    {"METHODRESPONSE", "SIMPLERSP", EGroup::kNone, EHolds::kObjects},
    {"RETURNVALUE", "METHODRESPONSE", EGroup::kNone, EHolds::kObjects},
    {"PARAMVALUE", "METHODRESPONSE", EGroup::kNone, EHolds::kObjects},
    {"MULTIREQ", "MESSAGE"},
    {"SIMPLEREQ", "MESSAGE", EGroup::kNone, EHolds::kObjects},
    {"SIMPLEREQ", "MULTIREQ", EGroup::kNone, EHolds::kObjects},
    {"IMETHODCALL", "SIMPLEREQ", EGroup::kGroup, EHolds::kObjects},
    {"IPARAMVALUE", "IMETHODCALL", EGroup::kNone, EHolds::kObjects},
    {"METHODCALL", "SIMPLEREQ", EGroup::kGroup, EHolds::kObjects},
    {"PARAMVALUE", "METHODCALL", EGroup::kNone, EHolds::kObjects},
    {"MULTIEXPREQ", "MESSAGE"},
    {"SIMPLEEXPREQ", "MESSAGE", EGroup::kNone, EHolds::kObjects},
    {"SIMPLEEXPREQ", "MULTIEXPREQ", EGroup::kNone, EHolds::kObjects},
    {"EXPMETHODCALL", "SIMPLEEXPREQ", EGroup::kGroup, EHolds::kObjects},
    {"EXPPARAMVALUE", "EXPMETHODCALL", EGroup::kNone, EHolds::kObjects},
    {"MULTIEXPRSP", "MESSAGE"},
    {"SIMPLEEXPRSP", "MESSAGE"},
    {"SIMPLEEXPRSP", "MULTIEXPRSP"},
    {"EXPMETHODRESPONSE", "SIMPLEEXPRSP", EGroup::kNone, EHolds::kObjects},
    {"IRETURNVALUE", "EXPMETHODRESPONSE", EGroup::kNone, EHolds::kObjects}};

const TContainer* FindContainer(std::string_view name, const TContainer* parent) {
  const std::string_view parentName = parent == nullptr ? std::string_view() : parent->fName;
  const auto* const found = std::find_if(
      std::begin(kContainers), std::end(kContainers),
      [&](const TContainer& each) { return each.fName == name && each.fParent == parentName; });
  return found == std::end(kContainers) ? nullptr : found;
}

bool HoldsText(const TElement& element) {
  return element.Is("VALUE") || element.Is("KEYVALUE") || element.Is("HOST");
}

class TParser {
 public:
  TParser(TInput& input, IObjectSink& sink, const TReadingLimits& limits)
      : fInput(input),
        fSink(sink),
        fLimits(limits),
        fParser(XML_ParserCreate(nullptr), &XML_ParserFree) {
    if (!fParser) throw TQDXException(kQDXStatusOutOfMemory);
    XML_SetUserData(fParser.get(), this);
    XML_SetElementHandler(fParser.get(), &OnStart, &OnEnd);
    XML_SetCharacterDataHandler(fParser.get(), &OnText);
    XML_SetEntityDeclHandler(fParser.get(), &OnEntityDecl);
    XML_SetSkippedEntityHandler(fParser.get(), &OnSkippedEntity);
    XML_SetElementDeclHandler(fParser.get(), &OnElementDecl);
    XML_SetAttlistDeclHandler(fParser.get(), &OnAttlistDecl);
    XML_SetStartDoctypeDeclHandler(fParser.get(), &OnDoctype);
    XML_SetDefaultHandlerExpand(fParser.get(), &OnMarkup);
    XML_SetUnknownEncodingHandler(fParser.get(), &OnEncoding, nullptr);
    AskForRoom();
  }

  void Run() {
    try {
      while (Feed()) {
      }
    } catch (TDocumentError& error) {
      if (error.fPosition.fLine == 0) error.fPosition = Position();
      throw;
    }
  }

 private:
  static constexpr int kChunkSize = 1 << 16;

  static TParser& Self(void* self) { return *static_cast<TParser*>(self); }
  static void OnStart(void* self, const XML_Char* name, const XML_Char** attributes) {
    Self(self).Guarded([&] { Self(self).Start(name, attributes); });
  }
  static void OnEnd(void* self, const XML_Char*) {
    Self(self).Guarded([&] { Self(self).End(); });
  }
  static void OnText(void* self, const XML_Char* text, int length) {
    Self(self).Guarded([&] { Self(self).Text({text, static_cast<std::size_t>(length)}); });
  }
  static void OnEntityDecl(void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                           const XML_Char*, const XML_Char*, const XML_Char*) {
    Self(self).Guarded([] { throw TDocumentError("declares an entity"); });
  }
  static void OnSkippedEntity(void* self, const XML_Char* name, int) {
    Self(self).Guarded([&] { throw TDocumentError("unknown entity " + Shown(name)); });
  }

  static void OnElementDecl(void* self, const XML_Char*, XML_Content* model) {
    XML_FreeContentModel(Self(self).fParser.get(), model);
    Self(self).Guarded([] { throw TDocumentError("declares an element"); });
  }
  /// Refuses default values of attributes: a small document could multiply a large one.
  static void OnAttlistDecl(void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                            const XML_Char*, int) {
    Self(self).Guarded([] { throw TDocumentError("declares an attribute"); });
  }
  static void OnDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    Self(self).fHasDoctype = true;
  }
  static void OnMarkup(void* self, const XML_Char* text, int length) {
    TParser& parser = Self(self);
    if (!parser.fIsCollectingTag) return;
    parser.Guarded([&] { parser.fTag.append(text, static_cast<std::size_t>(length)); });
  }

  static int OnEncoding(void*, const XML_Char* name, XML_Encoding* encoding) {
    return FillEncoding(name, encoding->map) ? XML_STATUS_OK : XML_STATUS_ERROR;
  }

  /// Exceptions must not pass through expat, so they are stored until it returns.
  template <typename TWork>
  void Guarded(TWork&& work) noexcept {
    if (fFailure) return;
    try {
      work();
    } catch (TDocumentError& error) {
      if (error.fPosition.fLine == 0) error.fPosition = Position();
      fFailure = std::current_exception();
    } catch (...) {
      fFailure = std::current_exception();
    }
    if (fFailure) XML_StopParser(fParser.get(), XML_FALSE);
  }

  bool Feed();
  std::string WhyRefused(bool isAtEnd) const;
  void Start(const XML_Char* name, const XML_Char** attributes);
  void End();
  void Text(std::string_view text);
  void StrayText(std::string_view text);
  bool StartContainer(const TElement& element);
  void Fill(TElement& element, const XML_Char* name, const XML_Char** attributes);
  void RequireKnownEntities();
  void AddBytes(std::size_t bytes) {
    fBytes += bytes;
    if (fBytes > fMost) RefuseSize();
  }
  [[noreturn]] void RefuseSize() const;
  /// Asks for the size that the next object may have.
  void AskForRoom() { fMost = std::min<std::size_t>(fLimits.ObjectBytes(), fSink.GetRoom()); }
  TPosition Position() const {
    return {XML_GetCurrentLineNumber(fParser.get()),
            std::size_t{XML_GetCurrentColumnNumber(fParser.get())} + 1};
  }

  TInput& fInput;
  IObjectSink& fSink;
  const TDocumentLimits fLimits;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> fParser;
  std::exception_ptr fFailure;
  std::size_t fFed = 0;
  bool fHasDoctype = false;
  bool fIsCollectingTag = false;
  std::string fTag;
  std::vector<const TContainer*> fContainers;
  TElementPool fPool;
  TElement fObject;
  std::vector<TElement*> fOpen;  // the path from the object to the current element
  std::size_t fBytes = 0;        // size of the object so far
  std::size_t fMost = 0;         // size that it may have
};

bool TParser::Feed() {
  void* const buffer = XML_GetBuffer(fParser.get(), kChunkSize);
  if (buffer == nullptr) throw TQDXException(kQDXStatusOutOfMemory);
  const std::size_t length = fInput.Read(static_cast<char*>(buffer), kChunkSize);
  const bool last = length == 0;
  const XML_Status status = XML_ParseBuffer(fParser.get(), static_cast<int>(length), last);
  if (fFailure) std::rethrow_exception(fFailure);
  if (status != XML_STATUS_OK) {
    throw TDocumentError(WhyRefused(last));
  }
  // expat buffers an unfinished tag or comment.
  fFed += length;
  const auto done = static_cast<std::size_t>(XML_GetCurrentByteIndex(fParser.get()));
  if (!last && fFed - done > kMaxTagBytes)
    throw TDocumentError("a tag or a comment is longer than " + InMiB(kMaxTagBytes));
  return !last;
}

/// Says what an error of expat means for who has the file.
std::string TParser::WhyRefused(bool isAtEnd) const {
  if (isAtEnd && fFed == 0) return "the file is empty";
  if (isAtEnd && !fContainers.empty()) return "the document ends too early";
  const std::string reason = XML_ErrorString(XML_GetErrorCode(fParser.get()));
  return fContainers.empty() ? "no XML document: " + reason : reason;
}

void TParser::Start(const XML_Char* name, const XML_Char** attributes) {
  if (fHasDoctype) RequireKnownEntities();
  TElement& element = fOpen.empty() ? fObject : fPool.AddChild(*fOpen.back());
  Fill(element, name, attributes);
  if (fContainers.size() + fOpen.size() >= kMaxDepth)
    element.Refuse("elements nested deeper than " + std::to_string(kMaxDepth));
  if (!fOpen.empty() || !StartContainer(element)) fOpen.push_back(&element);
}

bool TParser::StartContainer(const TElement& element) {
  const TContainer* const parent = fContainers.empty() ? nullptr : fContainers.back();
  const TContainer* const container = FindContainer(element.fName, parent);
  if (container != nullptr) {
    fBytes = 0;
    fContainers.push_back(container);
    fSink.BeginContainer(element, container->fGroup == EGroup::kGroup);
    return true;
  }
  if (parent == nullptr) {
    element.Refuse("no CIM-XML document: it begins with element " + Shown(element.fName));
  }
  if (parent->fHolds == EHolds::kNoObjects) {
    element.Refuse("<" + std::string(element.fName) + "> holds nothing of a namespace");
  }
  return false;
}

void TParser::End() {
  if (fOpen.empty()) {
    fContainers.pop_back();
    return;
  }
  const TElement& ended = *fOpen.back();
  if (!ended.fText.empty() && !HoldsText(ended) && !IsBlank(ended.fText)) {
    fSink.AddStrayText(ended);
  }
  fOpen.pop_back();
  if (!fOpen.empty()) return;
  fSink.AddObject(std::move(fObject), fBytes);
  fPool.Empty(fObject, std::exchange(fBytes, 0));
  AskForRoom();
}

void TParser::Text(std::string_view text) {
  if (fOpen.empty()) {
    if (!fContainers.empty() && !IsBlank(text)) StrayText(text);
    return;
  }
  std::string& target = fOpen.back()->fText;
  if (target.size() + text.size() > kMaxTextBytes)
    throw TDocumentError("a value is longer than " + InMiB(kMaxTextBytes));
  target += text;
  AddBytes(text.size());
}

/// Text outside of objects. It can come in many parts.
void TParser::StrayText(std::string_view text) {
  TElement holder;
  holder.fName = fContainers.back()->fName;
  holder.fPosition = Position();
  holder.fText = text;
  fSink.AddStrayText(holder);
}

/// Gives an element without content its name and attributes. It often has the same ones from its
/// last use.
void TParser::Fill(TElement& element, const XML_Char* name, const XML_Char** attributes) {
  if (!IsName(element.fName, name)) element.fName = KnownElement(name);
  element.fPosition = Position();
  if (element.fName.empty()) {
    const bool isFirst = fContainers.empty() && fOpen.empty();
    element.Refuse(isFirst ? "no CIM-XML document: it begins with element " + Shown(name)
                           : "unknown element " + Shown(name));
  }
  element.fAttributes.Clear();
  std::size_t count = 0;
  for (; *attributes != nullptr; attributes += 2) {
    if (++count > kMaxAttributes)
      element.Refuse("more than " + std::to_string(kMaxAttributes) + " attributes");
    element.fAttributes.AddKnown(attributes[0], attributes[1]);
  }
  AddBytes(element.Bytes());
}

/// With an external document type, expat silently drops unknown entities from attributes. Only the
/// tag's source text still has them.
void TParser::RequireKnownEntities() {
  fTag.clear();
  fIsCollectingTag = true;
  XML_DefaultCurrent(fParser.get());
  fIsCollectingTag = false;
  for (std::size_t at = fTag.find('&'); at != std::string::npos; at = fTag.find('&', at + 1)) {
    const std::string name = fTag.substr(at + 1, fTag.find(';', at) - at - 1);
    const bool isKnown = name[0] == '#' || name == "amp" || name == "lt" || name == "gt" ||
                         name == "quot" || name == "apos";
    if (!isKnown) throw TDocumentError("unknown entity " + Shown(name));
  }
}

void TParser::RefuseSize() const {
  if (fBytes <= fLimits.ObjectBytes()) throw fLimits.TooMuchHeld();
  throw fLimits.Exceeded("an object needs more than two thirds of " + InMiB(fLimits.HeldBytes()) +
                         " of memory");
}

}  // namespace

IObjectSink::~IObjectSink() = default;

void ParseDocument(TInput& input, IObjectSink& sink, const TReadingLimits& limits) {
  TParser(input, sink, limits).Run();
}

}  // namespace NVORNQDX20::NCIMXML
