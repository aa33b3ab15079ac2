// SPDX-License-Identifier: Apache-2.0
/// Measures an operation and its limit.
#ifndef BENCH_MEASURE_H_
#define BENCH_MEASURE_H_

#include "operation.h"

namespace NBench {

/// Prints a line of JSON with the least that each took in any round. In a round, the operation and
/// its limit run one after the other. Changes the environment of the process.
void PrintMeasures(const TOperation& operation, unsigned int rounds);

/// Runs the operation so that callgrind counts the instructions of it alone, and writes a file.
/// Ends the process if it does not run under callgrind.
void CountInstructions(const TOperation& operation);

}  // namespace NBench

#endif  // BENCH_MEASURE_H_
