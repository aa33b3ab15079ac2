// SPDX-License-Identifier: Apache-2.0
/// What the caller of a provider asks for.
#ifndef QDXDESCRIBE_REQUEST_H_
#define QDXDESCRIBE_REQUEST_H_

#include <qdxcore/interfaces.h>

#include <string>

namespace NVORNQDX20::NDescribe {

struct TRequest {
  std::string fRoot;     ///< The folder below which all files are read: "/" for this machine.
  TOptionsMap fOptions;  ///< All options of the call.
};

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_REQUEST_H_
