// SPDX-License-Identifier: Apache-2.0
// A path that is read is written as a path that reads back to an equal reference and the same text.
#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "support/class_builder.h"

using namespace NVORNQDX20;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// No reals: those are written with six digits, so they come back as others.
TNamespace MakeSchema() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "C", {{"a", ""}, {"b", 0U}, {"c", false}});
  AddClass(ns, "L", {{"r", NullReference(ns, "C")}, {"s", NullReference(ns, "C")}, {"i", -1L}});
  AddClass(ns, "M", {{"l", NullReference(ns, "L")}, {"a", ""}});
  return ns;
}

/// Whether a reference within the reference has no keys. The text of such a one runs to the end of
/// what it stands in, so it does not come back.
bool HasKeylessPart(const TCIMReference& reference) {
  bool keyless = false;
  reference.EnumerateKeyBindings([&keyless](std::pair<std::string, TCIMValue> binding) {
    if (!binding.second.IsReference()) return true;
    const TCIMReference part = binding.second;
    keyless = part.GetPath().find('.') == std::string::npos || HasKeylessPart(part);
    return !keyless;
  });
  return keyless;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TNamespace ns = MakeSchema();
  TCIMReference reference(ns, TOptionsMap());
  try {
    reference.SetPath(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const TQDXException&) {
    return 0;
  }
  if (HasKeylessPart(reference)) return 0;
  const std::string written = reference.GetPath();
  const TCIMReference again(ns, written, TOptionsMap());
  Require(again.GetPath() == written);
  Require(again == reference);
  return 0;
}
