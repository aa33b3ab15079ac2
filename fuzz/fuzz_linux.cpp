// SPDX-License-Identifier: Apache-2.0
// Files of a machine: what is parsed is written as a file that parses to the same. The first byte
// selects a mount table (0), os-release (1), fields (2), a number (3), a text (4), the table of
// SMBIOS (5), /proc/cpuinfo and lists of processors (6), or a list of names such as pci.ids (7).
#include <sources/buses/id_names.h>
#include <sources/fields.h>
#include <sources/firmware/smbios.h>
#include <sources/mount_table.h>
#include <sources/os_release.h>
#include <sources/processors/cpu_model.h>
#include <sources/reading.h>

#include <algorithm>

#include "checks.h"

using namespace NVORNQDX20;

namespace {

using TMounts = std::map<std::string, TMount>;

/// Escapes like the kernel, and also "#", which would begin a comment.
std::string Escape(const std::string& text) {
  std::string escaped;
  for (const char character : text) {
    if (std::string_view(" \t\n\\#").find(character) == std::string_view::npos) {
      escaped += character;
    } else {
      const auto code = static_cast<unsigned char>(character);
      for (const int digit : {-1, code / 64, code / 8 % 8, code % 8}) {
        escaped += digit < 0 ? '\\' : static_cast<char>('0' + digit);
      }
    }
  }
  return escaped;
}

std::string Written(const TMounts& mounts) {
  std::string table;
  for (const auto& [key, mount] : mounts) {
    table += Escape(mount.fDevice) + " " + Escape(mount.fPath) + " " + mount.fType;
    table += mount.fReadOnly ? " ro\n" : " rw\n";
  }
  return table;
}

void CheckMountTable(const std::string& text) {
  const TMounts mounts = ParseMounts(text);
  const std::string written = Written(mounts);
  const TMounts again = ParseMounts(written);
  Require(Written(again) == written && again.size() == mounts.size());
  for (const auto& [key, mount] : mounts) {
    Require(mount.fPath.front() == '/' && PrintableText(mount.fPath) == key);
    // A hidden mount is not written, and may be the reason that this one cannot be queried.
    Require(again.at(key).fCanBeAsked >= mount.fCanBeAsked);
  }
}

std::string Quoted(const std::string& text) {
  std::string quoted;
  for (const char character : text) {
    if (std::string_view("$\"\\`").find(character) != std::string_view::npos) quoted += '\\';
    quoted += character;
  }
  return "\"" + quoted + "\"";
}

void CheckOSRelease(const std::string& text) {
  const auto variables = ParseOSRelease(text);
  std::string written;
  for (const auto& [name, value] : variables) {
    Require(PrintableText(value) == value);
    written += name + "=" + Quoted(value) + "\n";
  }
  Require(ParseOSRelease(written) == variables);
}

void CheckFields(const std::string& text) {
  const TFields fields("source", std::string_view(text), ':');
  std::string written;
  std::map<std::string, std::string> values;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = TakeLine(rest);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string name = PrintableText(line.substr(0, colon));
    const TText value = fields.Get(name);
    Require(static_cast<bool>(value) == value.GetReason().empty());
    const bool isFirst = values.emplace(name, value.ValueOr("")).second;
    if (isFirst) Require(PrintableText(line.substr(colon + 1)) == value.ValueOr(""));
    written += "\t" + name + " : " + value.ValueOr("") + "\n";
  }
  const TFields again("source", std::string_view(written), ':');
  for (const auto& [name, value] : values) Require(again.Get(name).ValueOr("") == value);
}

void CheckNumber(const std::string& text) {
  const auto number = ParseNumber(text);
  const bool isDecimal = !text.empty() && text.size() < 20 &&
                         text.find_first_not_of("0123456789") == std::string::npos;
  Require(number.has_value() || !isDecimal);
  if (!number) return;
  Require(!isDecimal || *number == std::stoull(text));
  Require(ParseNumber(std::to_string(*number)) == number);
  const TNumber scaled = Scaled(TNumber(*number), 1024, 3);
  const auto product = static_cast<unsigned __int128>(*number) * 1024;
  Require(scaled ? *scaled == product / 3 : product >> 64U != 0);
}

