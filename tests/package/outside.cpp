// SPDX-License-Identifier: Apache-2.0
// Uses the library as a stranger does; the exception crosses the library's boundary by its type.
#include <qdxcore/os_specific.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <iostream>

using namespace NVORNQDX20;

int main() {
  const TCIMReference unbound(nullptr, TOptionsMap());
  try {
    unbound.GetClass();
  } catch (const TQDXException& e) {
    std::cout << TOSSpecific::GetQDXRootPath() << ' ' << e.what() << '\n';
    return e.GetStatusCode() == kQDXStatusInvalidReference ? 0 : 1;
  }
  return 1;
}
