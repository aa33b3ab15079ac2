// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_Processor: sockets and their cores.
#include <map>
#include <string_view>
#include <utility>

#include "classes/logical_device.h"
#include "sources/fields.h"

namespace NVORNQDX20 {
namespace {

const char* const kPath = "/proc/cpuinfo";

struct TSocket : TDevice {
  TFields fFields;       ///< The fields of its first logical processor.
  std::uint64_t fFirst;  ///< The number of its first logical processor.
  std::uint16_t fLogicalProcessors;
};

/// Each block of lines describes one logical processor.
std::string_view TakeBlock(std::string_view& text) {
  const std::size_t end = text.find("\n\n");
  const std::string_view block = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
  return block;
}

/// Returns the sockets by their numbers; one if the kernel reports no topology.
std::vector<TSocket> ParseSockets(std::string_view text) {
  std::map<std::uint64_t, TSocket> sockets;
  while (!text.empty()) {
    TFields fields(kPath, TakeBlock(text), ':');
    const TNumber number = fields.GetNumber("processor");
    if (!number) continue;  // some architectures add a block about the board
    const std::uint64_t id = fields.GetNumber("physical id").ValueOr(0);
    TDevice device{"CPU" + std::to_string(id), fields.Get("model name")};
    const auto added =
        sockets.try_emplace(id, TSocket{std::move(device), std::move(fields), *number, 0});
    ++added.first->second.fLogicalProcessors;
  }
  std::vector<TSocket> all;
  all.reserve(sockets.size());
  for (auto& each : sockets) all.push_back(std::move(each.second));
  return all;
}

TReading<std::vector<TSocket>> ListSockets(const THost& host) {
  return host.Read(kPath, TFiles::kMaxTableSize).map(ParseSockets);
}

auto Field(const char* name) {
  return [name](const TSocket& socket) { return socket.fFields.Get(name); };
}

/// Parses a clock speed such as "2596.096".
TReading<std::uint32_t> CurrentClockSpeed(const TSocket& socket) {
  const TText speed = socket.fFields.Get("cpu MHz").map(
      [](const std::string& text) { return text.substr(0, text.find('.')); });
  return ToNumber<std::uint32_t>(speed, std::string(kPath) + ": cpu MHz");
}

TReading<std::uint32_t> ReadMaxClockSpeed(const TSocket& socket, const THost& host) {
  const std::string path =
      "/sys/devices/system/cpu/cpu" + std::to_string(socket.fFirst) + "/cpufreq/cpuinfo_max_freq";
  return Scaled<std::uint32_t>(host.ReadNumber(path), 1, 1000);
}

TReading<std::uint16_t> Cores(const TSocket& socket) {
  return socket.fFields.GetNumber<std::uint16_t>("cpu cores");
}

}  // namespace

TClass ProcessorClass() {
  const TUnit megahertz{"hertz * 10^6"};
  return THostTable<TSocket>{
      "VORNSG_Processor",
      "A processor: what sits in one socket.",
      ListSockets,
      {{"Manufacturer", "The maker, as the processor says.", Field("vendor_id")},
       {"Stepping", "The revision within its model.", Field("stepping")},
       {"Microcode", "The revision of the loaded microcode.", Field("microcode")},
       {"MaxClockSpeed", "The highest clock speed.", ReadMaxClockSpeed, megahertz},
       {"CurrentClockSpeed", "The clock speed of its first logical processor just now.",
        CurrentClockSpeed, megahertz, kGauge, kVolatile},
       {"NumberOfEnabledCores", "The cores that are online.", Cores},
       {"NumberOfLogicalProcessors", "The threads of these cores that are online.",
        &TSocket::fLogicalProcessors}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
