// SPDX-License-Identifier: Apache-2.0
#include "process_tree.h"

#include <qdxsystem/descriptor.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
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

std::vector<pid_t> Descendants() {
  std::multimap<pid_t, pid_t> children;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc"), ::closedir);
  while (const dirent* const entry = folder ? ::readdir(folder.get()) : nullptr) {
    const long number = std::strtol(entry->d_name, nullptr, 10);
    if (number <= 0) continue;
    const TProcess process = ReadProcess(static_cast<pid_t>(number));
    // An ended process that is not waited for has no effect any more.
    if (std::string_view("XZ").find(process.fState) != std::string_view::npos) continue;
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
