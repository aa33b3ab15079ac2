// SPDX-License-Identifier: Apache-2.0
// What workers send. Messages: what is taken from a packet has the size that is allowed, and is
// written as the same packet. Images: any bytes give a namespace or a TQDXException, and a
// namespace that was read is written as an image that is read again, and written with the same
// size.
#include <qdxcore/status.h>
#include <qdxplugin_host/image.h>
#include <qdxplugin_host/message.h>

#include <algorithm>

#include "checks.h"

using namespace NVORNQDX20;
using namespace NVORNQDX20::NPluginHost;

namespace {

TImage Read(std::string_view bytes) {
  const auto read = [&bytes](char* buffer, std::size_t size) {
    const std::size_t count = std::min({size, std::size_t{7}, bytes.size()});
    std::copy_n(bytes.begin(), count, buffer);
    bytes.remove_prefix(count);
    return count;
  };
  return ReadImage("root/cimv2", read, std::size_t{1} << 24U);
}

std::string Written(const TImage& image) {
  std::string bytes;
  (void)WriteImage(*image.fNamespace, [&bytes](std::string_view next) { bytes += next; });
  return bytes;
}

void CheckMessage(const std::string& packet) {
  const auto message = DecodeMessage(packet);
  if (!message) return;
  Require(message->fTexts.size() <= kMaxMessageTexts && !message->fFile.IsOpen());
  Require(std::all_of(message->fTexts.begin(), message->fTexts.end(),
                      [](const auto& text) { return text.size() <= kMaxMessageText; }));
  Require(EncodeMessage(*message) == packet);
}

void CheckImage(const std::string& bytes) {
  TImage image;
  try {
    image = Read(bytes);
  } catch (const TQDXException&) {
    return;
  }
  const std::string written = Written(image);
  // Classes that refer to each other change their order.
  Require(Written(Read(written)).size() == written.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  CheckMessage(input);
  CheckImage(input);
  return 0;
}
