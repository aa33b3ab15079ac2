// SPDX-License-Identifier: Apache-2.0
/// Documents that a test writes down fact by fact.
#ifndef TESTS_STORE_SAMPLE_DOCUMENT_H_
#define TESTS_STORE_SAMPLE_DOCUMENT_H_

#include <algorithm>
#include <cstdint>
#include <string>

#include "input/document_facts.h"

namespace NSample {

using NVORNQDX20::NStore::TDocumentFacts;
using NVORNQDX20::NStore::THostIdentity;

inline constexpr const char* kNamespace = "root/test";

inline std::string DigestOfNumber(unsigned number) {
  std::string digits = std::to_string(number * 7919U);
  return digits + std::string(64 - digits.size(), 'a');
}

/// Seconds since 1970 as the time, and a digest that follows from it and `number`.
inline TDocumentFacts Document(const THostIdentity& host, std::int64_t seconds,
                               unsigned number = 0) {
  TDocumentFacts document;
  document.fHost = host;
  document.fTime = seconds * 1'000'000;
  document.fDigest = DigestOfNumber(number + static_cast<unsigned>(seconds));
  document.fHasAllPermissions = true;
  document.fIsComplete = true;
  document.fNamespaces = {kNamespace};
  return document;
}

template <typename TElements, typename TMatches, typename TElement>
std::uint32_t IndexOf(TElements& elements, const TMatches& matches, const TElement& added) {
  const auto found = std::find_if(elements.begin(), elements.end(), matches);
  if (found != elements.end()) return static_cast<std::uint32_t>(found - elements.begin());
  elements.push_back(added);
  return static_cast<std::uint32_t>(elements.size() - 1);
}

inline std::uint32_t ClassOf(TDocumentFacts& document, const std::string& name) {
  return IndexOf(
      document.fClasses, [&](const auto& each) { return each.fName == name; },
      TDocumentFacts::TClass{kNamespace, name});
}

inline void AddFact(TDocumentFacts& document, const std::string& className,
                    const std::string& object, const std::string& property,
                    const std::string& value, bool isVolatile = false,
                    const std::string& type = "string") {
  const std::uint32_t number = ClassOf(document, className);
  TDocumentFacts::TProperty row{number, property, type, "", isVolatile};
  const std::uint32_t propertyIndex = IndexOf(
      document.fProperties,
      [&](const auto& each) { return each.fClass == number && each.fName == property; }, row);
  const std::uint32_t objectIndex = IndexOf(
      document.fObjects,
      [&](const auto& each) { return each.fClass == number && each.fName == object; },
      TDocumentFacts::TObject{number, object, "part"});
  document.fFacts.push_back({propertyIndex, objectIndex, value});
}

/// A value that the host may have: unknown, and missing for a reason.
inline void AddMissing(TDocumentFacts& document, const std::string& className,
                       const std::string& object, const std::string& property) {
  document.fMissing.push_back(
      {ClassOf(document, className), object, property, "permission denied", true});
  document.fUnknown.push_back({kNamespace, className, "", object, property});
}

}  // namespace NSample

#endif  // TESTS_STORE_SAMPLE_DOCUMENT_H_
