// SPDX-License-Identifier: Apache-2.0
#include "worker_options.h"

#include <qdxsystem/error_text.h>

#include <cerrno>
#include <charconv>
#include <memory>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include "cli/failure.h"
#include "cli/progress.h"

namespace NVORNQDX20 {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

/// Parses the value of an option: a number from 1 to the largest that the type can hold; `what`
/// begins with the unit.
template <typename TNumber>
TNumber NumberOf(const std::string& text, const char* option, const std::string& what) {
  TNumber number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number == 0) {
    FailOnUsage(std::string("--") + option + " is '" + text + "', not a number of " + what);
  }
  return number;
}

/// Throws a TCommandFailure for an unknown user, and for another one without the privilege.
NPluginHost::TUser UserNamed(const std::string& name) {
  const std::string action = "taking on the privileges of user " + name;
  errno = 0;
  const passwd* const user = ::getpwnam(name.c_str());
  if (user == nullptr) {
    throw TCommandFailure(kExitBadInput, action,
                          {kQDXStatusNotFound, errno == 0 ? "no such user" : ErrorText(errno)});
  }
  if (::geteuid() != 0) {
    throw TCommandFailure(kExitBadInput, action, {kQDXStatusAccessDenied, "only root can do that"});
  }
  int count = 0;
  ::getgrouplist(name.c_str(), user->pw_gid, nullptr, &count);
  NPluginHost::TUser taken{user->pw_uid, user->pw_gid, {}};
  taken.fGroups.resize(static_cast<std::size_t>(count));
  ::getgrouplist(name.c_str(), user->pw_gid, taken.fGroups.data(), &count);
  return taken;
}

}  // namespace

std::vector<TOptionSpec> WorkerOptions() {
  return {
      {"timeout", "SECONDS", "Give up on a plug-in after this time (30 by default)."},
      {"memory", "MIB", "Let a plug-in use so much memory (1024 by default)."},
      {"delivery", "MIB", "Accept so much data of a plug-in (1024 by default)."},
      {"user", "NAME", "Ask providers with the privileges of this user; needs root."},
  };
}

std::uint64_t BytesOf(const TArguments& arguments, const char* option) {
  const std::string what = "MiB from 1 to 4294967295";
  return std::uint64_t{NumberOf<std::uint32_t>(arguments.Get(option, ""), option, what)} << 20U;
}

std::chrono::seconds SecondsOf(const TArguments& arguments, const char* option,
                               const std::string& defaultValue) {
  const std::string text = arguments.Get(option, defaultValue);
  return std::chrono::seconds(NumberOf<std::uint16_t>(text, option, "seconds from 1 to 65535"));
}

NPluginHost::TWorkerLimits LimitsOf(const TArguments& arguments) {
  NPluginHost::TWorkerLimits limits;
  if (arguments.Has("timeout")) limits.fTime = SecondsOf(arguments, "timeout", "");
  if (arguments.Has("memory")) limits.fMemory = BytesOf(arguments, "memory");
  if (arguments.Has("delivery")) limits.fDelivery = BytesOf(arguments, "delivery");
  if (kIsSanitized) limits.fMemory = 0;
  if (arguments.Has("user")) limits.fUser = UserNamed(arguments.Get("user", ""));
  return limits;
}

NPluginHost::TWaitCallback ShowWaiting() {
  const auto line = std::make_shared<TProgressLine>();
  return [line](const std::vector<std::string>& names, std::chrono::seconds time) {
    if (time.count() == 0) return;
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : ", ") + name;
    line->Show("waiting for " + all + " (" + std::to_string(time.count()) + " s)");
  };
}

}  // namespace NVORNQDX20
