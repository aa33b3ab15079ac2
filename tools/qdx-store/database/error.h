// SPDX-License-Identifier: Apache-2.0
/// Failures of a database.
#ifndef TOOLS_QDX_STORE_DATABASE_ERROR_H_
#define TOOLS_QDX_STORE_DATABASE_ERROR_H_

#include <qdxcore/status.h>

#include <string>

namespace NVORNQDX20::NStore {

/// The reason is what the database says, without passwords.
class TDatabaseError : public TExplainedException {
 public:
  enum EKind {
    kRefused,   ///< This statement or its values. Others may succeed.
    kConflict,  ///< Two writers met. The same transaction may succeed when it is repeated.
    kLocked,    ///< Another program has kept it locked for kLockTimeout: it may do so for longer.
    kUnusable   ///< The file, its disk or the connection: nothing else succeeds either.
  };

  TDatabaseError(EKind kind, TQDXStatusCode status, const std::string& reason)
      : TExplainedException(status, reason), fKind(kind) {}

  EKind GetKind() const { return fKind; }

 private:
  EKind fKind;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_DATABASE_ERROR_H_
