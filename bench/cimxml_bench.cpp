// SPDX-License-Identifier: Apache-2.0
// Writes and reads a document of 100,000 instances with ten properties of mixed types each.
#include <qdxcimxml/document_reader.h>
#include <qdxcimxml/document_writer.h>

#include "support/class_builder.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <expat.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace NVORNQDX20;

constexpr int kInstances = 100000;

TNamespace MakeDisks() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_DiskDrive", {{"DeviceID", ""}, {"SystemName", ""}},
           {{"Enabled", false},
            {"Percent", static_cast<unsigned char>(0)},
            {"Port", static_cast<unsigned short>(0)},
            {"Errors", 0U},
            {"Temperature", 0},
            {"Size", 0UL},
            {"Load", 0.0},
            {"Installed", TCIMDateTime(2004, 3, 15, 14, 30, 0, 0, 60)}});
  const auto disks = ns->GetClass("CIM_DiskDrive", {});
  for (int i = 0; i < kInstances; ++i) {
    const auto disk = disks->CreateInstance({});
    disk->SetPropertyValue("DeviceID", "disk" + std::to_string(i), {});
    disk->SetPropertyValue("SystemName", "server.example & others", {});
    disk->SetPropertyValue("Errors", static_cast<unsigned int>(i), {});
    disk->SetPropertyValue("Size", static_cast<unsigned long>(i) * 512, {});
    disk->SetPropertyValue("Load", i / 7.0, {});
    disk->Commit({});
  }
  return ns;
}

const TNamespace& Disks() {
  static const TNamespace ns = MakeDisks();
  return ns;
}

void WriteDisks(const std::string& file) {
  NCIMXML::TDocumentWriter writer(file);
  writer.AddNamespace(*Disks());
  writer.Close();
}

/// Returns the descriptor of the document, a file in memory.
int DocumentFile() {
  static const int file = [] {
    const int created = ::memfd_create("cimxml_bench", MFD_CLOEXEC);
    WriteDisks("/proc/self/fd/" + std::to_string(created));
    return created;
  }();
  return file;
}

const std::string& DocumentText() {
  static const std::string text = [] {
    std::string all(static_cast<std::size_t>(::lseek(DocumentFile(), 0, SEEK_END)), '\0');
    const bool isWhole =
        ::pread(DocumentFile(), all.data(), all.size(), 0) == static_cast<ssize_t>(all.size());
    return isWhole ? all : std::string();
  }();
  return text;
}

void CountBytes(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * DocumentText().size()));
}

/// Returns the peak resident set size of the process.
double PeakMiB() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::atof(line.c_str() + 6) / 1024;
  }
  return 0;
}

void ResetPeak() {
  ::malloc_trim(0);  // free memory that is kept would hide growth
  std::ofstream("/proc/self/clear_refs") << "5";
}

void CIMXMLWrite(benchmark::State& state) {
  DocumentText();
  ResetPeak();
  const double before = PeakMiB();
  for (auto _ : state) WriteDisks("/dev/null");
  state.counters["peak_growth_MiB"] = PeakMiB() - before;
  CountBytes(state);
}
BENCHMARK(CIMXMLWrite)->Unit(benchmark::kMillisecond);

void LimitWriteTheBytes(benchmark::State& state) {
  const std::string& text = DocumentText();
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> sink(std::fopen("/dev/null", "we"),
                                                             &std::fclose);
  for (auto _ : state) {
    for (std::size_t at = 0; at < text.size(); at += 100) {  // in pieces, like the writer
      const std::size_t piece = std::min<std::size_t>(100, text.size() - at);
      benchmark::DoNotOptimize(std::fwrite(text.data() + at, 1, piece, sink.get()));
    }
  }
  CountBytes(state);
}
BENCHMARK(LimitWriteTheBytes)->Unit(benchmark::kMillisecond);

void CIMXMLRead(benchmark::State& state) {
  DocumentText();
  for (auto _ : state) {
    ::lseek(DocumentFile(), 0, SEEK_SET);
    benchmark::DoNotOptimize(NCIMXML::ReadDocument("bench", DocumentFile()));
  }
  CountBytes(state);
}
BENCHMARK(CIMXMLRead)->Unit(benchmark::kMillisecond);

/// Measures the parser with empty handlers.
void LimitParseTheBytes(benchmark::State& state) {
  const std::string& text = DocumentText();
  for (auto _ : state) {
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr),
                                                                         &XML_ParserFree);
    XML_SetElementHandler(
        parser.get(), [](void*, const XML_Char*, const XML_Char**) {},
        [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser.get(), [](void*, const XML_Char*, int) {});
    benchmark::DoNotOptimize(
        XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE));
  }
  CountBytes(state);
}
BENCHMARK(LimitParseTheBytes)->Unit(benchmark::kMillisecond);

}  // namespace
