// SPDX-License-Identifier: Apache-2.0
// A front-end: passes a namespace of provider "loadaverage" to consumer "csv", then catches an
// exception that a plug-in throws for an unknown namespace.
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
