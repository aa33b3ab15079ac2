// SPDX-License-Identifier: Apache-2.0
// Messages of workers: what is taken from a packet has the size that is allowed, and is written as
// the same packet.
#include <qdxplugin_host/message.h>

#include <algorithm>

#include "checks.h"

using namespace NVORNQDX20::NPluginHost;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string packet(reinterpret_cast<const char*>(data), size);
  const auto message = DecodeMessage(packet);
  if (!message) return 0;
  Require(message->fTexts.size() <= kMaxMessageTexts && !message->fFile.IsOpen());
  Require(std::all_of(message->fTexts.begin(), message->fTexts.end(),
                      [](const auto& text) { return text.size() <= kMaxMessageText; }));
  Require(EncodeMessage(*message) == packet);
  return 0;
}
