// SPDX-License-Identifier: Apache-2.0
// Consumer "picky": writes the names of namespaces and of the providers that have them, warns of
// each, and refuses root/sample.
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>

#include <fstream>

using namespace NVORNQDX20;

namespace {

class TPickyConsumer : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    const std::string name = ns->GetName({});
    LogMessage(ILogger::kLogWarning, {"shortened ", name});
    if (name == "root/sample") LogErrorAndThrow(kQDXStatusNotSupported, {"not that one"});
    std::ofstream file{std::string(options["file"]), std::ios::app};
    file << name;
    boost::function<bool(boost::shared_ptr<INamespaceProvider>)> write = [&](const auto& provider) {
      provider->EnumerateNamespaceNames(
          [&](const std::string& each) {
            if (each == name && provider->GetNamespace(each, {})->GetName({}) == name) {
              file << " of " << provider->GetName({});
            }
            return true;
          },
          {});
      return true;
    };
    TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(write);
    file << "\n";
  }

 private:
  const std::string fName = "picky";
};

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* picky_CreateINamespaceConsumer() {
  return new TPickyConsumer;
}
