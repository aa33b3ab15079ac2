// SPDX-License-Identifier: Apache-2.0
// qdxcore_bench: measures the operations of the table, beside their limits; script/bench runs it.
//   qdxcore_bench [--rounds N] [NAME...]   a line of JSON for each: nanoseconds, allocations, aim
//   qdxcore_bench --count [NAME...]        runs each under callgrind, which writes a file for each
//   qdxcore_bench --list | --counted | --made-by
//   qdxcore_bench --load LIBRARY LIST | --parse FILE... | --document FILE INSTANCES   see bare.h
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include <expat.h>
#include <gnu/libc-version.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include "bare.h"
#include "measure.h"
#include "operation.h"

namespace NBench {
namespace {

enum EMode { kMeasure, kCount, kList, kCounted, kMadeBy };

struct TArguments {
  EMode fMode = kMeasure;
  unsigned int fRounds = 20;
  std::vector<std::string> fNames;
};

TArguments ReadArguments(int count, char** arguments) {
  TArguments read;
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    if (argument == "--count") {
      read.fMode = kCount;
    } else if (argument == "--list") {
      read.fMode = kList;
    } else if (argument == "--counted") {
      read.fMode = kCounted;
    } else if (argument == "--made-by") {
      read.fMode = kMadeBy;
    } else if (argument == "--rounds" && i + 1 < count && std::atoi(arguments[i + 1]) > 0) {
      read.fRounds = static_cast<unsigned int>(std::atoi(arguments[++i]));
    } else if (argument.rfind("--", 0) == 0) {
      std::fprintf(stderr, "qdxcore_bench: bad argument: %s\n", argument.c_str());
      std::exit(2);
    } else {
      read.fNames.push_back(argument);
    }
  }
  return read;
}

TOperations AllOperations(bool isCounted) {
  TOperations all;
  for (const TOperations& part :
       {DateTimeOperations(), ValueOperations(), PathOperations(), LogOperations(),
        InstanceOperations(isCounted), TableOperations(isCounted), DocumentOperations(isCounted),
        SystemOperations()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

bool IsNamed(const TArguments& arguments, const TOperation& operation) {
  if (arguments.fNames.empty()) return true;
  for (const std::string& name : arguments.fNames) {
    if (name == operation.fName) return true;
  }
  return false;
}

/// What the counts of instructions depend on.
void PrintMakers() {
  std::printf("g++ %s, libstdc++ %d, glibc %s, %s, zlib %s\n", __VERSION__, __GLIBCXX__,
              ::gnu_get_libc_version(), XML_ExpatVersion(), ::zlibVersion());
}

/// In a process of its own: operations leave the heap, the environment and the logger changed.
bool RunInAChild(const TArguments& arguments, const TOperation& operation) {
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) {
    if (arguments.fMode == kCount) {
      CountInstructions(operation);
    } else {
      PrintMeasures(operation, arguments.fRounds);
    }
    ::_exit(std::fflush(stdout) == 0 ? 0 : 1);
  }
  int status = 1;
  if (child > 0) ::waitpid(child, &status, 0);
  if (status != 0) {
    std::fprintf(stderr, "qdxcore_bench: %s failed\n", operation.fName.c_str());
  }
  return status == 0;
}

int Run(const TArguments& arguments) {
  const bool isCounted = arguments.fMode == kCount || arguments.fMode == kCounted;
  bool isGood = true;
  std::size_t found = 0;
  for (const TOperation& operation : AllOperations(isCounted)) {
    if (!IsNamed(arguments, operation) || (isCounted && operation.fCountedRuns == 0)) continue;
    ++found;
    if (arguments.fMode == kList || arguments.fMode == kCounted) {
      std::puts(operation.fName.c_str());
    } else {
      isGood = RunInAChild(arguments, operation) && isGood;
    }
  }
  if (found == 0) std::fprintf(stderr, "qdxcore_bench: no such operation\n");
  return isGood && found > 0 ? 0 : 1;
}

/// The commands that are limits of whole runs. Returns whether one was given, and its success.
std::optional<bool> RunBare(const std::vector<std::string>& arguments) {
  const std::string command = arguments.empty() ? "" : arguments.front();
  if (command == "--load" && arguments.size() == 3) return LoadAndRead(arguments[1], arguments[2]);
  if (command == "--parse") return ParseFiles({arguments.begin() + 1, arguments.end()});
  if (command == "--document" && arguments.size() == 3) {
    WriteDocument(arguments[1], std::stoul(arguments[2]));
    return true;
  }
  return std::nullopt;
}

}  // namespace
}  // namespace NBench

int main(int count, char** arguments) {
  try {
    if (const auto done = NBench::RunBare({arguments + 1, arguments + count})) return *done ? 0 : 1;
    const NBench::TArguments read = NBench::ReadArguments(count, arguments);
    if (read.fMode == NBench::kMadeBy) NBench::PrintMakers();
    const int status = read.fMode == NBench::kMadeBy ? 0 : NBench::Run(read);
    return std::fflush(stdout) == 0 ? status : 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "qdxcore_bench: %s\n", e.what());
    return 1;
  }
}
