// SPDX-License-Identifier: Apache-2.0
/// The bytes of an image that is being read, each of them once.
#ifndef LIB_PLUGIN_HOST_IMAGE_INPUT_H_
#define LIB_PLUGIN_HOST_IMAGE_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace NVORNQDX20::NPluginHost {

class TImageInput {
 public:
  TImageInput(const std::function<std::size_t(char*, std::size_t)>& read, std::size_t maxMemory)
      : fRead(read), fRoom(maxMemory) {}

  [[noreturn]] void Fail(const std::string& what) const;
  /// Counts memory that the contents need.
  void Hold(std::size_t bytes) {
    if (bytes > fRoom) FailForLackOfRoom();
    fRoom -= bytes;
  }

  /// Returns the next bytes, valid until the next call.
  std::string_view Take(std::size_t size) {
    if (size > fBytes.size()) Fill(size);
    const std::string_view taken = fBytes.substr(0, size);
    fBytes.remove_prefix(size);
    return taken;
  }
  std::uint8_t Byte() { return static_cast<std::uint8_t>(Take(1).front()); }
  std::uint8_t Peek() {
    if (fBytes.empty()) Fill(1);
    return static_cast<std::uint8_t>(fBytes.front());
  }
  template <typename T>
  T Number() {
    const std::uint64_t number = ReadNumber();
    if (number > std::numeric_limits<T>::max()) Fail("a number that is too large");
    return static_cast<T>(number);
  }
  /// Returns the next text, with a replacement for each byte that XML cannot hold: what is read
  /// here is written to documents and terminals. Valid until the next call.
  std::string_view TextView();
  std::string Text() { return std::string(TextView()); }

  bool IsAtEnd() { return fBytes.empty() && !Refill(); }
  std::size_t GetReplaced() const { return fReplaced; }

 private:
  void Fill(std::size_t size);
  bool Refill();
  std::uint64_t ReadNumber();
  [[noreturn]] void FailForLackOfRoom() const;

  const std::function<std::size_t(char*, std::size_t)>& fRead;
  std::size_t fRoom;
  std::unique_ptr<char[]> fBuffer;
  std::size_t fCapacity = 0;
  std::string_view fBytes;  // of fBuffer, that are not taken yet
  std::string fReplacing;   // the last text in which something was replaced
  std::size_t fReplaced = 0;
  std::uint64_t fOffset = 0;
};

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_IMAGE_INPUT_H_
