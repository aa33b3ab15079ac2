// SPDX-License-Identifier: Apache-2.0
/// The DMTF's 25 characters of a date-time.
#ifndef SRC_CORE_DATETIME_TEXT_H_
#define SRC_CORE_DATETIME_TEXT_H_

#include <qdxcore/datetime.h>

#include <string>

namespace NVORNQDX20 {

/// Sets a date-time from its text. Returns false for another text; throws for fields that Set
/// refuses.
bool ReadDateTime(const std::string& text, TCIMDateTimeImpl& result);

}  // namespace NVORNQDX20

#endif  // SRC_CORE_DATETIME_TEXT_H_
