// SPDX-License-Identifier: Apache-2.0
// Does one thing with plug-ins and prints what came of it, sorted, then what was logged.
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>
#include <qdxcore/status.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include <dlfcn.h>

using namespace NVORNQDX20;

namespace {

std::vector<std::string> Do(const std::string& what, const std::string& name) {
  if (what == "root") return {TOSSpecific::GetQDXRootPath()};
  if (what == "nsps") return TOSSpecific::FindNSPs();
  if (what == "nscs") return TOSSpecific::FindNSCs();
  if (what == "plugins") return TOSSpecific::FindPlugins(name);
  if (what == "load-nsp") {
    TOSSpecific::LoadNSPLibrary(name);
    return {TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider("test")->GetName({})};
  }
  if (what == "load-nsc") {
    const boost::shared_ptr<INamespaceConsumer> consumer(TOSSpecific::LoadNSCLibrary(name));
    const bool isGlobal = ::dlsym(RTLD_DEFAULT, "good_CreateINamespaceConsumer") != nullptr;
    return {consumer ? consumer->GetName({}) : "null", isGlobal ? "visible to all" : "local"};
  }
  if (what == "load") return {TOSSpecific::LoadPluginLibrary(name) ? "loaded" : "null"};
  throw TQDXException(kQDXStatusNotSupported);
}

}  // namespace

int main(int argc, char** argv) {
  TLogger::Initialize();
  try {
    std::vector<std::string> results = Do(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : "");
    std::sort(results.begin(), results.end());
    for (const std::string& result : results) std::cout << result << '\n';
  } catch (const std::exception& e) {
    std::cout << e.what() << '\n';
  }
  for (const auto& entry : TLogger::GetInstance()->GetLog()) {
    std::cout << "log " << entry.fSeverity << ' ' << entry.fMessage << '\n';
  }
  return 0;
}
