// SPDX-License-Identifier: Apache-2.0
/// Makes allocations and system calls of this process fail. For programs that are linked with the
/// library; script/faults controls others by environment variables.
#ifndef FAULTS_FAULTS_H_
#define FAULTS_FAULTS_H_

#define FAULTS_EXPORT __attribute__((visibility("default")))

struct TFaultyCall {
  const char* fName;
  const char* fErrors;  ///< Separated by blanks.
  unsigned fCount;      ///< Since ArmFault.
};

/// Counts from 0 again, and lets the call with this number among those with this name fail; none
/// for 0. Of an allocation the error ONCE is one that fails, ALWAYS it and all after it.
FAULTS_EXPORT void ArmFault(const char* call, unsigned number, const char* error);

/// Lets nothing fail from here on.
FAULTS_EXPORT void DisarmFault();

/// Returns whether anything failed since ArmFault.
FAULTS_EXPORT bool HasFailed();

/// Returns false if there are no more calls.
FAULTS_EXPORT bool GetFaultyCall(unsigned index, TFaultyCall& call);

/// Returns how many blocks were allocated since the program began, and not freed.
FAULTS_EXPORT long CountLiveBlocks();

/// Returns the name of the call that failed last, and its argument.
FAULTS_EXPORT const char* PlaceOfFault();

#endif  // FAULTS_FAULTS_H_
