// SPDX-License-Identifier: Apache-2.0
#include "out_of_memory.h"

#include <qdxsystem/write.h>

#include <cstdlib>
#include <exception>
#include <new>

#include <unistd.h>

#include "exit_code.h"
#include "failure.h"

namespace NVORNQDX20 {
namespace {

bool gHasRunOut = false;

/// Called by "new" before it throws.
void NoteAndThrow() {
  gHasRunOut = true;
  throw std::bad_alloc();
}

[[noreturn]] void EndOnTerminate() {
  const std::exception_ptr pending = std::current_exception();
  // No exception is visible if it has left a function that must not throw, or could not be made.
  if (!pending && gHasRunOut) EndWithoutMemory();
  try {
    if (pending) std::rethrow_exception(pending);
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  } catch (...) {  // NOLINT(bugprone-empty-catch): like any other
  }
  std::abort();
}

void SetHandlers() {
  std::set_new_handler(NoteAndThrow);
  std::set_terminate(EndOnTerminate);
}

/// Called before the libraries are initialised, since the tables of the core allocate.
__attribute__((section(".preinit_array"), used)) void (*const gBeforeLibraries)() = SetHandlers;

}  // namespace

void EndWithoutMemory() {
  // Piece by piece, since a joined text would be allocated. A failure cannot be reported.
  (void)WriteAll(STDERR_FILENO, GetProgramName());
  (void)WriteAll(STDERR_FILENO, ": out of memory\n");
  ::_exit(kExitNothingCollected);
}

}  // namespace NVORNQDX20
