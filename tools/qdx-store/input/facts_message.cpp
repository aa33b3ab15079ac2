// SPDX-License-Identifier: Apache-2.0
#include "facts_message.h"

#include <qdxsystem/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <vector>

namespace NVORNQDX20::NStore {
namespace {

bool IsText(std::string_view text) {
  const auto isPlain = [](char c) { return c > 0; };
  if (std::all_of(text.begin(), text.end(), isPlain)) return true;
  while (!text.empty()) {
    const auto character = TakeCharacter(text).fCodePoint;
    if (!character || *character == 0) return false;
  }
  return true;
}

class TEncoder {
 public:
  template <typename... T>
  void operator()(const T&... parts) {
    (Add(parts), ...);
  }

  std::string Take() { return std::move(fBytes); }

 private:
  void Add(const std::string& text) {
    Add(std::uint64_t{text.size()});
    fBytes += text;
  }
  template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
  void Add(T number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    fBytes.append(bytes, sizeof number);
  }
  template <typename T>
  void Add(const std::optional<T>& value) {
    Add(value.has_value());
    if (value) Add(*value);
  }
  template <typename T>
  void Add(const std::vector<T>& elements) {
    Add(std::uint64_t{elements.size()});
    for (const T& each : elements) Add(each);
  }
  template <typename T, typename = std::enable_if_t<std::is_class_v<T>>, typename = void>
  void Add(const T& object) {
    Visit(object, *this);
  }

  std::string fBytes;
};

/// Once something is wrong, nothing more is read.
class TDecoder {
 public:
  TDecoder(std::string_view bytes, std::size_t most) : fRest(bytes), fMost(most) {}

  template <typename... T>
  void operator()(T&... parts) {
    (Take(parts), ...);
  }

  bool IsDone() const { return !fIsWrong && fRest.empty(); }

 private:
  void Take(std::string& text) {
    const std::size_t size = TakeSize();
    text = fRest.substr(0, size);
    fRest.remove_prefix(size);
    fIsWrong = fIsWrong || !IsText(text);
  }
  template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
  void Take(T& number) {
    fIsWrong = fIsWrong || fRest.size() < sizeof number;
    if (fIsWrong) return;
    std::memcpy(&number, fRest.data(), sizeof number);
    fRest.remove_prefix(sizeof number);
  }
  void Take(bool& flag) {
    std::uint8_t byte = 0;
    Take(byte);
    flag = byte != 0;
  }
  template <typename T>
  void Take(std::optional<T>& value) {
    bool has = false;
    Take(has);
    if (has) Take(value.emplace());
  }
  template <typename T>
  void Take(std::vector<T>& elements) {
    const std::size_t count = TakeSize();
    fIsWrong = fIsWrong || count > fMost;
    for (std::size_t i = 0; i < count && !fIsWrong; ++i) Take(elements.emplace_back());
  }
  template <typename T, typename = std::enable_if_t<std::is_class_v<T>>, typename = void>
  void Take(T& object) {
    Visit(object, *this);
  }

  /// Returns a number of bytes, or of elements, each of which has at least a byte.
  std::size_t TakeSize() {
    std::uint64_t size = 0;
    Take(size);
    fIsWrong = fIsWrong || size > fRest.size();
    return fIsWrong ? 0 : static_cast<std::size_t>(size);
  }

  std::string_view fRest;
  const std::size_t fMost;
  bool fIsWrong = false;
};

/// Passes all members to a TEncoder or a TDecoder.
template <typename T, typename TTo>
void Visit(T& object, TTo& to) {
  using TBare = std::remove_const_t<T>;
  if constexpr (std::is_same_v<TBare, THostIdentity>) {
    to(object.fUUID, object.fMachineID, object.fSerialNumber, object.fMaker, object.fModel,
       object.fName);
  } else if constexpr (std::is_same_v<TBare, TUnknown>) {
    to(object.fNamespace, object.fClass, object.fPart, object.fObject, object.fProperty);
  } else if constexpr (std::is_same_v<TBare, TDocumentFacts::TClass>) {
    to(object.fNamespace, object.fName);
  } else if constexpr (std::is_same_v<TBare, TDocumentFacts::TProperty>) {
    to(object.fClass, object.fName, object.fType, object.fSecret, object.fIsVolatile,
       object.fIsKey);
  } else if constexpr (std::is_same_v<TBare, TDocumentFacts::TObject>) {
    to(object.fClass, object.fName, object.fParts);
  } else if constexpr (std::is_same_v<TBare, TDocumentFacts::TFact>) {
    to(object.fProperty, object.fObject, object.fValue);
  } else if constexpr (std::is_same_v<TBare, TDocumentFacts::TMissing>) {
    to(object.fClass, object.fObject, object.fProperty, object.fReason, object.fIsError);
  } else if constexpr (std::is_same_v<TBare, TDocumentFacts::TFailure>) {
    to(object.fProvider, object.fNamespace, object.fOperation, object.fReason);
  } else if constexpr (std::is_same_v<TBare, TDocumentFacts>) {
    to(object.fHost, object.fTime, object.fToolVersion, object.fHasAllPermissions,
       object.fIsComplete, object.fPartsLeftOut, object.fFailures, object.fWarnings,
       object.fNamespaces, object.fClasses, object.fProperties, object.fObjects, object.fFacts,
       object.fMissing, object.fUnknown);
  } else {
    static_assert(std::is_same_v<TBare, TFactsMessage>);
    to(object.fFacts, object.fFailure);
  }
}

/// Returns whether each element comes before the next one.
template <typename T, typename TKeyOf>
bool AreSortedOnce(const std::vector<T>& elements, const TKeyOf& keyOf) {
  return std::adjacent_find(elements.begin(), elements.end(), [&keyOf](const T& a, const T& b) {
           return !(keyOf(a) < keyOf(b));
         }) == elements.end();
}

bool IsConsistent(const TDocumentFacts& facts) {
  const auto hasClass = [&facts](const auto& each) { return each.fClass < facts.fClasses.size(); };
  const auto isOfOneClass = [&facts](const TDocumentFacts::TFact& fact) {
    return fact.fProperty < facts.fProperties.size() && fact.fObject < facts.fObjects.size() &&
           facts.fProperties[fact.fProperty].fClass == facts.fObjects[fact.fObject].fClass;
  };
  return std::all_of(facts.fProperties.begin(), facts.fProperties.end(), hasClass) &&
         std::all_of(facts.fObjects.begin(), facts.fObjects.end(), hasClass) &&
         std::all_of(facts.fMissing.begin(), facts.fMissing.end(), hasClass) &&
         std::all_of(facts.fFacts.begin(), facts.fFacts.end(), isOfOneClass) &&
         AreSortedOnce(facts.fObjects,
                       [](const auto& each) { return std::tie(each.fClass, each.fName); }) &&
         AreSortedOnce(facts.fFacts,
                       [](const auto& each) { return std::tie(each.fObject, each.fProperty); });
}

}  // namespace

std::string EncodeFacts(const TFactsMessage& message) {
  TEncoder encoder;
  encoder(message);
  return encoder.Take();
}

std::optional<TFactsMessage> DecodeFacts(std::string_view bytes, std::size_t most) {
  TFactsMessage message;
  TDecoder decoder(bytes, most);
  decoder(message);
  const bool isOne = message.fFacts.has_value() == message.fFailure.empty();
  if (!decoder.IsDone() || !isOne) return std::nullopt;
  if (message.fFacts && !IsConsistent(*message.fFacts)) return std::nullopt;
  return message;
}

}  // namespace NVORNQDX20::NStore
