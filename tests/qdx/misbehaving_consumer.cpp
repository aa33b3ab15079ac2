// SPDX-License-Identifier: Apache-2.0
// A consumer that does something wrong in one of its operations: init, create, name, write or end
// (its destructor); QDX_MISBEHAVE says which and what, for example "write_hang".
#include <qdxcore/interfaces.h>

#include <fstream>

#include "qdx/misbehaving.h"

using namespace NVORNQDX20;

namespace {

void Do(const std::string& where) {
  const char* const variable = std::getenv("QDX_MISBEHAVE");
  const std::string what = variable == nullptr ? "" : variable;
  if (what.compare(0, where.size(), where) == 0) Misbehave(what.substr(where.size() + 1));
}

class TMisbehavingConsumer : public INamespaceConsumer {
 public:
  // NOLINTNEXTLINE(bugprone-exception-escape): one of the mistakes
  ~TMisbehavingConsumer() override { Do("end"); }

  const std::string& GetName(TOptionsMap) const override {
    Do("name");
    return fName;
  }

  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    const char* const mistake = std::getenv("QDX_MISBEHAVE");
    if (mistake != nullptr && std::string(mistake) == "silent") return;
    std::ofstream(std::string(options["file"]), std::ios::app) << ns->GetName({}) << std::endl;
    Do("write");
  }

 private:
  const std::string fName = "misbehaving";
};

[[maybe_unused]] const bool kInitialised = [] {
  Do("init");
  return true;
}();

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* misbehaving_CreateINamespaceConsumer() {
  Do("create");
  return new TMisbehavingConsumer;
}
