// SPDX-License-Identifier: Apache-2.0
#include "plugin_file.h"

#include <qdxcore/build_stamp.h>
#include <qdxcore/status.h>
#include <qdxsystem/error_text.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <elf.h>

#include "libraries.h"

namespace NVORNQDX20 {
namespace {

// The remedy for the operator.
constexpr const char* kBuildAgain = "; build it again with the headers that are installed";
constexpr const char* kTakeFlags = "; 'pkg-config --cflags qdxcore' prints the flags that it needs";

[[noreturn]] void Refuse(const std::string& why) {
  throw TExplainedException(kQDXStatusInvalidPlugin, "it " + why);
}

/// Access to parts of a file, with bounds checks.
class TPluginFile {
 public:
  explicit TPluginFile(const std::string& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (!std::filesystem::exists(status)) {
      Refuse(std::filesystem::is_symlink(file, error) ? "is a link that leads nowhere"
                                                      : std::string("is not there") + kListPlugins);
    }
    if (!std::filesystem::is_regular_file(status)) Refuse("is not a file");
    fSize = std::filesystem::file_size(file, error);
    fStream.open(file, std::ios::binary);
    if (!fStream) Refuse("cannot be read: " + ErrorText(errno));
  }

  void RequirePart(std::uint64_t offset, std::uint64_t size) const {
    if (offset > fSize || size > fSize - offset) Refuse("is cut off");
  }

  std::string ReadBytes(std::uint64_t offset, std::uint64_t size) {
    RequirePart(offset, size);
    std::string bytes(size, '\0');
    fStream.seekg(static_cast<std::streamoff>(offset));
    fStream.read(bytes.data(), static_cast<std::streamsize>(size));
    if (!fStream) Refuse("cannot be read");
    return bytes;
  }

  template <typename T>
  T Read(std::uint64_t offset) {
    T part;
    std::memcpy(&part, ReadBytes(offset, sizeof(T)).data(), sizeof(T));
    return part;
  }

 private:
  std::uint64_t fSize = 0;
  std::ifstream fStream;
};

Elf64_Ehdr ReadHeader(TPluginFile& file) {
  if (file.ReadBytes(0, SELFMAG) != ELFMAG) Refuse("is not a library");
  const auto header = file.Read<Elf64_Ehdr>(0);
  if (header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_ident[EI_DATA] != ELFDATA2LSB ||
      header.e_machine != EM_X86_64) {
    Refuse("is built for another kind of machine");
  }
  if (header.e_phentsize != sizeof(Elf64_Phdr)) Refuse("is not a library");
  return header;
}

void CheckStamp(const TBuildStamp& stamp) {
  const bool isOtherMajor = stamp.fMajorVersion != kBuildStamp.fMajorVersion;
  if (isOtherMajor || stamp.fMinorVersion > kBuildStamp.fMinorVersion) {
    Refuse("was built against version " + std::to_string(stamp.fMajorVersion) + "." +
           std::to_string(stamp.fMinorVersion) + "." + std::to_string(stamp.fPatchVersion) +
           " of the interfaces, " + (isOtherMajor ? "another major version" : "a newer one") +
           " than " QDXCORE_VERSION + kBuildAgain);
  }
  if (stamp.fHasAssertHandler == 0)
    Refuse(std::string("was built without BOOST_ENABLE_ASSERT_HANDLER") + kTakeFlags);
  if (stamp.fHasPlainCounts == 0)
    Refuse(std::string("was built without BOOST_SP_DISABLE_THREADS") + kTakeFlags);
  if (stamp.fHasDebugContainers != kBuildStamp.fHasDebugContainers) {
    Refuse(stamp.fHasDebugContainers != 0 ? "was built with _GLIBCXX_DEBUG"
                                          : "was built without _GLIBCXX_DEBUG");
  }
}

/// Removes and returns the first `size` bytes, or as many as there are.
std::string_view Take(std::string_view& rest, std::uint64_t size) {
  const std::string_view taken = rest.substr(0, size);
  rest.remove_prefix(taken.size());
  return taken;
}

/// Checks the stamps among the notes, and returns how many there are.
int CheckNotes(std::string_view notes) {
  const auto padded = [](std::uint64_t size) { return (size + 3) / 4 * 4; };
  const std::string_view owner(kBuildStampOwner, sizeof(kBuildStampOwner));
  int stamps = 0;
  while (notes.size() >= sizeof(Elf64_Nhdr)) {
    Elf64_Nhdr header;
    std::memcpy(&header, Take(notes, sizeof(header)).data(), sizeof(header));
    const std::string_view name = Take(notes, padded(header.n_namesz));
    const std::string_view contents = Take(notes, padded(header.n_descsz));
    if (name != owner || header.n_type != kBuildStampType) continue;
    if (contents.size() < sizeof(TBuildStamp)) Refuse("carries a damaged build stamp");
    TBuildStamp stamp;
    std::memcpy(&stamp, contents.data(), sizeof(stamp));
    CheckStamp(stamp);
    ++stamps;
  }
  return stamps;
}

}  // namespace

void CheckPluginFile(const std::string& name) {
  TPluginFile file(name);
  const Elf64_Ehdr header = ReadHeader(file);
  int stamps = 0;
  for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
    const auto segment = file.Read<Elf64_Phdr>(header.e_phoff + i * sizeof(Elf64_Phdr));
    // The loader maps a truncated file, and the first access beyond its end is a SIGBUS.
    if (segment.p_type == PT_LOAD) file.RequirePart(segment.p_offset, segment.p_filesz);
    // Notes aligned to 8 bytes are the compiler's, in a segment of their own.
    if (segment.p_type == PT_NOTE && segment.p_align <= 4) {
      stamps += CheckNotes(file.ReadBytes(segment.p_offset, segment.p_filesz));
    }
  }
  if (stamps == 0)
    Refuse("carries no build stamp: no source file of it includes <qdxcore/interfaces.h>");
}

}  // namespace NVORNQDX20
