// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_SwapSpace: where the kernel puts memory that is not in use.
#include <qdxcore/schema_helper.h>

#include "classes/catalogue.h"
#include "sources/fields.h"
#include "sources/storage/mounts.h"

namespace NVORNQDX20 {
namespace {

const char* const kSwaps = "/proc/swaps";

struct TSwap {
  std::string fName;
  std::string fType;
  TNumber fSize;
  TNumber fUsed;
  TReading<std::int32_t> fPriority;
};

/// Each line has path, type, size and used size in units of 1,024 bytes, and priority; the first
/// has their names.
TInstances<TSwap> ListSwaps(const THost& host) {
  const TText table = host.Read(kSwaps, kMaxMountTableSize);
  if (!table) return Missing(table.GetReason());
  const auto bytes = [](std::string_view kibibytes) {
    return Scaled(ToNumber(TText(std::string(kibibytes)), kSwaps), 1024);
  };
  TInstances<TSwap> swaps;
  std::string_view lines = *table;
  TakeLine(lines);
  while (!lines.empty()) {
    const std::vector<std::string_view> words = WordsOf(TakeLine(lines));
    if (words.size() < 5) continue;
    swaps.fAll.push_back({PrintableText(UnescapeMount(words[0])), PrintableText(words[1]),
                          bytes(words[2]), bytes(words[3]),
                          ToNumber<std::int32_t>(TText(std::string(words[4])), kSwaps)});
  }
  if (swaps.fAll.empty()) swaps.Miss(std::string(kSwaps) + ": no swap space is in use");
  return swaps;
}

}  // namespace

TClass SwapSpaceClass() {
  return THostTable<TSwap>{
      "VORNSG_SwapSpace",
      "A partition or a file where the kernel puts memory that is not in use.",
      ListSwaps,
      {{"CSCreationClassName", "The class of the machine.",
        Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
       {"CSName", "The name of the machine.", &THost::GetNameAsKey, kKey, ESecret::kHostName},
       {"CreationClassName", "The name of this class.", kClassName, kKey},
       {"Name", "The path of the partition or file.", &TSwap::fName, kKey},
       {"Type", "\"partition\" or \"file\".", &TSwap::fType},
       {"Size", "Its size.", &TSwap::fSize, TUnit{"byte"}},
       {"UsedSpace", "How much of it is in use.", &TSwap::fUsed, TUnit{"byte"}, kGauge, kVolatile},
       {"Priority", "Of several, the one with the highest number is used first.",
        &TSwap::fPriority}}};
}

}  // namespace NVORNQDX20
