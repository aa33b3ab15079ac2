// SPDX-License-Identifier: Apache-2.0
#include "plugin_file.h"

#include <qdxcore/build_stamp.h>
#include <qdxcore/status.h>
#include <qdxplugin_host/plugin_folder.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/foreign_writers.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

// The remedy for the operator.
constexpr const char* kBuildAgain = "; build it again with the headers that are installed";
constexpr const char* kTakeFlags = "; 'pkg-config --cflags qdxcore' prints the flags that it needs";

// Linkers make about ten segments. A source file has one stamp of 44 bytes, so this is enough for
// 20,000 of them.
constexpr std::uint64_t kMaxSegments = 256;
constexpr std::uint64_t kMaxNoteBytes = std::uint64_t{1} << 20;

[[noreturn]] void Refuse(const std::string& why) {
  throw TExplainedException(kQDXStatusInvalidPlugin, "it " + why);
}

/// Access to parts of a file, with bounds checks.
class TPluginFile {
 public:
  explicit TPluginFile(const std::string& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) RefuseUnfound(file, errno);
    if (!S_ISREG(status.st_mode)) Refuse("is not a file");  // opening a device may have effects
    fDescriptor = TDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!fDescriptor.IsOpen()) Refuse("cannot be read: " + ErrorText(fDescriptor.GetError()));
    fSize = static_cast<std::uint64_t>(status.st_size);
  }

  void RequirePart(std::uint64_t offset, std::uint64_t size) const {
    if (offset > fSize || size > fSize - offset) Refuse("is cut off");
  }

  /// Reads all at once, so the caller limits the size.
  std::string ReadBytes(std::uint64_t offset, std::uint64_t size) {
    RequirePart(offset, size);
    std::string bytes(size, '\0');
    const ssize_t count =
        ::pread(fDescriptor.Get(), bytes.data(), size, static_cast<off_t>(offset));
    if (count < 0) Refuse("cannot be read: " + ErrorText(errno));
    if (static_cast<std::uint64_t>(count) != size) Refuse("is cut off");
    return bytes;
  }

  template <typename T>
  T Read(std::uint64_t offset) {
    T part;
    std::memcpy(&part, ReadBytes(offset, sizeof(T)).data(), sizeof(T));
    return part;
  }

 private:
  [[noreturn]] static void RefuseUnfound(const std::string& file, int error) {
    if (error != ENOENT) Refuse("cannot be read: " + ErrorText(error));
    std::error_code ignored;
    Refuse(std::filesystem::is_symlink(file, ignored)
               ? "is a link that leads nowhere"
               : std::string("is not there") + NPluginHost::kListPlugins);
  }

  TDescriptor fDescriptor;
  std::uint64_t fSize = 0;
};

/// Loading runs code: with root's rights only what nobody else can have written.
void RequireOwnCode(const std::string& file) {
  // Not by the name in `file`, whose links are resolved already: the loader follows them, too.
  const std::string name = NPluginHost::RootPath() + file.substr(file.rfind('/'));
  const auto writer = FindForeignWriterOfCode(name);
  if (writer) {
    throw TExplainedException(kQDXStatusInvalidPlugin, "root does not load it: " + *writer);
  }
}

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
  RequireOwnCode(name);
  const Elf64_Ehdr header = ReadHeader(file);
  if (header.e_phnum > kMaxSegments) {
    Refuse("has more than " + std::to_string(kMaxSegments) + " segments");
  }
  int stamps = 0;
  std::uint64_t noteBytes = 0;
  for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
    const auto segment = file.Read<Elf64_Phdr>(header.e_phoff + i * sizeof(Elf64_Phdr));
    // The loader maps a truncated file, and the first access beyond its end is a SIGBUS.
    if (segment.p_type == PT_LOAD) file.RequirePart(segment.p_offset, segment.p_filesz);
    // Notes aligned to 8 bytes are the compiler's, in a segment of their own.
    if (segment.p_type == PT_NOTE && segment.p_align <= 4) {
      noteBytes += std::min(segment.p_filesz, kMaxNoteBytes + 1);
      if (noteBytes > kMaxNoteBytes) {
        Refuse("has more than " + std::to_string(kMaxNoteBytes) + " bytes of notes");
      }
      stamps += CheckNotes(file.ReadBytes(segment.p_offset, segment.p_filesz));
    }
  }
  if (stamps == 0)
    Refuse("carries no build stamp: no source file of it includes <qdxcore/interfaces.h>");
}

}  // namespace NVORNQDX20
