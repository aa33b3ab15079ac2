// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/date_time.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

TEST(DateTime, IsComparedWithWhatPeopleType) {
  const std::string morning = "20261122232309.500000+060";
  const std::string day = "00000001020000.000000:000";
  constexpr int kNone = 7;
  const struct {
    std::string fValue;
    const char* fTyped;
    int fOrder;
  } rows[] = {{morning, "2026-11-22", 0},
              {morning, "20261122", 0},
              {morning, "2026-11-21", 1},
              {morning, "2027", -1},
              {morning, "2026-11-22 23:23:09", 0},
              {morning, "2026-11-22T23:24", -1},
              // By the clock of the offset that was typed.
              {morning, "2026-11-22 22:23:09 +00:00", 0},
              {morning, "2026-11-22T22:23:09Z", 0},
              {morning, "2026-11-23 +09:00", 0},
              {morning, "2026-11-22 17:53:10 -04:30", -1},
              {morning, "20261122232309.500001+060", -1},
              {morning, "20261122232309.500000+060", 0},
              {day, "26 h", 0},
              {day, "1 day", 1},
              {day, "00000001020001.000000:000", -1},
              {morning, "26 h", kNone},
              {morning, "yesterday", kNone},
              {morning, "2026-1-2", kNone},
              {morning, "2026-11-22 23:23 +1", kNone},
              {morning, "", kNone},
              {day, "2026", 1},
              {day, "soon", kNone},
              {"2026112223****.******+060", "2026", kNone},
              {"", "", kNone}};
  for (const auto& [value, typed, order] : rows) {
    EXPECT_EQ(CompareDateTime(value, typed).value_or(kNone), order) << value << " " << typed;
  }
}

}  // namespace
}  // namespace NVORNQDX20
