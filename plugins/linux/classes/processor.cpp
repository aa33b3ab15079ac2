// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Processor: sockets and their cores.
#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "logical_device.h"
#include "machine/fields.h"
#include "machine/numbers.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

const char* const kPath = "/proc/cpuinfo";

struct TSocket {
  TFields fFields;       ///< The fields of its first logical processor.
  std::uint64_t fFirst;  ///< The number of its first logical processor.
  std::uint16_t fLogicalProcessors = 0;
};

/// Each block of lines describes one logical processor.
std::string_view TakeBlock(std::string_view& text) {
  const std::size_t end = text.find("\n\n");
  const std::string_view block = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
  return block;
}

/// Returns the sockets by their numbers; one if the kernel reports no topology.
std::map<std::uint64_t, TSocket> ParseSockets(std::string_view text) {
  std::map<std::uint64_t, TSocket> sockets;
  while (!text.empty()) {
    TFields fields(kPath, TakeBlock(text), ':');
    const TNumber number = fields.GetNumber("processor");
    if (!number) continue;  // some architectures add a block about the board
    const std::uint64_t id = fields.GetNumber("physical id").fValue.value_or(0);
    const auto added = sockets.try_emplace(id, TSocket{std::move(fields), *number.fValue});
    ++added.first->second.fLogicalProcessors;
  }
  return sockets;
}

/// Parses a clock speed such as "2596.096".
TNumber CurrentClockSpeed(const TFields& fields) {
  TReading speed = fields.Get("cpu MHz");
  if (speed) speed.fValue->resize(std::min(speed.fValue->find('.'), speed.fValue->size()));
  return ToNumber(speed, std::string(kPath) + ": cpu MHz");
}

TNumber ReadMaxClockSpeed(const THostFiles& files, const TSocket& socket) {
  return Scaled(ReadNumber(files, "/sys/devices/system/cpu/cpu" + std::to_string(socket.fFirst) +
                                      "/cpufreq/cpuinfo_max_freq"),
                1, 1000);
}

std::vector<TPropertySpec> ProcessorProperties() {
  const char* const megahertz = "hertz * 10^6";
  return {{"Manufacturer", TType::kCIMTypeString, false, "The maker, as the processor says."},
          {"Stepping", TType::kCIMTypeString, false, "The revision within its model."},
          {"Microcode", TType::kCIMTypeString, false, "The revision of the loaded microcode."},
          {"MaxClockSpeed", TType::kCIMTypeUint32, false, "The highest clock speed.", megahertz},
          {"CurrentClockSpeed", TType::kCIMTypeUint32, false,
           "The clock speed of its first logical processor just now.", megahertz},
          {"NumberOfEnabledCores", TType::kCIMTypeUint16, false, "The cores that are online."},
          {"NumberOfLogicalProcessors", TType::kCIMTypeUint16, false,
           "The threads of these cores that are online."}};
}

void AddProcessors(TNamespaceBuilder& builder, const THost& host, ICIMClass& processor) {
  const TReading file = host.fFiles.Read(kPath, THostFiles::kMaxTableSize);
  if (!file) builder.NoteMissingInstances(processor, file.fReason);
  for (const auto& [id, socket] : ParseSockets(file.fValue.value_or(std::string()))) {
    const TFields& fields = socket.fFields;
    const TNumber cores = fields.GetNumber("cpu cores");
    AddDevice(builder, host, processor, "CPU" + std::to_string(id),
              {{"Name", fields.Get("model name")},
               {"Manufacturer", fields.Get("vendor_id")},
               {"Stepping", fields.Get("stepping")},
               {"Microcode", fields.Get("microcode")},
               {"MaxClockSpeed", NumberAs<std::uint32_t>(ReadMaxClockSpeed(host.fFiles, socket))},
               {"CurrentClockSpeed", NumberAs<std::uint32_t>(CurrentClockSpeed(fields))},
               {"NumberOfEnabledCores", NumberAs<std::uint16_t>(cores)},
               {"NumberOfLogicalProcessors", socket.fLogicalProcessors}});
  }
}

}  // namespace

TClassDescription ProcessorClass() {
  return {DeviceClass("VORNSG_Processor", "A processor: what sits in one socket.",
                      ProcessorProperties()),
          AddProcessors};
}

}  // namespace NVORNQDX20
