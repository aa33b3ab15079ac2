// SPDX-License-Identifier: Apache-2.0
// A consumer that does something wrong while it writes.
#include <qdxcore/interfaces.h>

#include <fstream>

#include "qdx/misbehaving.h"

using namespace NVORNQDX20;

namespace {

class TMisbehavingConsumer : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    std::ofstream(std::string(options["file"]), std::ios::app) << ns->GetName({}) << std::endl;
    const char* const what = std::getenv("QDX_MISBEHAVE");
    if (what != nullptr) Misbehave(what);
  }

 private:
  const std::string fName = "misbehaving";
};

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* misbehaving_CreateINamespaceConsumer() {
  return new TMisbehavingConsumer;
}
