// SPDX-License-Identifier: Apache-2.0
/// The limits of whole runs of qdx, as commands of their own.
#ifndef BENCH_BARE_H_
#define BENCH_BARE_H_

#include <string>
#include <vector>

namespace NBench {

/// Starts a process that loads the library and reads each file that is named in a line of `list`.
/// Folders are listed; what cannot be opened is skipped. Returns false if the process failed.
bool LoadAndRead(const std::string& library, const std::string& list);

/// Parses the files with expat alone. Returns false if one of them is not well-formed.
bool ParseFiles(const std::vector<std::string>& files);

/// Writes the document of the benchmarks, with so many instances.
void WriteDocument(const std::string& file, std::size_t instances);

}  // namespace NBench

#endif  // BENCH_BARE_H_
