// SPDX-License-Identifier: Apache-2.0
#include "reading_state.h"

#include <qdxcore/logger.h>
#include <qdxdescribe/missing_values.h>
#include <qdxmodel/counted.h>
#include <qdxmodel/names.h>

#include <algorithm>

#include "xml/document_limits.h"

namespace NVORNQDX20::NCIMXML {

void TMemoryAccount::AddHeld(std::size_t bytes, const TElement& element) {
  fHeldBytes += bytes;
  if (fHeldBytes + fObjectBytes > fLimits.HeldBytes()) throw fLimits.TooMuchHeld(element.fPosition);
}

std::size_t TMemoryAccount::GetRoom() const {
  return fLimits.HeldBytes() - std::min(fHeldBytes, fLimits.HeldBytes());
}

void TWarnings::Add(const TPosition& position, const std::string& text) {
  if (++fCount <= kMostLines) fLines.push_back({position, text});
}

void TWarnings::Report(const std::string& name, const std::string& other,
                       const std::string& others) const {
  for (const TLine& line : fLines) {
    LogMessage(ILogger::kLogWarning,
               {"cimxml: ", name, AtPosition(line.fPosition), ": ", line.fText});
  }
  const std::size_t more = fCount - fLines.size();
  if (more == 0) return;
  LogMessage(ILogger::kLogWarning,
             {"cimxml: ", name, ": ", NModel::Counted(more, "more " + other, "more " + others)});
}

THosts::THost& THosts::At(const TElement& host) {
  const auto [found, isNew] = fHosts.try_emplace(NModel::TNameHash()(host.fText));
  if (isNew) {
    constexpr std::size_t kHostBytes = 256;  // with the allocator's overhead
    fMemory.AddHeld(kHostBytes, host);
    found->second.fShown = Shown(host.fText);
  }
  return found->second;
}

void THosts::AddOfReference(const TElement& host) {
  THost& found = At(host);
  if (found.fReferences++ != 0) return;
  found.fOrder = fHosts.size();
  found.fFirst = host.fPosition;
}

bool THosts::IsOwn(const std::string& host) const {
  const auto found = fHosts.find(NModel::TNameHash()(host));
  return found != fHosts.end() && found->second.fIsOwn;
}

void THosts::Report(const std::string& name) const {
  std::size_t count = 0;
  const THost* first = nullptr;
  for (const auto& [hash, each] : fHosts) {
    if (each.fIsOwn) continue;
    count += each.fReferences;
    if (first == nullptr || each.fOrder < first->fOrder) first = &each;
  }
  if (first == nullptr) return;
  LogMessage(
      ILogger::kLogWarning,
      {"cimxml: ", NModel::Counted(count, "reference lost its host", "references lost their hosts"),
       ", which no object of ", name, " has, the first: line ", std::to_string(first->fFirst.fLine),
       ", host ", first->fShown});
}

TInstanceChoice::TInstanceChoice(const TReadingLimits& limits)
    : fIsLimited(limits.fInstancesOf.has_value()) {
  if (!fIsLimited) return;
  for (const std::string& each : *limits.fInstancesOf) fClasses[each] = true;
  // Instances of all classes add reasons to those of the document.
  fIsLimited = fClasses.emplace(NDescribe::kMissingValueClass, true).second;
}

void TReadingState::Report(const std::string& name) const {
  fErrors.Report("response is an error in", "responses are errors in", name);
  fLeftOut.Report(name, "object is left out", "objects are left out");
  fChanged.Report(name, "part of an object is ignored or changed",
                  "parts of objects are ignored or changed");
  fHosts.Report(name);
  fContradictions.Report("instance has another class or other keys than its name in",
                         "instances have another class or other keys than their names in", name);
  fNotEmbedded.Report("value is an embedded object of another kind than declared in",
                      "values are embedded objects of another kind than declared in", name);
  fUnheldDateTimes.Report("date-time that cannot be held was read as null from",
                          "date-times that cannot be held were read as null from", name);
}

}  // namespace NVORNQDX20::NCIMXML
