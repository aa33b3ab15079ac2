// SPDX-License-Identifier: Apache-2.0
// A consumer library for the services "good" and "nothing".
#include <qdxcore/interfaces.h>

using namespace NVORNQDX20;

namespace {

class TTestConsumer : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

 private:
  std::string fName = "the good consumer";
};

}  // namespace

extern "C" {
QDXCORE_EXPORT INamespaceConsumer* good_CreateINamespaceConsumer() { return new TTestConsumer; }
QDXCORE_EXPORT INamespaceConsumer* nothing_CreateINamespaceConsumer() { return nullptr; }
}
