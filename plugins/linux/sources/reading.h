// SPDX-License-Identifier: Apache-2.0
/// What all files of this plug-in use of the library of tables.
#ifndef PLUGINS_LINUX_SOURCES_READING_H_
#define PLUGINS_LINUX_SOURCES_READING_H_

#include <qdxdescribe/files.h>
#include <qdxdescribe/numbers.h>
#include <qdxdescribe/reading.h>
#include <qdxdescribe/text.h>

#include <cstdint>
#include <string>

namespace NVORNQDX20 {

using namespace NDescribe;

using TText = TReading<std::string>;
using TNumber = TReading<std::uint64_t>;

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_READING_H_
