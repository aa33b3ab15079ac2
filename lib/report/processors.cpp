// SPDX-License-Identifier: Apache-2.0
// Processors with their cores, caches and nodes: rows of which each part is as wide as the logical
// processors that share it.
#include <qdxdisplay/quantity.h>

#include <algorithm>
#include <map>

#include "overview.h"

namespace NVORNQDX20::NReport {
namespace {

using namespace NSummary;

/// What logical processors share.
struct TShared {
  std::string fName;
  std::string fSize;
  std::set<unsigned> fThreads;
};

/// A row of the picture: parts of one kind.
struct TRow {
  std::string fKind;
  std::vector<TShared> fParts;

  /// Returns the position of the part that has the thread, or the number of parts.
  std::size_t PartOf(unsigned thread) const {
    const auto found = std::find_if(fParts.begin(), fParts.end(), [thread](const TShared& part) {
      return part.fThreads.count(thread) > 0;
    });
    return static_cast<std::size_t>(found - fParts.begin());
  }
};

/// Keeps the parts that are of these threads.
TRow Restricted(const TRow& row, const std::set<unsigned>& threads) {
  TRow restricted{row.fKind, {}};
  for (const TShared& part : row.fParts) {
    const bool isHere = std::any_of(part.fThreads.begin(), part.fThreads.end(),
                                    [&](unsigned thread) { return threads.count(thread) > 0; });
    if (isHere) restricted.fParts.push_back(part);
  }
  return restricted;
}

std::string SizeOf(const TRecord& cache) {
  const auto blocks = cache.GetNumber("NumberOfBlocks");
  const auto size = cache.GetNumber("BlockSize");
  return blocks && size ? FormatQuantity(*blocks * *size, "byte") : "";
}

/// The rows from the outside in: nodes, caches from the largest, cores.
std::vector<TRow> ReadRows(const TRecords& records) {
  TRow nodes{"NUMA node", {}};
  for (const TRecord& node : records.Of("NUMANode")) {
    const auto memory = node.GetNumber("MemorySize");
    nodes.fParts.push_back({"node " + node.GetText("Number"),
                            memory ? FormatQuantity(*memory, "byte * 2^10") : "",
                            NumbersIn(node.GetText("LogicalProcessors"))});
  }
  std::map<std::string, TRow, std::greater<>> caches;
  for (const TRecord& cache : records.Of("CacheMemory")) {
    const std::string name = cache.GetText("Name");
    TRow& row = caches[name];
    row.fKind = name;
    row.fParts.push_back({name, SizeOf(cache), NumbersIn(cache.GetText("LogicalProcessors"))});
  }
  TRow cores{"Core", {}};
  for (const TRecord& core : records.Of("ProcessorCore")) {
    cores.fParts.push_back({"core " + core.GetText("CoreNumber"), core.GetText("CoreType"),
                            NumbersIn(core.GetText("LogicalProcessors"))});
  }
  std::vector<TRow> rows = {std::move(nodes)};
  for (auto& each : caches) rows.push_back(std::move(each.second));
  rows.push_back(std::move(cores));
  return rows;
}

/// Returns the threads so that those that share something are side by side.
std::vector<unsigned> InOrder(const std::set<unsigned>& threads, const std::vector<TRow>& rows) {
  std::vector<std::pair<std::vector<std::size_t>, unsigned>> places;
  places.reserve(threads.size());
  for (const unsigned thread : threads) {
    std::vector<std::size_t> place;
    place.reserve(rows.size());
    for (const TRow& row : rows) place.push_back(row.PartOf(thread));
    places.emplace_back(std::move(place), thread);
  }
  std::sort(places.begin(), places.end());
  std::vector<unsigned> ordered;
  ordered.reserve(places.size());
  for (const auto& place : places) ordered.push_back(place.second);
  return ordered;
}

THTML PictureOf(const TRow& row, const std::vector<unsigned>& threads) {
  std::map<std::string, std::size_t> sizes;
  for (const TShared& part : row.fParts) ++sizes[part.fSize];
  std::string label;
  for (const auto& [size, count] : sizes) {
    label += (label.empty() ? "" : ", ") + std::to_string(count);
    if (!size.empty()) label += " \u00d7 " + size;
  }
  std::vector<TPart> parts;
  std::size_t before = row.fParts.size() + 1;
  for (const unsigned thread : threads) {
    const std::size_t position = row.PartOf(thread);
    if (position == before) {
      ++parts.back().fSize;
      continue;
    }
    before = position;
    if (position == row.fParts.size()) {
      parts.push_back({1, "none", ""});
    } else {
      const TShared& part = row.fParts[position];
      parts.push_back({1, "full", part.fName + (part.fSize.empty() ? "" : ": ") + part.fSize});
    }
  }
  return Element("div", "row",
                 TextElement("span", "name", row.fKind + ": " + label) +
                     Strip(parts, row.fKind + ": " + label)) +
         "\n";
}

/// The caches that firmware ties to the processor, for which no source says who shares them.
THTML CachesOf(const TRecord& processor, const TRecords& records) {
  std::string text;
  for (const TRecord& tie : records.Of("AssociatedCacheMemory")) {
    if (tie.GetText("Dependent") != processor.GetPath()) continue;
    for (const TRecord& cache : records.Of("CacheMemory")) {
      if (cache.GetPath() != tie.GetText("Antecedent")) continue;
      text += (text.empty() ? "" : ", ") + cache.GetText("Name") + " " + SizeOf(cache);
    }
  }
  return text.empty() ? "" : TextElement("p", "", text);
}

THTML Socket(const TRecord& processor, const std::vector<TRow>& rows, const TRecords& records) {
  const std::set<unsigned> threads = NumbersIn(processor.GetText("LogicalProcessors"));
  const std::string place = processor.GetText("SocketDesignation");
  const std::string name = processor.GetText("Name");
  THTML html =
      Element("h3", "",
              Link(processor.GetNumber(), (place.empty() ? processor.GetText("DeviceID") : place) +
                                              (name.empty() ? "" : ": " + name)));
  std::vector<TRow> own;
  for (const TRow& row : rows) {
    TRow restricted = Restricted(row, threads);
    if (!restricted.fParts.empty()) own.push_back(std::move(restricted));
  }
  const auto ordered = InOrder(threads, own);
  for (const TRow& row : own) html += PictureOf(row, ordered);
  if (own.empty()) html += CachesOf(processor, records);
  return Element("div", "panel", html) + "\n";
}

}  // namespace

THTML Processors(const TSummary& summary, const TRecords& records) {
  THTML html;
  for (const TProcessors& group : summary.fProcessors) {
    std::string text = std::to_string(group.fCount) + " \u00d7 " +
                       (group.fName.empty() ? "processor" : group.fName);
    if (group.fCores != 0) text += ", " + std::to_string(group.fCores) + " cores";
    if (group.fThreads != 0) text += ", " + std::to_string(group.fThreads) + " threads";
    if (group.fMaxHertz) {
      text += ", up to " + FormatQuantity(static_cast<double>(*group.fMaxHertz), "hertz");
    }
    html += TextElement("p", "", text);
  }
  constexpr std::size_t kMostPictures = 16;
  const auto processors = records.Of("Processor");
  const auto rows = ReadRows(records);
  THTML panels;
  for (std::size_t i = 0; i < processors.size() && i < kMostPictures; ++i) {
    panels += Socket(processors[i], rows, records);
  }
  return html + (panels.empty() ? "" : Element("div", "panels", panels));
}

}  // namespace NVORNQDX20::NReport
