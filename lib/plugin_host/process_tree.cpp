// SPDX-License-Identifier: Apache-2.0
#include "process_tree.h"

#include <qdxsystem/descriptor.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NVORNQDX20::NPluginHost {
namespace {

struct TProcess {
  std::string fName;
  pid_t fParent = 0;
  char fState = 'X';
};

std::string ReadProcFile(pid_t process, const char* name) {
  const std::string path = "/proc/" + std::to_string(process) + "/" + name;
  const TDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  char text[512];
  const ssize_t size = file.IsOpen() ? ::read(file.Get(), text, sizeof text) : 0;
  return {text, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

/// Parses "4711 (a name) S 4710 ...": a name may contain anything, so the last parenthesis counts.
TProcess ReadProcess(pid_t process) {
  const std::string text = ReadProcFile(process, "stat");
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (open == std::string::npos || close == std::string::npos || close + 4 >= text.size())
    return {};
  const long parent = std::strtol(text.c_str() + close + 4, nullptr, 10);
  return {text.substr(open + 1, close - open - 1), static_cast<pid_t>(parent), text[close + 2]};
}

}  // namespace

std::vector<pid_t> Descendants(const std::set<pid_t>& excepted) {
  std::multimap<pid_t, pid_t> children;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc"), ::closedir);
  while (const dirent* const entry = folder ? ::readdir(folder.get()) : nullptr) {
    const long number = std::strtol(entry->d_name, nullptr, 10);
    if (number <= 0) continue;
    const TProcess process = ReadProcess(static_cast<pid_t>(number));
    if (process.fState == 'X') continue;
    if (excepted.count(static_cast<pid_t>(number)) != 0) continue;
    children.emplace(process.fParent, static_cast<pid_t>(number));
  }
  std::vector<pid_t> found = {::getpid()};
  for (std::size_t i = 0; i < found.size(); ++i) {
    const auto [begin, end] = children.equal_range(found[i]);
    for (auto child = begin; child != end; ++child) found.push_back(child->second);
  }
  found.erase(found.begin());
  return found;
}

TSubreaper::TSubreaper() {
  siginfo_t ended{};
  const bool hasNoChild = ::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) != 0;
  fIsActive = hasNoChild && ::prctl(PR_SET_CHILD_SUBREAPER, 1) == 0;
}

TSubreaper::~TSubreaper() {
  if (fIsActive) ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

void TSubreaper::KillOrphans(const std::set<pid_t>& children) const {
  constexpr int mostRounds = 200;  // one of them may wait for a dead disk
  for (int i = 0; fIsActive && i < mostRounds; ++i) {
    const std::vector<pid_t> orphans = Descendants(children);
    if (orphans.empty()) return;
    for (const pid_t orphan : orphans) {
      ::kill(orphan, SIGKILL);
      ::waitpid(orphan, nullptr, WNOHANG);
    }
    ::usleep(1000);
  }
}

bool IsUninterruptible(pid_t process) { return ReadProcess(process).fState == 'D'; }

std::string DescribeStuck(pid_t process) {
  std::string text = "process " + std::to_string(process);
  const std::string name = ReadProcess(process).fName;
  if (!name.empty()) text += " (" + name + ")";
  const std::string place = ReadProcFile(process, "wchan");
  if (place.size() > 1) text += ", which waits in the kernel (" + place + ")";
  return text;
}

}  // namespace NVORNQDX20::NPluginHost
