// SPDX-License-Identifier: Apache-2.0
// Memory: how much of it is in use, and the slots with their modules.
#include <qdxdisplay/quantity.h>
#include <qdxmodel/natural_order.h>

#include <algorithm>
#include <map>

#include "overview.h"

namespace NVORNQDX20::NReport {
namespace {

using namespace NSummary;

/// Memory is counted in powers of two, whatever is left of it.
std::string Size(std::uint64_t bytes) {
  return FormatQuantity(static_cast<double>(bytes) / 1024, "byte * 2^10");
}

/// Modules by the path of the slot that they are in.
std::map<std::string, TRecord> ReadModules(const TRecords& records) {
  std::map<std::string, TRecord> byPath;
  for (const TRecord& module : records.Of("PhysicalMemory")) {
    byPath.emplace(module.GetPath(), module);
  }
  std::map<std::string, TRecord> bySlot;
  for (const TRecord& tie : records.Of("ElementInConnector")) {
    const auto module = byPath.find(tie.GetText("Dependent"));
    if (module != byPath.end()) bySlot.emplace(tie.GetText("Antecedent"), module->second);
  }
  return bySlot;
}

std::string NameOf(const TRecord& slot) {
  const std::string place = slot.GetText("DeviceLocator");
  return place.empty() ? slot.GetText("Tag") : place;
}

THTML SlotPicture(const TRecord& slot, const TRecord* module) {
  const std::string bank = slot.GetText("BankLabel");
  const THTML place = Element("span", "name", Link(slot.GetNumber(), NameOf(slot))) +
                      TextElement("span", "quiet", bank);
  if (module == nullptr) {
    const auto populated = slot.GetNumber("Populated");
    const std::string state = !populated ? "unknown" : *populated != 0 ? "filled" : "free";
    return Element("li", "slot empty", place + TextElement("span", "size", state));
  }
  const auto capacity = module->GetNumber("Capacity");
  const std::string size = capacity ? FormatQuantity(*capacity, "byte") : "filled";
  return Element("li", "slot filled",
                 place + Element("span", "size", Link(module->GetNumber(), size)) +
                     TextElement("span", "quiet", module->GetText("MemoryTypeDescription")));
}

THTML SlotPictures(const TRecords& records) {
  constexpr std::size_t kMostSlots = 128;
  auto slots = records.Of("MemorySlot");
  std::stable_sort(slots.begin(), slots.end(), [](const TRecord& left, const TRecord& right) {
    return NModel::ComesBefore(left.GetText("Tag"), right.GetText("Tag"));
  });
  const auto modules = ReadModules(records);
  THTML pictures;
  for (std::size_t i = 0; i < slots.size() && i < kMostSlots; ++i) {
    const auto module = modules.find(slots[i].GetPath());
    pictures += SlotPicture(slots[i], module == modules.end() ? nullptr : &module->second) + "\n";
  }
  if (slots.size() > kMostSlots) {
    pictures += TextElement("li", "slot empty",
                            "and " + std::to_string(slots.size() - kMostSlots) + " more");
  }
  return pictures.empty() ? "" : Element("ul", "slots", pictures);
}

std::string TextOf(const TModules& modules) {
  std::string text = std::to_string(modules.fCount) + " \u00d7 ";
  text += modules.fBytes ? Size(*modules.fBytes) : "module";
  if (!modules.fType.empty()) text += " " + modules.fType;
  if (modules.fTransfersPerSecond) {
    text += ", " + std::to_string(*modules.fTransfersPerSecond / 1000000) + " MT/s";
  }
  return text;
}

/// Returns for example "1 corrected error"; empty for none.
std::string ErrorsOf(const TNumber& count, const std::string& kind) {
  if (count.value_or(0) == 0) return "";
  return std::to_string(*count) + " " + kind + (*count == 1 ? " error" : " errors");
}

}  // namespace

THTML Memory(const TSummary& summary, const TRecords& records) {
  const TMemory& memory = summary.fMemory;
  std::vector<std::string> texts;
  if (memory.fBytes) {
    texts.push_back(Size(*memory.fBytes));
  }
  for (const TModules& modules : memory.fModules) texts.push_back(TextOf(modules));
  if (memory.fSlots && memory.fFreeSlots) {
    texts.push_back(std::to_string(*memory.fFreeSlots) + " of " + std::to_string(*memory.fSlots) +
                    " slots free");
  }
  const std::string errors = Joined({ErrorsOf(memory.fCorrectedErrors, "corrected"),
                                     ErrorsOf(memory.fUncorrectedErrors, "uncorrected")},
                                    "; ");
  THTML html;
  if (!texts.empty() || !errors.empty()) {
    html = Element("p", "",
                   Link({}, Joined(texts, "; ")) + " " + TextElement("strong", "bad", errors));
  }
  if (memory.fBytes && memory.fAvailableBytes && *memory.fBytes > 0) {
    const auto all = static_cast<double>(*memory.fBytes);
    const auto available = static_cast<double>(*memory.fAvailableBytes);
    const std::string text = Size(*memory.fAvailableBytes) + " available to programs";
    html +=
        Element("div", "row", TextElement("span", "name", text) + Gauge(1 - available / all, text));
  }
  return html + SlotPictures(records);
}

}  // namespace NVORNQDX20::NReport
