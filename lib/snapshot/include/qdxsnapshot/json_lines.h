// SPDX-License-Identifier: Apache-2.0
/// Instances as JSON lines: each line is an object that says all about one instance, so that a
/// program needs nothing of the lines before it.
///
///   {"host":"db7","time":"2004-03-15T13:30:00Z","namespace":"root/cimv2","class":"C",
///    "path":"C.Name=\"a\"","properties":{"Name":"a","Size":1000},
///    "types":{"Name":"string","Size":"uint64"},"units":{"Size":"byte"},"absent":{}}
#ifndef QDXSNAPSHOT_JSON_LINES_H_
#define QDXSNAPSHOT_JSON_LINES_H_

#include <qdxdescribe/missing_values.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <qdxsnapshot/record.h>
#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

/// Writes the instances of one class.
///
/// Values are those of ToJSON(), but 64-bit integers are numbers where a double holds them without
/// loss, that is from -(2^53 - 1) to 2^53 - 1. "absent" has the reasons of missing values. Of the
/// record, what is unknown is null; the time is UTC in whole seconds. Characters that are not
/// harmless are escaped, bytes that are not UTF-8 become U+FFFD.
class TJSONLines {
 public:
  /// Shows these properties, by their positions in the class, in this order. The class and the
  /// reasons must outlive the object.
  TJSONLines(const TCollectionRecord& record, const std::string& namespaceName,
             const TClassSnapshot& cimClass, const NDescribe::TMissingReasons& reasons,
             const std::vector<std::size_t>& properties);

  /// Returns a line with its end. REQUIRES: the instance is one of the class, and has values.
  std::string LineOf(const TInstanceSnapshot& instance) const;

 private:
  struct TColumn {
    std::size_t fProperty;
    std::string fName;  // as JSON, with ":" after it
    bool fIsWide;       // a 64-bit integer, or an array of them
  };

  const TClassSnapshot& fClass;
  const NDescribe::TMissingReasons& fReasons;
  std::vector<TColumn> fColumns;
  std::string fStart;   // of all lines
  std::string fMiddle;  // between values and reasons
};

/// Passes the line of each instance of a namespace to `write`, classes by name, instances by path.
/// Reads a few instances at a time.
void WriteJSONLines(const TCollectionRecord& record, const ICIMNamespace& ns,
                    const std::function<void(const std::string&)>& write);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_JSON_LINES_H_
