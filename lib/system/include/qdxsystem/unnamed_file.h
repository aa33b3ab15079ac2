// SPDX-License-Identifier: Apache-2.0
/// Temporary files without a name.
#ifndef QDXSYSTEM_UNNAMED_FILE_H_
#define QDXSYSTEM_UNNAMED_FILE_H_

#include <qdxsystem/descriptor.h>

namespace NVORNQDX20 {

/// Returns an empty file that vanishes when it is closed: in memory, since the disk of a sick
/// machine may be full or gone; on old kernels in the folder for temporary files.
TDescriptor OpenUnnamedFile();

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_UNNAMED_FILE_H_
