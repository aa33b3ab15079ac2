// SPDX-License-Identifier: Apache-2.0
/// What all files of this plug-in use of the library of tables.
#ifndef PLUGINS_LINUX_SOURCES_READING_H_
#define PLUGINS_LINUX_SOURCES_READING_H_

#include <qdxdescribe/files.h>
#include <qdxdescribe/numbers.h>
#include <qdxdescribe/reading.h>
#include <qdxdescribe/text.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace NVORNQDX20 {

using namespace NDescribe;

using TText = TReading<std::string>;
using TNumber = TReading<std::uint64_t>;

/// How many entries of one kind are read: one more than a class has instances, so that the class
/// says that others are left out.
inline constexpr std::size_t kMaxEntries = 100'001;

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_READING_H_
