// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/thread_end.h>

namespace NVORNQDX20 {

TThreadEnd::TThreadEnd(TFunction function)
    : fFunction(function), fHasKey(::pthread_key_create(&fKey, function) == 0) {}

TThreadEnd::~TThreadEnd() {
  if (!fHasKey) return;
  void* const argument = ::pthread_getspecific(fKey);
  ::pthread_key_delete(fKey);
  if (argument != nullptr) fFunction(argument);
}

bool TThreadEnd::Expect(void* argument) const noexcept {
  return fHasKey && ::pthread_setspecific(fKey, argument) == 0;
}

}  // namespace NVORNQDX20
