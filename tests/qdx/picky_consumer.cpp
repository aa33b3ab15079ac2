// SPDX-License-Identifier: Apache-2.0
// Consumer "picky": writes the names of namespaces, warns of each, and refuses root/sample.
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>

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
    std::ofstream(std::string(options["file"]), std::ios::app) << name << "\n";
  }

 private:
  const std::string fName = "picky";
};

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* picky_CreateINamespaceConsumer() {
  return new TPickyConsumer;
}
