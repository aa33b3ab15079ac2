// SPDX-License-Identifier: Apache-2.0
#include "format/time_text.h"

#include <gtest/gtest.h>

namespace NVORNQDX20::NStore {
namespace {

constexpr TMilliseconds kNow = 1'795'431'600'000;  // 2026-11-23T11:00:00Z

std::string SpanOf(const std::string& typed) {
  const auto time = ParseTypedTime(typed, kNow);
  return time ? TimeText(time->fBegin) + " " + TimeText(time->fEnd) : "none";
}

TEST(TimeText, IsParsedAsPeopleTypeIt) {
  const struct {
    const char* fTyped;
    const char* fSpan;
  } rows[] = {{"2026", "2026-01-01T00:00:00Z 2027-01-01T00:00:00Z"},
              {"2026-12", "2026-12-01T00:00:00Z 2027-01-01T00:00:00Z"},
              {"2024-02-29", "2024-02-29T00:00:00Z 2024-03-01T00:00:00Z"},
              {"2026-01-31T23", "2026-01-31T23:00:00Z 2026-02-01T00:00:00Z"},
              {"2026-01-31 12:05Z", "2026-01-31T12:05:00Z 2026-01-31T12:06:00Z"},
              {"2026-01-31T12:05:59Z", "2026-01-31T12:05:59Z 2026-01-31T12:06:00Z"},
              {"7d", "2026-11-16T11:00:00Z 2026-11-16T11:00:00Z"},
              {"12h", "2026-11-22T23:00:00Z 2026-11-22T23:00:00Z"},
              {"2026-02-29", "none"},
              {"2026-13", "none"},
              {"2026-1-1", "none"},
              {"2026-01-01T", "none"},
              {"2026-01-01T10:00+01:00", "none"},
              {"yesterday", "none"},
              {"-1d", "none"},
              {"7", "none"},
              {"7w", "none"},
              {"", "none"}};
  for (const auto& [typed, span] : rows) EXPECT_EQ(SpanOf(typed), span) << typed;
}

TEST(TimeText, ReadsWhatItWrites) {
  for (const TMilliseconds time : {TMilliseconds{0}, kNow, kNow + 7, TMilliseconds{999}}) {
    EXPECT_EQ(MillisecondsOf(TimeText(time)), time) << TimeText(time);
  }
  EXPECT_EQ(TimeText(kNow + 7), "2026-11-23T11:00:00.007Z");
  for (const char* const wrong : {"", "2026", "2026-11-23T11:00:00", "2026-11-23T11:00:00.7Z"}) {
    EXPECT_EQ(MillisecondsOf(wrong), std::nullopt) << wrong;
  }
}

}  // namespace
}  // namespace NVORNQDX20::NStore
