// SPDX-License-Identifier: Apache-2.0
/// Reads the instances of one class in their order, a few at a time: the snapshot of a class with
/// many instances takes ten times the memory of the class itself.
#ifndef QDXSNAPSHOT_CLASS_READER_H_
#define QDXSNAPSHOT_CLASS_READER_H_

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

class TInstanceReader;

class TClassReader {
 public:
  /// Reads the declaration, and the paths of all instances of the class without its subclasses.
  TClassReader(const ICIMNamespace& ns, const boost::shared_ptr<ICIMClass>& cimClass, EDepth depth);
  /// The same for these instances only, which must be of this class.
  TClassReader(const ICIMNamespace& ns, const boost::shared_ptr<ICIMClass>& cimClass, EDepth depth,
               const std::vector<boost::shared_ptr<ICIMInstance>>& instances);
  ~TClassReader();
  TClassReader(const TClassReader&) = delete;
  TClassReader& operator=(const TClassReader&) = delete;

  /// Returns the class, with the number of its instances, but without these.
  const TClassSnapshot& GetClass() const { return fSnapshot; }

  /// Returns the next instances, sorted by path and values; none at the end. As deep as the depth.
  std::vector<TInstanceSnapshot> ReadNext();

 private:
  const EDepth fDepth;
  TClassSnapshot fSnapshot;
  std::unique_ptr<TInstanceReader> fReader;
  std::vector<std::pair<std::string, boost::shared_ptr<ICIMInstance>>> fByPath;
  std::size_t fNext = 0;
};

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_CLASS_READER_H_
