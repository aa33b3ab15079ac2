// SPDX-License-Identifier: Apache-2.0
/// How the command ends when memory runs out.
#ifndef TOOLS_QDX_CLI_OUT_OF_MEMORY_H_
#define TOOLS_QDX_CLI_OUT_OF_MEMORY_H_

namespace NVORNQDX20 {

/// Prints "qdx: out of memory", with the name of the program, and ends the process with the status
/// of a command that collected nothing. Allocates nothing, and calls no destructors.
///
/// Also called when memory runs out where no exception can be caught: while the libraries are
/// initialised, in functions that must not throw such as destructors of JSON values, and where
/// there is no memory for the exception itself.
[[noreturn]] void EndWithoutMemory();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_OUT_OF_MEMORY_H_
