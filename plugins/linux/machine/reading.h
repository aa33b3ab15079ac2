// SPDX-License-Identifier: Apache-2.0
/// The result of reading one fact of the machine.
#ifndef PLUGINS_LINUX_MACHINE_READING_H_
#define PLUGINS_LINUX_MACHINE_READING_H_

#include <qdxdescribe/reading.h>

#include <cstdint>
#include <string>

namespace NVORNQDX20 {

using NDescribe::Missing;
using NDescribe::TReading;

using TText = TReading<std::string>;
using TNumber = TReading<std::uint64_t>;

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_READING_H_
