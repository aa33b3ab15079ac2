// SPDX-License-Identifier: Apache-2.0
// The consumer "html": writes reports for people.
#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>
#include <qdxmodel/waiting_namespaces.h>
#include <qdxoutput/output_file.h>
#include <qdxreport/report.h>

#include <string>
#include <utility>

namespace NVORNQDX20 {
namespace {

/// Consumer "html": writes namespaces as one HTML page, see MakeReport().
///
/// Option "file" (string) is the file name, or "-" for standard output; see TOutputFile. With
/// option "more" (boolean) true, nothing is written yet; see TWaitingNamespaces.
class THTMLConsumer final : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    const auto all = fWaiting.Add(std::move(ns), options, fName);
    if (!all) return;
    const std::string page = MakeReport(all->fNamespaces);
    TOutputFile output(all->fFile, fName);
    output.Write(page);
    output.Close();
  }

 private:
  const std::string fName = "html";
  NModel::TWaitingNamespaces fWaiting;
};

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* html_CreateINamespaceConsumer() {
  return new THTMLConsumer;
}

}  // namespace NVORNQDX20
