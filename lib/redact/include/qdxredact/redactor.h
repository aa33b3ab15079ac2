// SPDX-License-Identifier: Apache-2.0
/// Replaces what is secret in namespaces by pseudonyms, the same for the same value everywhere.
#ifndef QDXREDACT_REDACTOR_H_
#define QDXREDACT_REDACTOR_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/declaration.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NRedact {

using NDescribe::ESecret;

struct TRedaction {
  /// What the pseudonyms are made with. With the same key they are the same in other documents.
  std::string fKey;
  std::set<ESecret> fKept;  ///< Kinds that stay as they are.
  /// Whether names and forms of properties tell what is secret, in namespaces that do not.
  bool fGuesses = false;
};

/// Returns the kinds of secrets, each with a name that SecretName() gives.
std::vector<ESecret> AllSecrets();

/// Returns the kind with this name, as in "host name" or "host-name", in any case; none for others.
std::optional<ESecret> SecretOf(const std::string& name);

/// Returns whether the namespace says what is secret: a property has the qualifier VORNSG_Secret.
bool TellsSecrets(const ICIMNamespace& ns);

/// Redacts the namespaces of one document.
///
/// Every namespace is learned before the first one is redacted, since a value that is secret in one
/// can be in a text of another. A value that is secret counts in all texts: in keys, references,
/// reasons, and inside longer texts; if it has fewer than six characters, only as a whole word.
/// What many machines have in common stays, such as the account root, the address 127.0.0.1 and the
/// host name localhost. A number or a date-time that is secret becomes null, with the reason
/// "redacted"; a number that is a key, another number.
///
///   TRedactor redactor({key, {}, false});
///   redactor.Learn(*cimv2);
///   const auto redacted = redactor.Redact(cimv2);
///
/// Exceptions of the namespaces are passed on.
class TRedactor {
 public:
  explicit TRedactor(TRedaction redaction);
  ~TRedactor();

  void Learn(const ICIMNamespace& ns);

  /// Returns a new namespace of the same name. References lead to the new namespaces.
  boost::shared_ptr<ICIMNamespace> Redact(const boost::shared_ptr<ICIMNamespace>& ns);

  /// Returns the text with pseudonyms for the secrets in it.
  std::string Redact(const std::string& text);

  /// Returns how many instances were left out, since another one has the same keys.
  std::size_t GetLost() const;

 private:
  class TWork;
  const std::unique_ptr<TWork> fWork;
};

}  // namespace NVORNQDX20::NRedact

#endif  // QDXREDACT_REDACTOR_H_
