// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/message.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <unistd.h>

#include "supervisor.h"

namespace NVORNQDX20::NPluginHost {
namespace {

constexpr std::size_t kMaxPacket = 128U << 10U;

template <typename TNumber>
void Append(std::string& packet, TNumber number) {
  char bytes[sizeof number];
  std::memcpy(bytes, &number, sizeof number);
  packet.append(bytes, sizeof number);
}

template <typename TNumber>
bool Take(std::string_view& packet, TNumber& number) {
  if (packet.size() < sizeof number) return false;
  std::memcpy(&number, packet.data(), sizeof number);
  packet.remove_prefix(sizeof number);
  return true;
}

union TControl {
  cmsghdr fHeader;
  char fBytes[CMSG_SPACE(sizeof(int))];
};

/// Takes ownership of all descriptors of a received packet; keeps the first.
TDescriptor TakeFile(msghdr& packet) {
  TDescriptor file;
  for (cmsghdr* part = CMSG_FIRSTHDR(&packet); part != nullptr; part = CMSG_NXTHDR(&packet, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
    const std::size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
    for (std::size_t i = 0; i < count; ++i) {
      int number = -1;
      std::memcpy(&number, CMSG_DATA(part) + i * sizeof number, sizeof number);
      TDescriptor taken(number);
      if (!file.IsOpen()) file = std::move(taken);
    }
  }
  return file;
}

}  // namespace

const std::string& TMessage::Text(std::size_t index) const {
  static const std::string empty;
  return index < fTexts.size() ? fTexts[index] : empty;
}

std::string EncodeMessage(const TMessage& message) {
  std::string packet;
  Append(packet, message.fKind);
  Append(packet, message.fNumber);
  for (const std::string& text : message.fTexts) {
    const std::string_view kept = std::string_view(text).substr(0, kMaxMessageText);
    Append(packet, static_cast<std::uint32_t>(kept.size()));
    packet += kept;
  }
  return packet;
}

std::optional<TMessage> DecodeMessage(std::string_view packet) {
  TMessage message;
  if (!Take(packet, message.fKind) || !Take(packet, message.fNumber)) return std::nullopt;
  while (!packet.empty()) {
    std::uint32_t size = 0;
    if (message.fTexts.size() == kMaxMessageTexts || !Take(packet, size) ||
        size > std::min(packet.size(), kMaxMessageText)) {
      return std::nullopt;
    }
    message.fTexts.emplace_back(packet.substr(0, size));
    packet.remove_prefix(size);
  }
  return message;
}

void TSender::Send(const TMessage& message) const {
  std::string bytes = EncodeMessage(message);
  iovec part{bytes.data(), bytes.size()};
  msghdr packet{};
  packet.msg_iov = &part;
  packet.msg_iovlen = 1;
  TControl control{};
  if (message.fFile.IsOpen()) {
    packet.msg_control = &control;
    packet.msg_controllen = sizeof control;
    cmsghdr* const header = CMSG_FIRSTHDR(&packet);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof(int));
    const int file = message.fFile.Get();
    std::memcpy(CMSG_DATA(header), &file, sizeof file);
  }
  while (::sendmsg(fSocket, &packet, MSG_NOSIGNAL) < 0) {
    if (errno != EINTR) ::_exit(kCannotDeliver);
  }
}

TReceived ReceiveMessage(int socket) {
  static char buffer[kMaxPacket];
  iovec part{buffer, sizeof buffer};
  TControl control{};
  msghdr packet{};
  packet.msg_iov = &part;
  packet.msg_iovlen = 1;
  packet.msg_control = &control;
  packet.msg_controllen = sizeof control;
  const ssize_t size = ::recvmsg(socket, &packet, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
  if (size < 0 && errno == EINTR) return ReceiveMessage(socket);
  if (size < 0 && errno == EAGAIN) return {TReceived::kNothingYet};
  if (size < 0) return {TReceived::kEnd};
  TDescriptor file = TakeFile(packet);
  if (size == 0 && !file.IsOpen()) return {TReceived::kEnd};
  TReceived received{TReceived::kPacket};
  const auto whole = static_cast<unsigned>(packet.msg_flags) & static_cast<unsigned>(MSG_TRUNC);
  if (whole == 0) received.fMessage = DecodeMessage({buffer, static_cast<std::size_t>(size)});
  if (received.fMessage) received.fMessage->fFile = std::move(file);
  return received;
}

}  // namespace NVORNQDX20::NPluginHost
