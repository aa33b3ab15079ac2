// SPDX-License-Identifier: Apache-2.0
/// Reads instances of one class as plain data.
#ifndef LIB_SNAPSHOT_INSTANCE_READER_H_
#define LIB_SNAPSHOT_INSTANCE_READER_H_

#include <qdxmodel/property_reader.h>
#include <qdxsnapshot/snapshot.h>

#include <cstddef>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class TInstanceReader {
 public:
  /// Reads the properties of `snapshot`, a snapshot of the class. Copies what it needs of it.
  TInstanceReader(const boost::shared_ptr<ICIMClass>& cimClass, const TClassSnapshot& snapshot,
                  std::string ownNamespace);

  /// Makes this instance the one that the other operations read. It must live as long as they are
  /// called.
  void Begin(const ICIMInstance& instance) { fReader.Begin(instance); }
  std::string ReadPath() const;
  std::vector<TJSON> ReadValues() const;

 private:
  struct TColumn {
    std::string fName;
    bool fIsKey;
    std::size_t fPosition;  // in the reader
  };

  const boost::shared_ptr<ICIMClass> fClass;
  const std::string fOwnNamespace;
  NModel::TPropertyReader fReader;
  std::vector<TColumn> fColumns;  // in the order of the snapshot's properties
};

}  // namespace NVORNQDX20

#endif  // LIB_SNAPSHOT_INSTANCE_READER_H_
