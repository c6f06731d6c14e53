#include <gtest/gtest.h>

#include "runtime/time/ticks.h"

namespace {

TEST(TicksTest, FrequencyIsShortenedWithTheMultiplier) {
  EXPECT_EQ(2500000u, ov::tick_scale(10000000).tickMultiplier);
  EXPECT_EQ(250000u, ov::tick_scale(10000000).usecMultiplier);
  EXPECT_EQ(4194304u, ov::tick_scale(4194304).tickMultiplier);
  EXPECT_EQ(1000000u, ov::tick_scale(4194304).usecMultiplier);
  EXPECT_EQ(1048576u, ov::tick_scale(4194305).tickMultiplier);
  EXPECT_EQ(250000u, ov::tick_scale(4194305).usecMultiplier);
  EXPECT_EQ(3000000000u >> 10, ov::tick_scale(3000000000).tickMultiplier);
  EXPECT_EQ(1000000u >> 10, ov::tick_scale(3000000000).usecMultiplier);
}

TEST(TicksTest, ConversionIsExactBeyondTheOverflowOfTheProduct) {
  for (const uint64_t frequency : {1000ull, 3579545ull, 4194304ull, 10000000ull, 3000000000ull}) {
    const ov::TickScale scale = ov::tick_scale(frequency);
    for (uint64_t ticks = 0; ticks < UINT64_MAX / 8; ticks = ticks * 3 + 12345) {
      const unsigned __int128 product =
          static_cast<unsigned __int128>(ticks) * scale.usecMultiplier;
      ASSERT_EQ(static_cast<uint64_t>(product / scale.tickMultiplier),
                ov::ticks_to_usec(ticks, scale))
          << frequency << " " << ticks;
    }
  }
  EXPECT_EQ(100ull * 86400 * 1000000,
            ov::ticks_to_usec(100ull * 86400 * 10000000, ov::tick_scale(10000000)));
}

}  // namespace
