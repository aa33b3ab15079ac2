// SPDX-License-Identifier: Apache-2.0
#include "cpu_sets.h"

namespace NVORNQDX20 {
namespace {

/// A machine has a processor: an empty list says nothing.
TReading<TCPUs> ReadPresent(const TFiles& files) {
  const char* const file = "present";
  return ReadCPUSet(files, file, "").and_then([&](const TCPUs& cpus) -> TReading<TCPUs> {
    if (cpus.empty()) return files.MissingFrom(file, "no list of processors");
    return cpus;
  });
}

}  // namespace

TReading<TCPUs> ReadCPUSet(const TFiles& files, const std::string& list, const std::string& mask) {
  const TText text = files.Read(list);
  if (!text && !text.GetReason().IsError() && !mask.empty()) {
    return files.Read(mask).and_then([&](const std::string& digits) -> TReading<TCPUs> {
      if (auto cpus = ParseCPUMask(digits.substr(0, digits.find('\n')))) return *cpus;
      return files.MissingFrom(mask, "no mask of processors");
    });
  }
  return text.and_then([&](const std::string& numbers) -> TReading<TCPUs> {
    if (auto cpus = ParseCPUList(numbers.substr(0, numbers.find('\n')))) return *cpus;
    return files.MissingFrom(list, "no list of processors");
  });
}

TCPULists::TCPULists(const THost& host)
    : fPresent(ReadPresent(host.In(kProcessorFolder))),
      fOnline(ReadCPUSet(host.In(kProcessorFolder), "online", "")) {}

}  // namespace NVORNQDX20
