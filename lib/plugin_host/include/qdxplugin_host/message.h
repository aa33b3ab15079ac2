// SPDX-License-Identifier: Apache-2.0
/// Messages from a worker to the command: packets of a socket.
#ifndef QDXPLUGIN_HOST_MESSAGE_H_
#define QDXPLUGIN_HOST_MESSAGE_H_

#include <qdxsystem/descriptor.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace NVORNQDX20::NPluginHost {

struct TMessage {
  std::uint8_t fKind = 0;
  std::int64_t fNumber = 0;
  std::vector<std::string> fTexts;
  TDescriptor fFile;  ///< An open file that the receiver owns from then on.

  /// Returns an empty text if there are fewer.
  const std::string& Text(std::size_t index) const;
};

/// The longest text of a message; the end of a longer one is cut off.
inline constexpr std::size_t kMaxMessageText = 16U << 10U;
inline constexpr std::size_t kMaxMessageTexts = 4;

std::string EncodeMessage(const TMessage& message);
/// Returns nothing for a packet that EncodeMessage cannot have made.
std::optional<TMessage> DecodeMessage(std::string_view packet);

/// The sending end of the socket, in the worker.
class TSender {
 public:
  explicit TSender(int socket) : fSocket(socket) {}
  /// Sends it with its file. Ends the process if that fails, since nothing else can be delivered
  /// then.
  void Send(const TMessage& message) const;
  /// Makes the message first.
  void Send(std::uint8_t kind, std::vector<std::string> texts, std::int64_t number = 0,
            TDescriptor file = {}) const {
    Send(TMessage{kind, number, std::move(texts), std::move(file)});
  }

 private:
  int fSocket;
};

/// What a receiver finds in the socket.
struct TReceived {
  enum EKind { kNothingYet, kEnd, kPacket } fKind;
  std::optional<TMessage> fMessage = {};  ///< None for a packet that is no message.
};
/// Takes the next packet without waiting.
TReceived ReceiveMessage(int socket);

}  // namespace NVORNQDX20::NPluginHost

#endif  // QDXPLUGIN_HOST_MESSAGE_H_
