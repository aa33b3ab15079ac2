// SPDX-License-Identifier: Apache-2.0
// The consumer "jsonl": writes a JSON object for each instance, a line each.
#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>
#include <qdxmodel/waiting_namespaces.h>
#include <qdxoutput/output_file.h>

#include <string>
#include <utility>

#include <qdxsnapshot/json_lines.h>
#include <qdxsnapshot/record.h>

namespace NVORNQDX20 {
namespace {

/// Consumer "jsonl": writes the instances of namespaces, see TJSONLines.
///
/// Option "file" (string) is the file name, or "-" for standard output; see TOutputFile. With
/// option "more" (boolean) true, nothing is written yet, since each line has the host and the time,
/// which only the last namespace may tell; see TWaitingNamespaces.
class TJSONLinesConsumer final : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    if (const auto all = fWaiting.Add(std::move(ns), options, fName)) Write(*all);
  }

 private:
  void Write(const NModel::TWaitingNamespaces::TComplete& all) const {
    const TCollectionRecord record = FindRecord(all.fNamespaces);
    TOutputFile output(all.fFile, fName);
    for (const auto& ns : all.fNamespaces) {
      WriteJSONLines(record, *ns, [&output](const std::string& line) { output.Write(line); });
    }
    output.Close();
  }

  const std::string fName = "jsonl";
  NModel::TWaitingNamespaces fWaiting;
};

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* jsonl_CreateINamespaceConsumer() {
  return new TJSONLinesConsumer;
}

}  // namespace NVORNQDX20
