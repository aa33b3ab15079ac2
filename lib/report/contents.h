// SPDX-License-Identifier: Apache-2.0
/// What namespaces contain, in the form that the script of the page reads.
#ifndef LIB_REPORT_CONTENTS_H_
#define LIB_REPORT_CONTENTS_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/missing_values.h>

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20::NReport {

struct TReportedNamespace {
  std::string fName;
  std::vector<TClassSnapshot> fClasses;  ///< By name, without the class of reasons.
  NDescribe::TMissingReasons fReasons;
};

/// Reads all of a namespace.
TReportedNamespace ReadNamespace(const ICIMNamespace& ns);

/// Gives each instance of several namespaces a number, in their order.
class TInstanceNumbers {
 public:
  explicit TInstanceNumbers(const std::vector<TReportedNamespace>& namespaces);

  /// Returns the number of the instance with this object path as a value of the namespace has it;
  /// nothing if there is no such instance.
  std::optional<std::size_t> Find(const std::string& ns, const std::string& path) const;

 private:
  std::unordered_map<std::string, std::size_t> fNumbers;
  std::size_t fCount = 0;
};

/// Returns the contents as one JSON object; page/model.js describes it.
TJSON ContentsAsJSON(const std::vector<TReportedNamespace>& namespaces,
                     const TInstanceNumbers& numbers);

}  // namespace NVORNQDX20::NReport

#endif  // LIB_REPORT_CONTENTS_H_
