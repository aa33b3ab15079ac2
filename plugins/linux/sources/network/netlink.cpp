// SPDX-License-Identifier: Apache-2.0
#include "netlink.h"

#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>

#include <array>
#include <cerrno>
#include <chrono>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/socket.h>

namespace NVORNQDX20 {
namespace {

using TClock = std::chrono::steady_clock;

constexpr std::size_t kMaxDump = 64U << 20U;
constexpr std::chrono::milliseconds kTimeout(1000);

constexpr std::size_t Align(std::size_t size) { return (size + 3) / 4 * 4; }

TMissing Failure(int error) { return Failed("netlink: " + ErrorText(error)); }

bool SendRequest(int socket, std::uint16_t request) {
  struct {
    nlmsghdr fHeader;
    rtgenmsg fFamily;
  } message{};
  message.fHeader.nlmsg_len = sizeof message;
  message.fHeader.nlmsg_type = request;
  message.fHeader.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  message.fFamily.rtgen_family = AF_UNSPEC;
  return ::send(socket, &message, sizeof message, MSG_DONTWAIT) == sizeof message;
}

bool WaitForAnswer(int socket, TClock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - TClock::now());
  pollfd answer{socket, POLLIN, 0};
  return left.count() > 0 && ::poll(&answer, 1, static_cast<int>(left.count())) > 0;
}

/// Returns whether the part ends the dump. Sets the error of a dump that failed.
bool IsLastPart(std::string_view part, int& error) {
  bool isLast = false;
  ForEachMessage(part, [&](unsigned type, std::string_view payload) {
    if (type != NLMSG_DONE && type != NLMSG_ERROR) return;
    isLast = true;
    error = -FrontOf<int>(payload).value_or(-EBADMSG);
  });
  return isLast;
}

}  // namespace

TReading<std::string> DumpNetlink(std::uint16_t request) {
  const TDescriptor socket(
      ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
  if (!socket.IsOpen()) return Failure(socket.GetError());
  if (!SendRequest(socket.Get(), request)) return Failure(errno);
  const TClock::time_point deadline = TClock::now() + kTimeout;
  std::array<char, 1U << 16U> buffer;  // not initialised: the kernel sends parts of 32 KiB
  std::string dump;
  for (int error = 0;;) {
    if (!WaitForAnswer(socket.Get(), deadline)) return Failure(ETIMEDOUT);
    const ssize_t size = ::recv(socket.Get(), buffer.data(), buffer.size(), MSG_TRUNC);
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (size < 0) return Failure(errno);
    const std::string_view part(buffer.data(), static_cast<std::size_t>(size));
    if (part.size() > buffer.size() || dump.size() + part.size() > kMaxDump) {
      return Failure(EMSGSIZE);
    }
    const bool isLast = IsLastPart(part, error);
    if (error != 0) return Failure(error);
    dump += part;
    if (isLast) return dump;
  }
}

void ForEachMessage(std::string_view dump,
                    const std::function<void(unsigned type, std::string_view payload)>& take) {
  while (const auto header = FrontOf<nlmsghdr>(dump)) {
    const std::size_t size = header->nlmsg_len;
    if (size < sizeof *header || size > dump.size()) return;
    take(header->nlmsg_type, dump.substr(sizeof *header, size - sizeof *header));
    dump.remove_prefix(std::min(Align(size), dump.size()));
  }
}

void ForEachAttribute(std::string_view attributes,
                      const std::function<void(unsigned type, std::string_view value)>& take) {
  while (const auto header = FrontOf<rtattr>(attributes)) {
    const std::size_t size = header->rta_len;
    if (size < sizeof *header || size > attributes.size()) return;
    take(header->rta_type & static_cast<unsigned>(NLA_TYPE_MASK),
         attributes.substr(sizeof *header, size - sizeof *header));
    attributes.remove_prefix(std::min(Align(size), attributes.size()));
  }
}

}  // namespace NVORNQDX20
