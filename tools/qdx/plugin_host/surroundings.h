// SPDX-License-Identifier: Apache-2.0
/// What the whole process has one of, and a plug-in may change.
#ifndef TOOLS_QDX_PLUGIN_HOST_SURROUNDINGS_H_
#define TOOLS_QDX_PLUGIN_HOST_SURROUNDINGS_H_

#include <qdxsystem/descriptor.h>

#include <sys/types.h>

namespace NVORNQDX20 {

/// Gives back, when a plug-in was loaded, what it may have changed for the whole process: the
/// working directory, the umask and the standard descriptors. Meanwhile what it prints goes to
/// standard error, since standard output is for programs to read.
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

/// With a standard descriptor closed, the next file to be opened, the log perhaps, would take its
/// place and get what is meant for it. Read-only, so that a missing standard output is noticed.
void OccupyStandardDescriptors();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_SURROUNDINGS_H_
