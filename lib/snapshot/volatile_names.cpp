// SPDX-License-Identifier: Apache-2.0
#include "volatile_names.h"

#include <set>

namespace NVORNQDX20 {

bool HasVolatileName(const std::string& property) {
  static const std::set<std::string> names = {"AvailablePhysicalMemory",
                                              "AvailableSpace",
                                              "BytesReceived",
                                              "BytesTotal",
                                              "BytesTransmitted",
                                              "CarrierChanges",
                                              "CollectionTime",
                                              "CurrentClockSpeed",
                                              "CurrentReading",
                                              "CurrentTime",
                                              "FreeInodes",
                                              "FreePhysicalMemory",
                                              "FreeSpaceInPagingFiles",
                                              "FreeVirtualMemory",
                                              "KernelModeTime",
                                              "LoadAverage1",
                                              "LoadAverage15",
                                              "LoadAverage5",
                                              "LoadPercentage",
                                              "LocalDateTime",
                                              "NumberOfProcesses",
                                              "NumberOfUsers",
                                              "PacketsReceived",
                                              "PacketsTransmitted",
                                              "PowerOnHours",
                                              "ReceiveDrops",
                                              "ReceiveErrors",
                                              "RootFolder",
                                              "StatisticTime",
                                              "SystemUpTime",
                                              "TotalPowerOnHours",
                                              "TransmitDrops",
                                              "TransmitErrors",
                                              "UpTime",
                                              "UserModeTime"};
  return names.count(property) != 0;
}

}  // namespace NVORNQDX20
