// SPDX-License-Identifier: Apache-2.0
// A front-end: takes what provider "loadaverage" tells to consumer "csv", and
// sees the exception of a misuse cross the library's boundary by its type.
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>
#include <qdxcore/status.h>

#include <iostream>
#include <memory>

using namespace NVORNQDX20;

int main() {
  TOSSpecific::LoadNSPLibrary("loadaverage");
  const std::unique_ptr<INamespaceConsumer> csv(TOSSpecific::LoadNSCLibrary("csv"));
  const auto provider =
      TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider("loadaverage");
  csv->Consume(provider->GetNamespace("root/loadaverage", {}), {{"file", TCIMValue("-")}});
  try {
    csv->Consume(provider->GetNamespace("root/cimv2", {}), {});
  } catch (const TQDXException& e) {
    std::cout << TOSSpecific::GetQDXRootPath() << ' ' << e.what() << '\n';
    return e.GetStatusCode() == kQDXStatusNotFound ? 0 : 1;
  }
  return 1;
}
