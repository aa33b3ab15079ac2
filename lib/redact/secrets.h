// SPDX-License-Identifier: Apache-2.0
/// Finds secrets in values, and their pseudonyms.
#ifndef LIB_REDACT_SECRETS_H_
#define LIB_REDACT_SECRETS_H_

#include <qdxredact/redactor.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "pseudonyms.h"
#include "text_replacer.h"

namespace NVORNQDX20::NRedact {

class TSecrets {
 public:
  explicit TSecrets(const TRedaction& redaction);
  TSecrets(const TSecrets&) = delete;  // what it has learned calls it
  TSecrets& operator=(const TSecrets&) = delete;

  /// Learns what is secret in a value of this kind.
  void Learn(ESecret kind, const std::string& value);
  /// Learns what looks secret in any text: Ethernet addresses, the names of users in paths such as
  /// "/home/NAME", and those of hosts in "/dev/mapper/NAME--vg-root".
  void LearnFrom(std::string_view text);

  /// Returns the value with pseudonyms for all secrets in it.
  std::string Redact(ESecret kind, const std::string& value);
  std::string RedactText(std::string_view text) const { return fReplacer.Replace(text); }
  /// Returns the words of a command with pseudonyms for all that may be secret.
  std::vector<std::string> RedactCommand(const std::vector<std::string>& words);
  std::string RedactKernelLine(const std::string& line);

  bool IsKept(ESecret kind) const { return fKept.count(kind) != 0; }
  std::uint64_t PseudonymOfNumber(const std::string& number) const {
    return fPseudonyms.Number(number);
  }

 private:
  std::string Word(ESecret kind, const std::string& value);
  void LearnWhole(ESecret kind, const std::string& value, const std::string& pseudonym);
  void LearnSpellings(ESecret kind, const std::string& value, const std::string& pseudonym,
                      EBeside beside);
  void LearnHost(const std::string& name);
  void LearnUser(const std::string& value);
  void LearnHex(const std::string& digits);
  void LearnIPv4(const std::string& text, const TIPv4& address);
  void LearnIPv6(const std::string& text, const TIPv6& address);
  bool LearnIP(const std::string& text);
  bool LearnIPv4In(std::string_view text);
  bool LearnAddress(const std::string& text, bool isPlain);
  bool LearnAddressesIn(std::string_view text, bool isPlain);
  void LearnUUIDsIn(std::string_view text);
  void LearnHostOfGroup(std::string_view text);
  void LearnStorageNamesIn(std::string_view text);
  void LearnServer(const std::string& server);
  void LearnServersOf(const std::string& source);
  void LearnMountOption(const std::string& option);
  void LearnMountSource(const std::string& source);

  const std::set<ESecret> fKept;
  TPseudonyms fPseudonyms;
  TTextReplacer fReplacer;
};

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_SECRETS_H_
