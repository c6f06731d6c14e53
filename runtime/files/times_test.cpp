#include "runtime/files/internal.h"

#include <gtest/gtest.h>

#include "runtime/ov_time.h"

namespace {

TEST(FileTimesTest, ComeBackAsTheSameSeconds) {
  for (const int64_t seconds :
       {int64_t{-11644473599}, int64_t{-1}, int64_t{0}, int64_t{1}, int64_t{1773075731},
        int64_t{253402300799}, int64_t{910692730085}}) {
    uint64_t filetime = 0;
    ASSERT_TRUE(ov::filetime_of(seconds, &filetime)) << seconds;
    int64_t back = 0;
    EXPECT_EQ(0, ov_time_convert_epoch(&back, static_cast<int64_t>(filetime)));
    EXPECT_EQ(seconds, back);
  }
}

TEST(FileTimesTest, TimesWithoutANumberAreRefused) {
  uint64_t filetime = 7;
  for (const int64_t seconds : {INT64_MIN, int64_t{-11644473601}, int64_t{-11644473600},
                                int64_t{910692730086}, INT64_MAX}) {
    EXPECT_FALSE(ov::filetime_of(seconds, &filetime)) << seconds;
  }
  EXPECT_EQ(7u, filetime);
}

}  // namespace
