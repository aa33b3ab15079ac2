// SPDX-License-Identifier: Apache-2.0
// A consumer library for the services "good" and "nothing".
#include <qdxcore/interfaces.h>

using namespace NVORNQDX20;

struct TTestConsumer : INamespaceConsumer {
  const std::string& GetName(TOptionsMap) const override { return fName; }
  const std::string fName = "the good consumer";
};

extern "C" {
QDXCORE_EXPORT INamespaceConsumer* good_CreateINamespaceConsumer() { return new TTestConsumer; }
QDXCORE_EXPORT INamespaceConsumer* nothing_CreateINamespaceConsumer() { return nullptr; }
}
