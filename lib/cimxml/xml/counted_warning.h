// SPDX-License-Identifier: Apache-2.0
/// Warnings about repeated events, one line for all of them.
#ifndef LIB_CIMXML_XML_COUNTED_WARNING_H_
#define LIB_CIMXML_XML_COUNTED_WARNING_H_

#include <qdxcore/logger.h>

#include <cstddef>
#include <string>
#include <utility>

namespace NVORNQDX20::NCIMXML {

/// Counts events, keeps the place of the first one, and warns once.
class TCountedWarning {
 public:
  void Add(std::string where) {
    if (fCount++ == 0) fFirst = std::move(where);
  }
  void Add(const TCountedWarning& other) {
    if (fCount == 0) fFirst = other.fFirst;
    fCount += other.fCount;
  }
  std::size_t GetCount() const { return fCount; }
  const std::string& GetFirst() const { return fFirst; }
  /// Logs "cimxml: N WHAT FILE, the first: WHERE" if there was any event.
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

#endif  // LIB_CIMXML_XML_COUNTED_WARNING_H_