void CheckText(const std::string& text) {
  const std::string printable = PrintableText(text);
  Require(PrintableText(printable) == printable);
  // Every character comes from the text, in the same order.
  auto position = text.begin();
  for (const char character : printable) {
    position = std::find(position, text.end(), character);
    Require(position++ != text.end());
  }
  std::string joined;
  for (std::string_view rest = text; !rest.empty();) joined += std::string(TakeLine(rest)) + "\n";
  if (!text.empty() && text.back() != '\n') joined.pop_back();
  Require(joined == text);
}

void CheckSMBIOSStructure(const TSMBIOSStructure& structure) {
  for (std::size_t offset = 0; offset < structure.GetLength() + 2; ++offset) {
    const auto number = structure.ReadNumber<std::uint16_t>(offset);
    Require(static_cast<bool>(number) == (offset + 2 <= structure.GetLength()));
    const TText text = structure.ReadString(offset);
    Require(text ? !text->empty() && PrintableText(*text) == *text : !text.GetReason().empty());
  }
}

void CheckSMBIOS(const std::string& bytes) {
  const TSMBIOS smbios("", bytes);
  std::string written;
  for (const TSMBIOSStructure& structure : smbios.GetStructures()) {
    CheckSMBIOSStructure(structure);
    Require(smbios.Find(structure.GetHandle()) != nullptr);
    written += *structure.ReadBytes(0, structure.GetLength()) + std::string(2, '\0');
  }
  const TSMBIOS again("", written);
  Require(again.GetFlaw().empty());
  std::string rewritten;
  for (const TSMBIOSStructure& structure : again.GetStructures()) {
    rewritten += *structure.ReadBytes(0, structure.GetLength()) + std::string(2, '\0');
  }
  Require(rewritten == written);
}

void CheckProcessors(const std::string& text) {
  if (const auto cpus = ParseCPUList(text)) {
    Require(ParseCPUList(FormatCPUList(*cpus)) == cpus);
  }
  if (const auto cpus = ParseCPUMask(text)) Require(cpus->empty() || *cpus->rbegin() < kMaxCPUs);
  const TCPUInfo info{TText(text)};
  Require(info.GetProcessors().empty() || *info.GetProcessors().rbegin() < kMaxCPUs);
  int rest = 8;  // the others are not different
  for (const unsigned cpu : info.GetProcessors()) {
    if (rest-- == 0) break;
    const TCPUModel model = IdentifyCPU(info.FieldsOf(cpu));
    for (const TText* each : {&model.fName, &model.fVendor, &model.fModel, &model.fStepping}) {
      Require(*each ? PrintableText(**each) == **each : !each->GetReason().empty());
    }
  }
}

void CheckIDNames(const std::string& text) {
  const auto all = [](const std::string&) { return true; };
  const TNamesByID names = ParseIDNames(text, all);
  std::string written;
  for (const auto& [path, name] : names) {
    Require(!name.empty() && PrintableText(name) == name);
    const std::size_t tab = path.rfind('\t');
    const auto level = static_cast<std::size_t>(std::count(path.begin(), path.end(), '\t'));
    Require(level == 0 || names.count(path.substr(0, tab)) == 1);
    written += std::string(level, '\t') + path.substr(tab + 1) + "  " + name + "\n";
  }
  Require(ParseIDNames(written, all) == names);
  // What is not wanted is left out, with what is below it.
  const auto top = [](const std::string& path) { return path.find('\t') == std::string::npos; };
  for (const auto& [path, name] : ParseIDNames(text, top)) {
    Require(top(path) && names.at(path) == name);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return RunCheck({CheckMountTable, CheckOSRelease, CheckFields, CheckNumber, CheckText,
                   CheckSMBIOS, CheckProcessors, CheckIDNames},
                  data, size);
}
