// SPDX-License-Identifier: Apache-2.0
#include "firmware_socket.h"

namespace NVORNQDX20 {
namespace {

/// Returns a count in one byte; where that is 0xFF, in two at the other offset.
TReading<std::uint16_t> ReadCount(const TSMBIOSStructure& socket, std::size_t offset,
                                  std::size_t longOffset) {
  const auto count = socket.ReadNumber<std::uint8_t>(offset);
  if (!count) return Missing(count.GetReason());
  if (*count == 0) return socket.MissingFrom("firmware does not say how many there are");
  if (*count == 0xff) return socket.ReadNumber<std::uint16_t>(longOffset);
  return std::uint16_t{*count};
}

/// Returns a clock speed in MHz.
TMegahertz ReadMegahertz(const TSMBIOSStructure& socket, std::size_t offset) {
  const auto speed = socket.ReadNumber<std::uint16_t>(offset);
  if (!speed) return Missing(speed.GetReason());
  if (*speed == 0) return socket.MissingFrom("firmware does not know the clock speed");
  return std::uint32_t{*speed};
}

}  // namespace

TReading<std::uint16_t> TFirmwareSocket::ReadCores(const TSMBIOSStructure& socket) {
  return ReadCount(socket, 0x23, 0x2a);
}

TReading<std::uint16_t> TFirmwareSocket::ReadEnabledCores(const TSMBIOSStructure& socket) {
  return ReadCount(socket, 0x24, 0x2c);
}

TReading<std::uint16_t> TFirmwareSocket::ReadThreads(const TSMBIOSStructure& socket) {
  return ReadCount(socket, 0x25, 0x2e);
}

TMegahertz TFirmwareSocket::ReadBusClock(const TSMBIOSStructure& socket) {
  return ReadMegahertz(socket, 0x12);
}

TMegahertz TFirmwareSocket::ReadMaxClock(const TSMBIOSStructure& socket) {
  return ReadMegahertz(socket, 0x14);
}

TMegahertz TFirmwareSocket::ReadCurrentClock(const TSMBIOSStructure& socket) {
  return ReadMegahertz(socket, 0x16);
}

std::vector<TSMBIOSStructure> ReadPopulatedSockets(const THost& host) {
  std::vector<TSMBIOSStructure> sockets;
  if (!host.GetSMBIOS()) return sockets;
  for (const TSMBIOSStructure& socket : host.GetSMBIOS()->OfType(4)) {
    constexpr std::uint8_t kCentral = 3, kPopulated = 0x40;
    const bool isCentral = socket.ReadNumber<std::uint8_t>(0x05).ValueOr(kCentral) <= kCentral;
    const auto status = socket.ReadNumber<std::uint8_t>(TFirmwareSocket::kStatus);
    const bool isPopulated = (status.ValueOr(kPopulated) & kPopulated) != 0;
    if (isCentral && isPopulated) sockets.push_back(socket);
  }
  return sockets;
}

}  // namespace NVORNQDX20
