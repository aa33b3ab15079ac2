// SPDX-License-Identifier: Apache-2.0
// A text that is read is written back as a text that gives an equal date-time.
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace NVORNQDX20;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  TCIMDateTime value;
  try {
    value.Set(text);
  } catch (const TQDXException& e) {
    Require(e.GetStatusCode() == kQDXStatusInvalidDateTime && value.IsNull());
    return 0;
  }
  const std::string written = value.ToString();
  const TCIMDateTime again(written);
  Require(again.ToString() == written && again == value && !(again < value));
  value.ToUIString();
  try {
    const TCIMDateTime hour(0, 1, 0, 0, 0);
    Require((value + hour).IsInterval() == value.IsInterval());
    Require((value - value) == TCIMDateTime(0, 0, 0, 0, 0));
  } catch (const TQDXException& e) {
    Require(e.GetStatusCode() == kQDXStatusInvalidDateTime);
  }
  return 0;
}
