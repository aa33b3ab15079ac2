// SPDX-License-Identifier: Apache-2.0
// A library that needs a function which nothing has: it must not load, rather than fail when
// called.
#include <qdxcore/config.h>

void NowhereToBeFound();

QDXCORE_EXPORT void CallsIt();
void CallsIt() { NowhereToBeFound(); }
