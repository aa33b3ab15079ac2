// SPDX-License-Identifier: Apache-2.0
/// Protects process-wide state that a plug-in may change.
#ifndef TOOLS_QDX_PLUGIN_HOST_SURROUNDINGS_H_
#define TOOLS_QDX_PLUGIN_HOST_SURROUNDINGS_H_

#include <qdxsystem/descriptor.h>

#include <sys/types.h>

namespace NVORNQDX20 {

/// Restores the working directory, the umask and the standard descriptors in its destructor, after
/// a plug-in was loaded. Until then standard output is redirected to standard error: text that a
/// plug-in prints must not be in output that programs read.
class TKeptSurroundings {
 public:
  TKeptSurroundings();
  ~TKeptSurroundings();
  TKeptSurroundings(const TKeptSurroundings&) = delete;
  TKeptSurroundings& operator=(const TKeptSurroundings&) = delete;

 private:
  TDescriptor fDescriptors[3];
  TDescriptor fFolder;
  mode_t fMask;
};

/// Opens /dev/null, or an empty pipe, on each standard descriptor that is closed. Otherwise the
/// next file that is opened, such as the log, would get its number and its output. Opened
/// read-only, so that writing to a closed standard output still fails.
void OccupyStandardDescriptors();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_SURROUNDINGS_H_
