// SPDX-License-Identifier: Apache-2.0
#include "location.h"

#include <algorithm>
#include <cctype>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

namespace NVORNQDX20::NStore {
namespace {

const char* const kHidden = "***";

bool IsServer(const std::string& text) {
  return boost::starts_with(text, "postgresql://") || boost::starts_with(text, "postgres://");
}

/// A password with a bare "/" or "@" ends elsewhere for the library, whose message then has a piece
/// of it. So each piece is a secret.
void AddPieces(const std::string& password, std::vector<std::string>& secrets) {
  const char* const kDelimiters = "/:?#[]@&=";
  for (std::size_t start = 0; start < password.size();) {
    const std::size_t end = std::min(password.find_first_of(kDelimiters, start), password.size());
    if (end > start) secrets.push_back(password.substr(start, end - start));
    start = end + 1;
  }
}

/// Replaces the password between the user's name and the host.
void HideUserPassword(std::string& url, std::vector<std::string>& secrets) {
  const std::size_t user = url.find("://") + 3;
  const std::size_t end = url.rfind('@');
  const std::size_t colon = url.find(':', user);
  if (end == std::string::npos || colon > end) return;
  AddPieces(url.substr(colon + 1, end - colon - 1), secrets);
  url.replace(colon, end - colon, std::string(":") + kHidden);
}

/// Replaces the value of a parameter after the question mark.
void HideParameter(std::string& url, const std::string& name, std::vector<std::string>& secrets) {
  for (std::size_t at = 0; (at = url.find(name + "=", at)) != std::string::npos;) {
    at += name.size() + 1;
    const std::size_t end = std::min(url.find('&', at), url.size());
    AddPieces(url.substr(at, end - at), secrets);
    url.replace(at, end - at, kHidden);
  }
}

}  // namespace

TLocation::TLocation(const std::string& text)
    : fText(text), fShown(text), fIsFile(!IsServer(text)) {
  if (fIsFile) return;
  HideParameter(fShown, "password", fSecrets);
  HideUserPassword(fShown, fSecrets);
  // A longer one first, of which another may be a part.
  std::sort(fSecrets.begin(), fSecrets.end(),
            [](const auto& a, const auto& b) { return a.size() > b.size(); });
}

std::string TLocation::UnknownSchemeOf(const std::string& text) {
  const std::size_t end = text.find("://");
  const bool isScheme =
      end != std::string::npos && end > 0 && !IsServer(text) &&
      std::all_of(
          text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end),
          [](unsigned char c) { return std::isalnum(c) != 0 || c == '+' || c == '-' || c == '.'; });
  return isScheme ? text.substr(0, end + 3) : "";
}

std::string TLocation::WithoutSecrets(std::string message) const {
  if (fIsFile) return message;
  boost::replace_all(message, fText, fShown);
  for (const std::string& secret : fSecrets) {
    boost::replace_all(message, "\"" + secret + "\"", std::string("\"") + kHidden + "\"");
    if (secret.size() > 2) boost::replace_all(message, secret, kHidden);
  }
  return message;
}

}  // namespace NVORNQDX20::NStore
