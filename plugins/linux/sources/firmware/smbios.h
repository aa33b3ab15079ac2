// SPDX-License-Identifier: Apache-2.0
/// Parses the table with which firmware describes the machine: SMBIOS (DMTF DSP0134).
///
///   const TReading<TSMBIOS>& smbios = host.GetSMBIOS();
///   for (const TSMBIOSStructure& module : smbios->OfType(17)) {
///     const TReading<std::uint16_t> speed = module.ReadNumber<std::uint16_t>(0x15);
///     const TReading<std::string> place = module.ReadString(0x10);
///   }
#ifndef PLUGINS_LINUX_SOURCES_FIRMWARE_SMBIOS_H_
#define PLUGINS_LINUX_SOURCES_FIRMWARE_SMBIOS_H_

#include <qdxdescribe/files.h>
#include <qdxdescribe/reading.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace NVORNQDX20 {

using namespace NDescribe;

/// One structure of the table: a type, a handle, fields at fixed offsets, and strings. Offsets are
/// those of DSP0134, counted from the byte with the type.
///
/// Older firmware has shorter structures: a field past the end is missing, with a reason that names
/// the structure. Copies are cheap and share the table.
class TSMBIOSStructure {
 public:
  std::uint8_t GetType() const { return ByteAt(0); }
  std::size_t GetLength() const { return ByteAt(1); }
  std::uint16_t GetHandle() const { return static_cast<std::uint16_t>(LittleEndian(2, 2)); }

  /// Reads an unsigned number, whose least significant byte comes first.
  template <typename T>
  TReading<T> ReadNumber(std::size_t offset) const {
    static_assert(std::is_unsigned_v<T> && !std::is_same_v<T, bool>, "fields are unsigned");
    if (!Has(offset, sizeof(T))) return TooShortFor(offset);
    return static_cast<T>(LittleEndian(offset, sizeof(T)));
  }
  /// Reads the number of a string, and returns the printable part of that string. Number 0, an
  /// empty string, a number without a string, and a placeholder count as missing.
  TReading<std::string> ReadString(std::size_t offset) const;
  /// Reads bytes as they are.
  TReading<std::string> ReadBytes(std::size_t offset, std::size_t count) const;

  /// Returns a reason that names the type: "SMBIOS structure of type 17: " and `reason`. Without
  /// the handle, it is the same for all structures of which it is true.
  TMissing MissingFrom(const std::string& reason) const;

 private:
  friend class TSMBIOS;
  TSMBIOSStructure(std::shared_ptr<const std::string> table, std::size_t begin, std::size_t end)
      : fTable(std::move(table)), fBegin(begin), fEnd(end) {}

  bool Has(std::size_t offset, std::size_t count) const {
    return offset <= GetLength() && count <= GetLength() - offset;
  }
  std::uint8_t ByteAt(std::size_t offset) const {
    return static_cast<std::uint8_t>((*fTable)[fBegin + offset]);
  }
  std::uint64_t LittleEndian(std::size_t offset, std::size_t count) const;
  TMissing TooShortFor(std::size_t offset) const;
  /// Returns a reason that names the damaged structure by its handle.
  TMissing Damaged(const std::string& reason) const;

  std::shared_ptr<const std::string> fTable;
  std::size_t fBegin;
  std::size_t fEnd;  // of the strings
};

/// All structures of the table.
class TSMBIOS {
 public:
  /// Parses the bytes of a table and of its entry point, which has the version and, for older
  /// firmware, the number of structures; it may be empty. Nothing is refused for a wrong checksum.
  /// A damaged table has the structures before the damage, and a flaw. `flaw` is that of a table
  /// of which parts could not be read.
  TSMBIOS(std::string_view entryPoint, std::string table, std::string flaw = {});

  /// Major and minor version in one byte each, for example 0x0208; 0 if it is unknown.
  std::uint16_t GetVersion() const { return fVersion; }
  /// Why structures may be missing; empty if the table is whole.
  const std::string& GetFlaw() const { return fFlaw; }

  const std::vector<TSMBIOSStructure>& GetStructures() const { return fStructures; }
  /// In the order of the table.
  std::vector<TSMBIOSStructure> OfType(std::uint8_t type) const;
  /// Returns null if no structure has the handle; the first one if several have it.
  const TSMBIOSStructure* Find(std::uint16_t handle) const;

 private:
  struct TEntryPoint {
    std::uint16_t fVersion = 0;
    std::size_t fCount = 0;  // 0 if the table itself marks its end
  };
  static TEntryPoint ParseEntryPoint(std::string_view bytes);

  std::uint16_t fVersion;
  std::string fFlaw;
  std::vector<TSMBIOSStructure> fStructures;
  std::unordered_map<std::uint16_t, std::size_t> fByHandle;
};

/// Reads the table of the kernel, or its single structures if the kernel is older than the table.
TReading<TSMBIOS> ReadSMBIOS(const TFiles& files);

// A reader of rows. The source is derived from TSMBIOSStructure.
inline auto SMBIOSString(std::size_t offset) {
  return [offset](const TSMBIOSStructure& structure) { return structure.ReadString(offset); };
}

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_FIRMWARE_SMBIOS_H_
