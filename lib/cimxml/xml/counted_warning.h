// SPDX-License-Identifier: Apache-2.0
/// Warnings about repeated events, one line for all of them.
#ifndef LIB_CIMXML_XML_COUNTED_WARNING_H_
#define LIB_CIMXML_XML_COUNTED_WARNING_H_

#include <qdxcore/logger.h>
#include <qdxmodel/counted.h>

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
  /// Logs "cimxml: 1 ONE FILE, the first: WHERE" or "cimxml: N MANY FILE, ..." if there was any.
  void Report(const std::string& one, const std::string& many, const std::string& file) const {
    if (fCount == 0) return;
    LogMessage(ILogger::kLogWarning, {"cimxml: ", NModel::Counted(fCount, one, many), " ", file,
                                      ", the first: ", fFirst});
  }

 private:
  std::size_t fCount = 0;
  std::string fFirst;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_COUNTED_WARNING_H_
