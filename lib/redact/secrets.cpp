// SPDX-License-Identifier: Apache-2.0
#include "secrets.h"

#include <algorithm>
#include <cstddef>

#include <boost/algorithm/string/replace.hpp>

#include "command_line.h"
#include "common_values.h"
#include "spelling.h"

namespace NVORNQDX20::NRedact {
namespace {

/// Shorter values count only as whole words.
constexpr std::size_t kShortestPart = 6;
/// Longer values are learned in parts: the time to compare would grow with the square.
constexpr std::size_t kLongestPart = 256;
std::string Escaped(const std::string& value) {
  std::string text;
  for (const char c : value) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  return text;
}

/// Returns the value as names of units have it: "web\\x2d1" of "web-1".
std::string EscapedForUnits(const std::string& value) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string text;
  for (const char c : value) {
    if (IsMadeOf({&c, 1}, kWord) && c != '-') {
      text += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      text += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
  return text;
}

/// Numbers that are too common to be looked for in texts.
bool IsShortNumber(std::string_view value) { return value.size() < 4 && IsMadeOf(value, kDigits); }

/// Returns whether it is an address on a PCI bus, as in "0000:3b:00.0".
bool IsPCIAddress(std::string_view text) {
  const std::size_t dot = text.rfind('.');
  return dot != std::string_view::npos && dot + 2 == text.size() &&
         std::count(text.begin(), text.end(), ':') == 2 &&
         IsMadeOf(text, "0123456789abcdefABCDEF:.");
}

bool IsUUIDAt(std::string_view text, std::size_t at) {
  constexpr std::size_t kSize = 36;
  if (text.size() < at + kSize) return false;
  for (std::size_t i = 0; i < kSize; ++i) {
    const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
    const char c = text[at + i];
    if (isDash ? c != '-' : kHexadecimal.find(c) == std::string_view::npos) return false;
  }
  return true;
}

/// Returns whether four groups of eight hexadecimal digits are there, as mdadm writes a UUID.
bool IsArrayUUIDAt(std::string_view text, std::size_t at) {
  constexpr std::size_t kSize = 35;
  if (text.size() < at + kSize) return false;
  for (std::size_t i = 0; i < kSize; ++i) {
    const char c = text[at + i];
    if (i % 9 == 8 ? c != ':' : kHexadecimal.find(c) == std::string_view::npos) return false;
  }
  return true;
}

/// Returns whether six pairs of hexadecimal digits with colons are there, and no more of them.
bool IsEthernetAddressAt(std::string_view text, std::size_t at) {
  constexpr std::size_t kSize = 17;
  constexpr std::string_view kPart = "0123456789abcdefABCDEF:";
  if (text.size() < at + kSize) return false;
  for (std::size_t i = 0; i < kSize; ++i) {
    const char c = text[at + i];
    if (i % 3 == 2 ? c != ':' : kHexadecimal.find(c) == std::string_view::npos) return false;
  }
  const bool isLonger =
      (at != 0 && kPart.find(text[at - 1]) != std::string_view::npos) ||
      (text.size() > at + kSize && kPart.find(text[at + kSize]) != std::string_view::npos);
  return !isLonger;
}

}  // namespace

TSecrets::TSecrets(const TRedaction& redaction)
    : fKept(redaction.fKept), fPseudonyms(redaction.fKey) {}

std::string TSecrets::Word(ESecret kind, const std::string& value) {
  const char* name = "secret";
  if (kind == ESecret::kSerial) name = "serial";
  if (kind == ESecret::kHostName) name = "host";
  if (kind == ESecret::kAddress) name = "address";
  if (kind == ESecret::kUser) name = "user";
  if (kind == ESecret::kCommandLine) name = "argument";
  // The same UUID can be written in several ways.
  const std::string digits = HexDigitsOf(value);
  return fPseudonyms.Word(name, digits.empty() ? value : digits);
}

/// Learns the value as it is, and as object paths, the device mapper, links of udev and names of
/// units have it.
void TSecrets::LearnSpellings(ESecret kind, const std::string& value, const std::string& pseudonym,
                              EBeside beside) {
  const auto otherCase = [this, kind](const std::string& found) { return Word(kind, found); };
  const auto add = [&](const std::string& spelling) {
    fReplacer.Add({spelling, pseudonym, beside, otherCase});
  };
  add(value);
  if (Contains(value, "\"\\")) add(Escaped(value));
  if (Contains(value, "-")) add(boost::algorithm::replace_all_copy(value, "-", "--"));
  if (Contains(value, " ")) {
    add(boost::algorithm::replace_all_copy(value, " ", "_"));
    add(boost::algorithm::replace_all_copy(value, " ", "\\x20"));
  }
  const std::string inUnits = EscapedForUnits(value);
  if (inUnits != value) add(inUnits);
}

void TSecrets::LearnWhole(ESecret kind, const std::string& value, const std::string& pseudonym) {
  if (IsKept(kind) || IsShortNumber(value)) return;
  const EBeside beside = value.size() < kShortestPart ? EBeside::kNoWord : EBeside::kAnything;
  if (value.size() > kLongestPart + kShortestPart) {
    for (std::size_t at = 0; at < value.size();) {
      const std::size_t left = value.size() - at;
      const std::size_t size = left > kLongestPart + kShortestPart ? kLongestPart : left;
      const std::string part = value.substr(at, size);
      LearnSpellings(kind, part, Word(kind, part), EBeside::kAnything);
      at += size;
    }
    return;
  }
  const std::string digits = HexDigitsOf(value);
  if (!digits.empty()) {
    const auto always = [pseudonym](const std::string&) { return pseudonym; };
    std::vector<std::string> spellings = {value, digits, Grouped(digits, 2, ':'),
                                          Grouped(digits, 2, '-')};
    if (digits.size() == 32) {
      std::string uuid = digits;
      for (const std::size_t at : {20U, 16U, 12U, 8U}) uuid.insert(at, "-");
      spellings.push_back(uuid);
      spellings.push_back(EscapedForUnits(uuid));
      spellings.push_back(Grouped(digits, 8, ':'));
    }
    for (const std::string& each : spellings) fReplacer.Add({each, pseudonym, beside, always});
    return;
  }
  LearnSpellings(kind, value, pseudonym, beside);
}

/// A name of a host and its domain have pseudonyms of their own: "host-1f5c88d2.domain-77ab10e3".
void TSecrets::LearnHost(const std::string& name) {
  if (IsKept(ESecret::kHostName) || NRedact::IsCommon(ESecret::kHostName, name)) return;
  if (LearnIP(name)) return;
  const std::size_t dot = name.find('.');
  if (dot == std::string::npos || !IsMadeOf(name, kWord) || dot == 0) {
    return LearnWhole(ESecret::kHostName, name, Word(ESecret::kHostName, name));
  }
  const std::string host = name.substr(0, dot);
  const std::string domain = name.substr(dot + 1);
  const auto domainOf = [this](const std::string& each) {
    return NRedact::IsCommon(ESecret::kHostName, each) ? each : fPseudonyms.Word("domain", each);
  };
  const bool isDomain =
      domain.find('.') == std::string::npos && !NRedact::IsCommon(ESecret::kHostName, domain);
  const std::string hostPseudonym =
      NRedact::IsCommon(ESecret::kHostName, host) ? host : Word(ESecret::kHostName, host);
  LearnWhole(ESecret::kHostName, name,
             isDomain ? domainOf(name) : hostPseudonym + "." + domainOf(domain));
  if (hostPseudonym != host) LearnWhole(ESecret::kHostName, host, hostPseudonym);
  if (domainOf(domain) != domain && !isDomain) {
    LearnWhole(ESecret::kHostName, domain, domainOf(domain));
  }
  // Other hosts of the domain, which no property has, are in descriptions.
  const std::string ending = isDomain ? name : domain;
  if (ending.find('.') == std::string::npos || domainOf(ending) == ending) return;
  TReplacement replacement = {ending, domainOf(ending)};
  replacement.fBefore = [this](const std::string& found) {
    return Word(ESecret::kHostName, found);
  };
  fReplacer.Add(replacement);
}

void TSecrets::LearnUser(const std::string& value) {
  if (IsKept(ESecret::kUser) || NRedact::IsCommon(ESecret::kUser, value)) return;
  if (value.front() == '/') {
    LearnFrom(value);
    const bool isHome = value.compare(0, 6, "/home/") == 0;
    if (isHome || IsSystemFolder(value)) return;
    return LearnWhole(ESecret::kUser, value, "/" + Word(ESecret::kUser, value));
  }
  LearnWhole(ESecret::kUser, value, Word(ESecret::kUser, value));
  const std::size_t at = value.rfind('@');
  const std::string domain = value.substr(at + 1);  // all of it without an "@"
  if (at != std::string::npos && IsMadeOf(domain, kWord)) LearnHost(domain);
  constexpr const char* kSeparators = ",@\\";
  if (!Contains(value, kSeparators)) return;
  // The fields of a comment: name, room, telephone numbers; and "user@domain", "domain\\user".
  for (const std::string& field : Split(value, kSeparators)) {
    const bool isTelephone = field.size() >= kShortestPart && IsMadeOf(field, kDigits);
    if (field.size() < 2 || (NRedact::IsCommon(ESecret::kUser, field) && !isTelephone)) continue;
    LearnWhole(ESecret::kUser, field, Word(ESecret::kUser, field));
  }
}

/// Learns UUIDs, and what comes after the names of tags and folders that lead to a device by one.
void TSecrets::LearnUUIDsIn(std::string_view text) {
  const auto learn = [this](std::string_view value) {
    const std::string id(value);
    if (id.size() >= 4 && !NRedact::IsCommon(ESecret::kSerial, id)) {
      LearnWhole(ESecret::kSerial, id, Word(ESecret::kSerial, id));
    }
  };
  for (std::size_t dash = text.find('-'); dash != std::string_view::npos;
       dash = text.find('-', dash + 1)) {
    if (dash >= 8 && IsUUIDAt(text, dash - 8)) learn(text.substr(dash - 8, 36));
  }
  for (std::size_t colon = text.find(':'); colon != std::string_view::npos;
       colon = text.find(':', colon + 1)) {
    if (colon >= 8 && IsArrayUUIDAt(text, colon - 8)) learn(text.substr(colon - 8, 35));
  }
  for (const std::string_view tag : {"UUID=", "/by-uuid/", "/by-partuuid/", "/by-id/", "uuid/"}) {
    for (std::size_t at = text.find(tag); at != std::string_view::npos; at = text.find(tag, at)) {
      at += tag.size();
      const std::string_view rest = text.substr(at);
      learn(rest.substr(0, rest.find_first_of(" ,;\"'/)")));
    }
  }
}

void TSecrets::Learn(ESecret kind, const std::string& value) {
  if (IsKept(kind) || NRedact::IsCommon(kind, value)) return;
  switch (kind) {
    case ESecret::kNone:
      return;
    case ESecret::kSerial:
      return LearnWhole(kind, value, Word(kind, value));
    case ESecret::kHostName:
      return LearnHost(value);
    case ESecret::kUser:
      return LearnUser(value);
    case ESecret::kAddress: {
      const bool isNumber = IsMadeOf(value, kWord) && Contains(value, kDigits) &&
                            !(value.size() < 6 && IsMadeOf(value, kDigits));
      if (!LearnAddressesIn(value, true) && isNumber && value.size() >= 4 && !IsPCIAddress(value)) {
        LearnSpellings(kind, value, Word(kind, value), EBeside::kNoWord);
      }
      return;
    }
    case ESecret::kMountSource:
    case ESecret::kCommandLine:
      LearnAddressesIn(value, false);
      LearnUUIDsIn(value);
      if (kind == ESecret::kMountSource) LearnMountSource(value);
      return;
  }
}

/// Learns the host of a volume group that the installer of Debian named, "web1-vg": in the name of
/// a device, hyphens are doubled.
void TSecrets::LearnHostOfGroup(std::string_view text) {
  constexpr std::string_view kEnd = "--vg-";
  constexpr std::string_view kStart = "/dev/mapper/";
  for (std::size_t at = text.find(kStart); at != std::string_view::npos;
       at = text.find(kStart, at)) {
    at += kStart.size();
    const std::string_view name = text.substr(at, text.find_first_of(" ,\"", at) - at);
    const std::size_t end = name.find(kEnd);
    if (end == std::string_view::npos) continue;
    LearnHost(boost::algorithm::replace_all_copy(std::string(name.substr(0, end)), "--", "-"));
  }
}

void TSecrets::LearnFrom(std::string_view text) {
  LearnHostOfGroup(text);
  LearnStorageNamesIn(text);
  if (!IsKept(ESecret::kAddress)) {
    for (std::size_t colon = text.find(':'); colon != std::string_view::npos;
         colon = text.find(':', colon + 1)) {
      if (colon < 2 || !IsEthernetAddressAt(text, colon - 2)) continue;
      LearnHex(HexDigitsOf(text.substr(colon - 2, 17)));
      colon += 14;
    }
  }
  if (IsKept(ESecret::kUser)) return;
  for (const std::string_view folder : {"/home/", "/run/media/", "/media/"}) {
    for (std::size_t at = text.find(folder); at != std::string_view::npos;
         at = text.find(folder, at)) {
      at += folder.size();
      const std::size_t end = std::min(text.find_first_not_of(kWord, at), text.size());
      const bool isFolder = end < text.size() && text[end] == '/';
      const bool isEnd = end == text.size() || Contains(text.substr(end, 1), " ,;:\"'");
      const std::string name(text.substr(at, end - at));
      if (name.size() > 1 && (isFolder || (isEnd && folder == "/home/")) &&
          !NRedact::IsCommon(ESecret::kUser, name)) {
        LearnWhole(ESecret::kUser, name, Word(ESecret::kUser, name));
      }
    }
  }
}

std::string TSecrets::Redact(ESecret kind, const std::string& value) {
  std::string redacted = RedactText(value);
  if (IsKept(kind) || NRedact::IsCommon(kind, value) || redacted != value) return redacted;
  switch (kind) {
    case ESecret::kSerial:
    case ESecret::kHostName:
      return Word(kind, value);
    case ESecret::kUser:
      return value.front() == '/' ? value : Word(kind, value);
    case ESecret::kNone:
    case ESecret::kAddress:
    case ESecret::kMountSource:
    case ESecret::kCommandLine:
      break;
  }
  return redacted;
}

std::vector<std::string> TSecrets::RedactCommand(const std::vector<std::string>& words) {
  const auto redact = [this](const std::string& word) { return RedactText(word); };
  const auto hide = [this](const std::string& word) { return Word(ESecret::kCommandLine, word); };
  return RedactArguments(words, redact, hide);
}

std::string TSecrets::RedactKernelLine(const std::string& line) {
  const auto redact = [this](const std::string& word) { return RedactText(word); };
  const auto hide = [this](const std::string& word) { return Word(ESecret::kCommandLine, word); };
  return NRedact::RedactKernelLine(line, redact, hide);
}

}  // namespace NVORNQDX20::NRedact
