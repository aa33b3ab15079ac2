// SPDX-License-Identifier: Apache-2.0
/// What goes on but must not go unsaid.
#ifndef LIB_CIMXML_XML_TALLY_H_
#define LIB_CIMXML_XML_TALLY_H_

#include <qdxcore/logger.h>

#include <cstddef>
#include <string>
#include <utility>

namespace NVORNQDX20::NCIMXML {

/// How often something happened, and where it did first.
class TTally {
 public:
  void Add(std::string where) {
    if (fCount++ == 0) fFirst = std::move(where);
  }
  std::size_t Count() const { return fCount; }
  const std::string& First() const { return fFirst; }
  /// Warns "cimxml: N WHAT FILE, the first: WHERE", if it happened at all.
  void Report(const std::string& what, const std::string& file) const {
    if (fCount == 0) return;
    LogMessage(ILogger::kLogWarning,
               {"cimxml: ", std::to_string(fCount), " ", what, " ", file, ", the first: ", fFirst});
  }

 private:
  std::size_t fCount = 0;
  std::string fFirst;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_TALLY_H_
