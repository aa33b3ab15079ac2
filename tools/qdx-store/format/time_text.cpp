// SPDX-License-Identifier: Apache-2.0
#include "time_text.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string_view>

namespace NVORNQDX20::NStore {
namespace {

constexpr TMilliseconds kSecond = 1000;
constexpr TMilliseconds kHour = 3600 * kSecond;

/// Takes exactly so many digits off the text; -1 if they are not there.
int TakeDigits(std::string_view& text, std::size_t count) {
  if (text.size() < count) return -1;
  int number = 0;
  for (const char c : text.substr(0, count)) {
    if (c < '0' || c > '9') return -1;
    number = number * 10 + (c - '0');
  }
  text.remove_prefix(count);
  return number;
}

/// The numbers of a time, of which only the first ones may be there.
struct TNumbers {
  std::array<int, 6> fNumbers{0, 1, 1, 0, 0, 0};  // year, month, day, hour, minute, second
  std::size_t fCount = 0;
};

std::optional<TNumbers> TakeNumbers(std::string_view& text) {
  static constexpr const char* kBefore[] = {"", "-", "-", "T ", ":", ":"};
  TNumbers numbers;
  for (; numbers.fCount < numbers.fNumbers.size(); ++numbers.fCount) {
    const std::size_t i = numbers.fCount;
    if (i > 0) {
      if (text.empty() || std::string_view(kBefore[i]).find(text[0]) == std::string_view::npos) {
        break;
      }
      text.remove_prefix(1);
    }
    numbers.fNumbers[i] = TakeDigits(text, i == 0 ? 4 : 2);
    if (numbers.fNumbers[i] < 0) return std::nullopt;
  }
  return numbers;
}

std::optional<TMilliseconds> TimeOf(const std::array<int, 6>& numbers) {
  std::tm clock = {};
  clock.tm_year = numbers[0] - 1900;
  clock.tm_mon = numbers[1] - 1;
  clock.tm_mday = numbers[2];
  clock.tm_hour = numbers[3];
  clock.tm_min = numbers[4];
  clock.tm_sec = numbers[5];
  std::tm normal = clock;
  const std::time_t time = ::timegm(&normal);
  // A day that its month does not have became one of the next month.
  const bool isSame = normal.tm_mon == clock.tm_mon && normal.tm_mday == clock.tm_mday &&
                      normal.tm_hour == clock.tm_hour && normal.tm_min == clock.tm_min &&
                      normal.tm_sec == clock.tm_sec;
  if (!isSame) return std::nullopt;
  return TMilliseconds{time} * kSecond;
}

/// Returns the end of the last of these numbers.
TMilliseconds EndOf(TNumbers numbers) {
  std::tm clock = {};
  ++numbers.fNumbers[numbers.fCount - 1];
  clock.tm_year = numbers.fNumbers[0] - 1900;
  clock.tm_mon = numbers.fNumbers[1] - 1;
  clock.tm_mday = numbers.fNumbers[2];
  clock.tm_hour = numbers.fNumbers[3];
  clock.tm_min = numbers.fNumbers[4];
  clock.tm_sec = numbers.fNumbers[5];
  return TMilliseconds{::timegm(&clock)} * kSecond;
}

/// "7d", "12h".
std::optional<TMilliseconds> ParseAge(const std::string& typed) {
  std::int64_t number = 0;
  const char* const end = typed.data() + typed.size();
  const auto [rest, error] = std::from_chars(typed.data(), end, number);
  constexpr std::int64_t kMost = 1'000'000;
  if (error != std::errc() || number < 0 || number > kMost || end - rest != 1) return std::nullopt;
  if (*rest == 'h') return number * kHour;
  if (*rest == 'd') return number * 24 * kHour;
  return std::nullopt;
}

}  // namespace

TMilliseconds Now() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

bool IsInFuture(TMilliseconds time) { return time > Now() + 24 * kHour; }

std::string TimeText(TMilliseconds time) {
  TMilliseconds fraction = time % kSecond;
  if (fraction < 0) fraction += kSecond;
  const std::time_t seconds = (time - fraction) / kSecond;
  std::tm clock = {};
  std::array<char, 64> text{};
  if (::gmtime_r(&seconds, &clock) == nullptr) return "";
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &clock);
  std::string all = text.data();
  if (fraction != 0) {
    std::snprintf(text.data(), text.size(), ".%03d", static_cast<int>(fraction));
    all += text.data();
  }
  return all + "Z";
}

std::optional<TMilliseconds> MillisecondsOf(const std::string& text) {
  std::string_view rest = text;
  const auto numbers = TakeNumbers(rest);
  if (!numbers || numbers->fCount != numbers->fNumbers.size()) return std::nullopt;
  const auto time = TimeOf(numbers->fNumbers);
  TMilliseconds fraction = 0;
  if (!rest.empty() && rest[0] == '.') {
    rest.remove_prefix(1);
    fraction = TakeDigits(rest, 3);
  }
  if (!time || fraction < 0 || rest != "Z") return std::nullopt;
  return *time + fraction;
}

std::optional<TTypedTime> ParseTypedTime(const std::string& typed, TMilliseconds now) {
  if (const auto age = ParseAge(typed)) return TTypedTime{now - *age, now - *age};
  std::string_view rest = typed;
  const auto numbers = TakeNumbers(rest);
  if (!numbers) return std::nullopt;
  if (rest == "Z" && numbers->fCount > 3) rest = "";
  const auto begin = TimeOf(numbers->fNumbers);
  if (!begin || !rest.empty()) return std::nullopt;
  return TTypedTime{*begin, EndOf(*numbers)};
}

}  // namespace NVORNQDX20::NStore
