// SPDX-License-Identifier: Apache-2.0
/// Guesses what is secret in namespaces that do not tell.
#ifndef LIB_REDACT_GUESS_H_
#define LIB_REDACT_GUESS_H_

#include <qdxdescribe/declaration.h>

#include <string>

namespace NVORNQDX20::NRedact {

/// Returns the kind of secret that a property with this name in such a class has; kNone if the name
/// does not speak for one.
NDescribe::ESecret GuessByName(const std::string& className, const std::string& property);

/// Returns the kind of secret that such a value is, whatever its property: an address or a UUID.
NDescribe::ESecret GuessByForm(const std::string& property, const std::string& value);

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_GUESS_H_
