// SPDX-License-Identifier: Apache-2.0
#include "credentials.h"

#include <algorithm>
#include <iterator>
#include <locale>

#include <boost/algorithm/string/case_conv.hpp>

namespace NVORNQDX20 {
namespace {

/// Complete names of options, in lower case.
constexpr std::string_view kSecretOptions[] = {"user",     "username", "pass",   "passwd",
                                               "password", "cred",     "secret", "password2"};
/// Parts of names of options.
constexpr std::string_view kSecretParts[] = {"passw", "secret", "token", "key="};

bool IsSecret(std::string_view option) {
  std::string name(option.substr(0, option.find('=')));
  boost::algorithm::to_lower(name, std::locale::classic());
  const std::string withEquals = name + "=";
  return std::find(std::begin(kSecretOptions), std::end(kSecretOptions), name) !=
             std::end(kSecretOptions) ||
         std::any_of(std::begin(kSecretParts), std::end(kSecretParts), [&](std::string_view part) {
           return withEquals.find(part) != std::string::npos;
         });
}

/// Takes the text before the next comma, and the comma.
std::string_view TakeOption(std::string_view& options) {
  const std::size_t end = options.find(',');
  const std::string_view option = options.substr(0, end);
  options.remove_prefix(end == std::string_view::npos ? options.size() : end + 1);
  return option;
}

/// Returns the place of the "@" after the user of "user@host:/path", or of
/// "user@cluster.name=/path" as Ceph has it. A path has a slash before the "@".
std::size_t FindEndOfUser(const std::string& device) {
  // "user:password@host": rather too much is removed than too little. But "host:/path@2" has none.
  const std::size_t colon = device.find_first_of(":/@");
  const std::size_t last = device.rfind('@');
  const bool hasPassword =
      last != std::string::npos && device[colon] == ':' && device.compare(colon, 2, ":/") != 0;
  if (hasPassword) return last;
  const std::size_t at = device.find('@');
  const bool isShare = at < device.find('/') && (device.find(':', at) != std::string::npos ||
                                                 device.find("=/", at) != std::string::npos);
  return isShare ? at : std::string::npos;
}

}  // namespace

std::string WithoutCredentials(std::string device, const std::string& fileSystemType) {
  // Its servers are addresses in networks: "10.0.0.1@o2ib:/home".
  if (fileSystemType == "lustre") return device;
  const std::size_t scheme = device.find("://");
  if (device.compare(0, 2, "//") == 0) {
    const std::string share = device.substr(2);
    const std::size_t at = std::min(share.find('@'), share.find('/'));
    std::size_t end = FindEndOfUser(share);
    if (end == std::string::npos && at != std::string::npos && share[at] == '@') end = at;
    return end == std::string::npos ? device : device.replace(2, end, kRemoved);
  }
  if (scheme == std::string::npos || device.find_first_of("/@") < scheme) {
    const std::size_t end = FindEndOfUser(device);
    return end == std::string::npos ? device : device.replace(0, end, kRemoved);
  }
  const std::size_t begin = scheme + 3;
  const std::size_t at = device.rfind('@');
  if (at != std::string::npos && at >= begin) device.replace(begin, at - begin, kRemoved);
  const std::size_t query = device.find('?', begin);
  if (query != std::string::npos) device.replace(query + 1, std::string::npos, kRemoved);
  return device;
}

std::string OptionsWithoutCredentials(std::string_view options) {
  std::string kept;
  bool isSecret = false;
  while (!options.empty()) {
    const std::string_view option = TakeOption(options);
    if (isSecret && option.empty()) {
      TakeOption(options);  // a doubled comma is part of the password, and so is what follows
      continue;
    }
    const std::size_t equals = option.find('=');
    isSecret = equals != std::string_view::npos && IsSecret(option);
    if (!kept.empty()) kept += ',';
    kept.append(isSecret ? option.substr(0, equals + 1) : option);
    if (isSecret) kept.append(kRemoved);
  }
  return kept;
}

}  // namespace NVORNQDX20
