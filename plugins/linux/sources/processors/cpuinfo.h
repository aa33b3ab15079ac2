// SPDX-License-Identifier: Apache-2.0
/// Parses /proc/cpuinfo, whose form depends on the architecture.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_CPUINFO_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_CPUINFO_H_

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

#include "sources/cpu_list.h"
#include "sources/fields.h"
#include "sources/host.h"

namespace NVORNQDX20 {

/// The fields of one logical processor, and those that it has in common with all others.
struct TCPUFields {
  /// Returns the first of the fields that is there. Missing for the reason of the first name.
  TText Get(std::initializer_list<const char*> names) const;

  TFields fOwn;
  const TFields* fCommon;  ///< Of the TCPUInfo.
};

/// The file, divided into blocks: each describes one logical processor that is online.
///
/// A block begins at a line "processor : 0", or "cpu number : 0" (IBM Z). It ends where the next
/// one begins, and not at an empty line, since some kernels write those within blocks. One line
/// "processor 0: ..." (IBM Z) or "CPU0: online" (SPARC) is also a block. A file without blocks
/// describes as many processors as "cpus active" says (Alpha), or one.
class TCPUInfo {
 public:
  static constexpr const char* kPath = "/proc/cpuinfo";

  explicit TCPUInfo(const THost& host) : TCPUInfo(host.Read(kPath, TFiles::kMaxTableSize)) {}
  explicit TCPUInfo(TText file);
  // The blocks are parts of the text.
  TCPUInfo(const TCPUInfo&) = delete;
  TCPUInfo& operator=(const TCPUInfo&) = delete;

  const TCPUs& GetProcessors() const { return fProcessors; }
  /// Why there are no processors.
  TReason GetReason() const {
    if (fFile) return std::string(kPath) + ": names no processor";
    return fFile.GetReason();
  }
  /// The common fields are those before the first block and in the last one, at the end of which
  /// some architectures describe the machine.
  TCPUFields FieldsOf(unsigned processor) const;

 private:
  void FindBlocks();

  const TText fFile;
  std::map<unsigned, std::string_view> fBlocks;
  TCPUs fProcessors;
  TFields fCommon;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_CPUINFO_H_
