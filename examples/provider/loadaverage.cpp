// SPDX-License-Identifier: Apache-2.0
// A provider that publishes the load average of a machine in a namespace of its own.
#include <qdxdescribe/provider.h>

#include <cstdint>
#include <locale>
#include <sstream>
#include <string>

using namespace NVORNQDX20;
using namespace NDescribe;

namespace {

struct TLoad {
  double fOneMinute;
  double fFiveMinutes;
  double fFifteenMinutes;
  std::uint32_t fProcesses;
};

/// Parses "0.52 0.58 0.59 2/345 12345": three averages, the numbers of running processes and of all
/// processes, and the newest process ID.
TReading<TLoad> ReadLoad(const TRequest& request) {
  const char* const path = "/proc/loadavg";
  const TFiles files(request);
  return files.ReadLine(path).and_then([&](const std::string& line) -> TReading<TLoad> {
    std::istringstream words(line);
    words.imbue(std::locale::classic());
    TLoad load{};
    std::uint32_t running = 0;
    char slash = 0;
    words >> load.fOneMinute >> load.fFiveMinutes >> load.fFifteenMinutes >> running >> slash >>
        load.fProcesses;
    if (words) return load;
    return files.MissingFrom(path, "not three averages and two numbers of processes");
  });
}

TTable<TLoad> LoadAverage() {
  return {"Example_LoadAverage",
          "The load of the machine.",
          ReadLoad,
          {{"Name", "Identifies the only instance.", Constant("load"), kKey},
           {"OneMinute", "The processes that run or wait, on average over one minute.",
            &TLoad::fOneMinute, kGauge, kVolatile},
           {"FiveMinutes", "The same over five minutes.", &TLoad::fFiveMinutes, kGauge, kVolatile},
           {"FifteenMinutes", "The same over fifteen minutes.", &TLoad::fFifteenMinutes, kGauge,
            kVolatile},
           {"Processes", "The processes and threads that exist.", &TLoad::fProcesses,
            TUnit{"count"}, kGauge, kVolatile}}};
}

[[maybe_unused]] const bool kRegistered = RegisterProvider(
    [] { return MakeProvider("loadaverage", "root/loadaverage", {LoadAverage()}); });

}  // namespace
