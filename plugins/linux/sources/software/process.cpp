// SPDX-License-Identifier: Apache-2.0
#include "process.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "sources/fields.h"

namespace NVORNQDX20 {
namespace {

/// Longer command lines are missing; no other part of a process is.
constexpr std::size_t kMaxCommandLine = 1U << 20U;

std::vector<std::string> ParametersIn(const std::string& commandLine) {
  std::vector<std::string> parameters;
  for (std::size_t begin = 0; begin < commandLine.size();) {
    const std::size_t end = std::min(commandLine.find('\0', begin), commandLine.size());
    parameters.push_back(PrintableText(std::string_view(commandLine).substr(begin, end - begin)));
    begin = end + 1;
  }
  return parameters;
}

/// The first of the four numbers of a user: real, effective, saved, and that for files. Tabs
/// separate them.
TNumber RealUser(const TText& status) {
  return status.and_then([](const std::string& text) {
    constexpr std::string_view kName = "\nUid:\t";
    const std::size_t line = text.find(kName);
    const std::size_t begin = line == std::string::npos ? text.size() : line + kName.size();
    return ToNumber(text.substr(begin, text.find_first_of("\t\n", begin) - begin), "Uid");
  });
}

/// Parts of the kernel have no memory of their own, and a process that has ended has none left.
TNumber Memory(const TFields& status) {
  const TText line = status.Get("VmRSS");
  return line ? Scaled(status.GetNumber("VmRSS", " kB"), 1024) : TNumber(0);
}

TReading<TProcess> ReadProcess(const TFiles& folder, const std::string& id) {
  return folder.Read("stat").and_then([&](const std::string& text) -> TReading<TProcess> {
    auto state = ParseProcessState(text);
    if (!state) return folder.MissingFrom("stat", "not the state of a process");
    const TText file = folder.Read("status");
    const TFields status(folder.PathOf("status"), file, ':');
    TProcess process;
    static_cast<TProcessState&>(process) = *std::move(state);
    process.fID = id;
    process.fUser = RealUser(file);
    process.fMemory = file ? Memory(status) : TNumber(Missing(file.GetReason()));
    process.fParameters = folder.Read("cmdline", kMaxCommandLine).map(ParametersIn);
    // A process that has ended while it was read is not one of those that run.
    if (!(file && process.fParameters) && folder.IsAbsent("stat")) return TMissing{};
    return process;
  });
}

}  // namespace

std::optional<TProcessState> ParseProcessState(std::string_view text) {
  // The name can hold anything, parentheses and line ends, too.
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (close == std::string_view::npos || open > close) return std::nullopt;
  TProcessState state;
  state.fName = PrintableText(text.substr(open + 1, close - open - 1));
  text.remove_prefix(close + 1);
  std::vector<std::string_view> words;
  constexpr std::size_t kWords = 20;  // those up to the start time
  words.reserve(kWords);
  while (words.size() < kWords) {
    text.remove_prefix(std::min(text.find_first_not_of(" \n"), text.size()));
    if (text.empty()) return std::nullopt;
    const std::size_t end = std::min(text.find_first_of(" \n"), text.size());
    words.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  const auto parent = ParseNumber(words[1]);
  const auto nice = ParseNumber<std::int32_t>(words[16]);
  if (!parent || !nice) return std::nullopt;
  state.fState = words[0].front();
  state.fParent = std::to_string(*parent);
  state.fNice = *nice;
  const std::pair<std::size_t, std::uint64_t TProcessState::*> numbers[] = {
      {2, &TProcessState::fGroup},     {3, &TProcessState::fSession},
      {11, &TProcessState::fUserTime}, {12, &TProcessState::fKernelTime},
      {17, &TProcessState::fThreads},  {19, &TProcessState::fStartTime}};
  for (const auto& [position, place] : numbers) {
    const auto number = ParseNumber(words[position]);
    if (!number) return std::nullopt;
    state.*place = *number;
  }
  return state;
}

TProcesses ReadProcesses(const TFiles& files) {
  const auto names = files.List("/proc");
  TProcesses processes{{}, names.GetReason()};
  if (!names) return processes;
  for (const std::string& name : *names) {
    if (processes.fAll.size() == kMaxEntries) break;
    if (!ParseNumber<std::uint32_t>(name)) continue;
    const TFiles folder = files.In("/proc").In(name);
    TReading<TProcess> process = ReadProcess(folder, name);
    if (process) {
      processes.fAll.push_back(*std::move(process));
    } else if (!folder.IsAbsent("stat") && processes.fReason.empty()) {
      processes.fReason = process.GetReason();
    }
  }
  if (processes.fAll.empty() && processes.fReason.empty()) {
    processes.fReason = "/proc: shows no processes";
  }
  return processes;
}

}  // namespace NVORNQDX20
