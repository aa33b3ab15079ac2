// SPDX-License-Identifier: Apache-2.0
#include "defects.h"

#include "object_makers.h"

namespace NVORNQDX20::NCIMXML {

void TDefects::Add(const TPosition& position, const std::string& object,
                   const std::string& message) const {
  if (fListener) fListener({position.fLine, position.fColumn, object, message, false});
}

void TDefects::Add(const TPosition& position, const std::string& message) const {
  if (fListener) Add(position, CurrentObject(), message);
}

void TDefects::AddLast(const TDocumentError& error) const {
  if (fListener)
    fListener({error.fPosition.fLine, error.fPosition.fColumn, "", error.fReason, true});
}

std::string TDefects::CurrentObject() const {
  const auto& [space, object] = fCurrent;
  return object == nullptr ? "" : Described(*space, *object);
}

}  // namespace NVORNQDX20::NCIMXML
