// SPDX-License-Identifier: Apache-2.0
#include "cpu_model.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include "arm_parts.h"

namespace NVORNQDX20 {
namespace {

const std::string kSource = std::string(TCPUInfo::kPath) + ": ";

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

struct TNamed {
  const char* fKey;
  const char* fName;
};

/// Makers of processors whose files do not name them, by the begin of the processor's name.
constexpr TNamed kVendorsOfNames[] = {
    {"POWER", "IBM"}, {"PPC970", "IBM"}, {"Cell", "IBM"}, {"Loongson", "Loongson"},
    {"PA7", "HP"},    {"PA8", "HP"},     {"EV", "DEC"},   {"TI ", "Texas Instruments"}};

/// Makers of RISC-V processors: the register mvendorid, a number of JEDEC.
constexpr TNamed kRISCVVendors[] = {
    {"0x31e", "Andes"}, {"0x489", "SiFive"}, {"0x5b7", "T-Head"}, {"0x710", "SpacemiT"}};

/// IBM Z and its ancestors, by the machine's type.
constexpr TNamed kZMachines[] = {{"2064", "z900"},    {"2066", "z800"},    {"2084", "z990"},
                                 {"2086", "z890"},    {"2094", "z9 EC"},   {"2096", "z9 BC"},
                                 {"2097", "z10 EC"},  {"2098", "z10 BC"},  {"2817", "z196"},
                                 {"2818", "z114"},    {"2827", "zEC12"},   {"2828", "zBC12"},
                                 {"2964", "z13"},     {"2965", "z13s"},    {"3906", "z14"},
                                 {"3907", "z14 ZR1"}, {"8561", "z15"},     {"8562", "z15 T02"},
                                 {"3931", "z16"},     {"3932", "z16 A02"}, {"9175", "z17"}};

template <std::size_t kSize>
const char* Find(const TNamed (&table)[kSize], const std::string& key) {
  const auto* const found = std::find_if(std::begin(table), std::end(table),
                                         [&key](const TNamed& each) { return each.fKey == key; });
  return found == std::end(table) ? nullptr : found->fName;
}

/// Returns the words between any of the separators.
std::vector<std::string> Split(std::string_view text, const char* separators) {
  std::vector<std::string> words;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
    if (text.empty()) return words;
    const std::size_t end = std::min(text.find_first_of(separators), text.size());
    words.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
  }
}

/// The digits before the point and the unit: 3864 in "3864.000000MHz".
TReading<std::uint32_t> Megahertz(const TText& clock, const char* source) {
  const TText digits = clock.map(
      [](const std::string& text) { return text.substr(0, text.find_first_not_of("0123456789")); });
  return ToNumber<std::uint32_t>(digits, kSource + source);
}

TWords Flags(const TCPUFields& fields) {
  const TText extensions = fields.Get({"isa"});
  if (extensions && StartsWith(*extensions, "rv")) {
    return extensions.map([](const std::string& text) { return Split(text, "_"); });
  }
  const TText flags =
      fields.Get({"flags", "Features", "features", "cpucaps", "capabilities", "ASEs implemented"});
  return flags.map([](const std::string& text) {
    std::vector<std::string> words = Split(text, text.find(',') == std::string::npos ? " " : ",");
    for (std::string& word : words) word = PrintableText(word);
    return words;
  });
}

/// Returns the number before the word in "46 bits physical, 48 bits virtual".
TReading<std::uint16_t> AddressBits(const TCPUFields& fields, const char* word) {
  const char* const name = "address sizes";
  const TText sizes = fields.Get({name, "Address Sizes"});
  return sizes.and_then([&](const std::string& text) -> TReading<std::uint16_t> {
    for (const std::string& part : Split(text, ",")) {
      const std::vector<std::string> words = Split(part, " ");
      if (words.size() != 3 || words[1] != "bits" || words[2] != word) continue;
      return ToNumber<std::uint16_t>(words[0], kSource + name);
    }
    return Missing(kSource + name + " has no " + word + " ones");
  });
}

/// 64 for those that are named, else 0.
unsigned ArchitectureBits(const TCPUFields& fields) {
  const auto starts = [&fields](const char* name, const char* prefix) {
    return StartsWith(fields.Get({name}).ValueOr(""), prefix);
  };
  if (starts("isa", "rv32")) return 32;
  const bool is64 = starts("isa", "rv64") || starts("CPU architecture", "8") ||
                    starts("CPU architecture", "AArch64") || starts("CPU Family", "Loongson-64") ||
                    starts("vendor_id", "IBM/S390") || starts("cpu", "POWER") ||
                    starts("arch", "IA-64") || starts("type", "sun4u") || starts("type", "sun4v") ||
                    starts("cpu", "Alpha");
  if (is64) return 64;
  // An x86 processor without the flag "lm", or an ARM processor before version 8.
  return fields.Get({"fdiv_bug"}) || fields.Get({"CPU architecture"}) ? 32 : 0;
}

/// What all architectures have where they have it.
TCPUModel IdentifyAny(const TCPUFields& fields) {
  TCPUModel model;
  model.fName = fields.Get({"model name", "Model Name", "cpu model", "uarch", "cpu", "Processor"});
  model.fDescription = Missing("the kernel knows no other name");
  model.fVendorID = fields.Get({"vendor_id", "mvendorid"});
  model.fVendor = model.fVendorID;
  model.fFamily = fields.Get({"cpu family", "CPU Family", "family", "marchid", "type"});
  // On other architectures "model" is that of the machine.
  model.fModel = model.fVendorID && !fields.Get({"mimpid"})
                     ? fields.Get({"model"})
                     : fields.Get({"CPU Revision", "mimpid"});
  model.fStepping = fields.Get({"stepping", "revision", "CPU Revision"});
  model.fMicrocode = fields.Get({"microcode"});
  model.fCurrentClock =
      Megahertz(fields.Get({"cpu MHz", "CPU MHz", "cpu MHz dynamic", "clock"}), "cpu MHz");
  model.fFixedClock = Megahertz(fields.Get({"cpu MHz static"}), "cpu MHz static");
  model.fFlags = Flags(fields);
  model.fArchitectureBits = HasFlag(model.fFlags, "lm") ? 64 : ArchitectureBits(fields);
  model.fBugs = fields.Get({"bugs"}).map([](const std::string& text) { return Split(text, " "); });
  model.fPhysicalAddressBits = AddressBits(fields, "physical");
  model.fVirtualAddressBits = AddressBits(fields, "virtual");
  return model;
}

std::optional<unsigned> NumberOf(const TCPUFields& fields, const char* name) {
  const TText text = fields.Get({name});
  return text ? ParseNumber<unsigned>(*text) : std::nullopt;
}

void IdentifyARM(const TCPUFields& fields, TCPUModel& model) {
  const TText implementer = fields.Get({"CPU implementer"});
  const TText part = fields.Get({"CPU part"});
  const unsigned maker = NumberOf(fields, "CPU implementer").value_or(0);
  const char* const makerName = ARMImplementerName(maker);
  const char* const name = ARMPartName(maker, NumberOf(fields, "CPU part").value_or(~0U));
  model.fVendorID = implementer;
  model.fVendor = makerName != nullptr
                      ? TText(makerName)
                      : Missing("implementer " + *implementer + " is of no known maker");
  const TText kernelName = fields.Get({"model name", "Processor"});
  if (name != nullptr) {
    model.fName = name;
    if (kernelName) model.fDescription = kernelName;
  } else {
    model.fName = kernelName ? kernelName
                             : Missing("part " + part.ValueOr("?") + " of implementer " +
                                       *implementer + " has no known name");
  }
  model.fFamily = fields.Get({"CPU architecture"});
  model.fModel = part;
  const auto variant = NumberOf(fields, "CPU variant");
  const auto revision = NumberOf(fields, "CPU revision");
  model.fStepping = variant && revision
                        ? TText("r" + std::to_string(*variant) + "p" + std::to_string(*revision))
                        : fields.Get({"CPU revision"});
}

void IdentifyPARISC(const TCPUFields& fields, TCPUModel& model) {
  model.fName = fields.Get({"cpu"});
  model.fDescription = fields.Get({"model name"});
}

/// Returns a field of an older kernel's line "processor 0: version = FF, machine = 2964".
TText ZField(const TCPUFields& fields, const std::string& name) {
  for (const char* line : {"processor 0", "processor 1"}) {
    for (const std::string& part : Split(fields.Get({line}).ValueOr(""), ",")) {
      const std::vector<std::string> words = Split(part, " ");
      if (words.size() == 3 && words[0] == name && words[1] == "=") return words[2];
    }
  }
  return fields.Get({name.c_str()});
}

void IdentifyZ(const TCPUFields& fields, TCPUModel& model) {
  model.fModel = ZField(fields, "machine");
  model.fStepping = ZField(fields, "version");
  model.fName = model.fModel.map([](const std::string& type) {
    const char* const name = Find(kZMachines, type);
    return name == nullptr ? "IBM machine type " + type
                           : std::string("IBM ") + name + " (type " + type + ")";
  });
}

void NameVendor(TCPUModel& model) {
  if (model.fVendor) {
    if (const char* name = Find(kRISCVVendors, *model.fVendor)) model.fVendor = name;
    return;
  }
  for (const TNamed& each : kVendorsOfNames) {
    if (StartsWith(model.fName.ValueOr(""), each.fKey)) model.fVendor = each.fName;
  }
}

}  // namespace

TCPUModel IdentifyCPU(const TCPUFields& fields) {
  TCPUModel model = IdentifyAny(fields);
  if (fields.Get({"CPU implementer"})) {
    IdentifyARM(fields, model);
  } else if (StartsWith(fields.Get({"cpu family"}).ValueOr(""), "PA-RISC")) {
    IdentifyPARISC(fields, model);
  } else if (model.fVendor.ValueOr("") == "IBM/S390") {
    IdentifyZ(fields, model);
  } else if (StartsWith(fields.Get({"arch"}).ValueOr(""), "IA-64")) {
    model.fVendor = model.fVendorID = fields.Get({"vendor"});
    model.fModel = fields.Get({"model"});
  } else if (StartsWith(fields.Get({"type"}).ValueOr(""), "sun4")) {
    model.fStepping = Missing(kSource + "SPARC has no stepping");
  }
  NameVendor(model);
  return model;
}

bool HasFlag(const TWords& flags, const char* flag) {
  return flags && std::find(flags->begin(), flags->end(), flag) != flags->end();
}

}  // namespace NVORNQDX20
