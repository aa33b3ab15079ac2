// SPDX-License-Identifier: Apache-2.0
/// The record of a collection, which is a namespace of its own in a document.
#ifndef QDXSNAPSHOT_RECORD_H_
#define QDXSNAPSHOT_RECORD_H_

#include <qdxcore/datetime.h>
#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// The namespace of the record. Namespaces of providers with this name are not collected.
inline constexpr const char* kRecordNamespaceName = "root/qdx";
/// The class with one instance.
inline constexpr const char* kRecordClass = "VORNSG_Collection";
/// Its property with the names of the parts that the document lacks.
inline constexpr const char* kPartsLeftOut = "PartsLeftOut";
/// Its property with the time when the data was read.
inline constexpr const char* kCollectionTime = "CollectionTime";
/// The class of the operations that failed.
inline constexpr const char* kFailureClass = "VORNSG_CollectionFailure";

struct TCollectionRecord {
  /// An operation of a provider that failed.
  struct TFailure {
    std::string fProvider;
    std::string fNamespace;  ///< Empty if the operation concerned none.
    std::string fOperation;
    std::string fReason;
  };

  std::string fHostName;  ///< This and the others are empty, or null, if they are unknown.
  TCIMDateTime fTime;
  std::vector<std::string> fPartsLeftOut;
  std::string fToolVersion;
  std::vector<TFailure> fFailures;
};

/// Returns whether the namespace is that of the record.
bool IsRecordNamespace(const ICIMNamespace& ns);

/// Reads what a namespace says, whatever it lacks: a document of others need not have the classes
/// or the properties.
TCollectionRecord ReadRecord(const ICIMNamespace& ns);

/// Returns the first record among the namespaces; an empty one if there is none.
TCollectionRecord FindRecord(const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces);

/// Returns the parts that a document lacks by an option of who collected it: it has no classes of
/// them. Parts that nobody asked for have classes that say so.
std::vector<std::string> FindPartsExcluded(
    const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_RECORD_H_
