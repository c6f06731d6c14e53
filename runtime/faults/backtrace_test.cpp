#include "runtime/faults/backtrace.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <string>
#include <vector>

#include "runtime/faults/exception_codes.h"
#include "tests/support/runtime/caller_state.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Lines = std::vector<std::string>;

ov::Backtrace backtrace_of(int count, uint32_t hash) {
  ov::Backtrace backtrace;
  backtrace.count = count;
  backtrace.hash = hash;
  for (int i = 0; i < count; ++i) {
    backtrace.frames[i] = reinterpret_cast<void*>(0x7ff6000000001000 + static_cast<uintptr_t>(i));
  }
  return backtrace;
}

void log_backtrace(const ov::Backtrace& backtrace, ov::FindSymbol find) {
  char line[ov::kBacktraceLineRoom];
  ov::log_backtrace(backtrace, line, find);
}

bool find_nothing(void*, uint32_t, ov::Symbol*) {
  return true;
}

TEST(FrameLimitTest, SystemsOfTheGenerationOf51TakeFewer) {
  for (const int usual : {ov::kCalledFrames, ov::kFaultFrames}) {
    for (const bool second_release : {false, true}) {
      EXPECT_EQ(60, ov::frame_limit(5, 1, second_release, usual));
      EXPECT_EQ(usual, ov::frame_limit(5, 0, second_release, usual));
      EXPECT_EQ(usual, ov::frame_limit(5, 3, second_release, usual));
      EXPECT_EQ(usual, ov::frame_limit(6, 1, second_release, usual));
      EXPECT_EQ(usual, ov::frame_limit(6, 2, second_release, usual));
      EXPECT_EQ(usual, ov::frame_limit(10, 0, second_release, usual));
    }
    EXPECT_EQ(60, ov::frame_limit(5, 2, false, usual));
    EXPECT_EQ(usual, ov::frame_limit(5, 2, true, usual));
  }
  EXPECT_EQ(66, ov::kCalledFrames);
  EXPECT_EQ(64, ov::kFaultFrames);
}

TEST(HardFaultTest, AllExceptionsButThoseOfADebuggerAreTold) {
  for (const ov::ExceptionCode& row : ov::kExceptionCodes) {
    const std::string name = row.name;
    const bool debugger = name == "BREAKPOINT" || name == "SINGLE_STEP";
    EXPECT_EQ(!debugger, ov::is_hard_fault(row.code)) << name;
  }
}

TEST(HardFaultTest, NoOtherCodeIsTold) {
  std::set<uint32_t> known;
  for (const ov::ExceptionCode& row : ov::kExceptionCodes) known.insert(row.code);
  for (const uint32_t base : {0x80000000u, 0xc0000000u}) {
    for (uint32_t code = base; code < base + 0x10000; ++code) {
      ASSERT_TRUE(known.contains(code) || !ov::is_hard_fault(code)) << code;
    }
  }
  for (const uint32_t code : {0u, 5u, 0x20474343u, 0x40010006u, 0x406d1388u, 0xe06d7363u}) {
    EXPECT_FALSE(ov::is_hard_fault(code)) << code;
  }
}

TEST(BacktraceTest, WithoutFramesItIsUnavailable) {
  ov::CapturedLog log;
  log_backtrace(ov::Backtrace(), &find_nothing);
  EXPECT_EQ(Lines{"ERR Backtrace unavailable."}, log.take());
}

TEST(BacktraceTest, AddressesInOneLineThenALineForEachFrame) {
  ov::CapturedLog log;
  log_backtrace(backtrace_of(3, 0xbeef), [](void* address, uint32_t, ov::Symbol* symbol) {
    const auto last = reinterpret_cast<uintptr_t>(address) & 0xf;
    if (last == 0) return true;
    ov_snprintf(symbol->name, sizeof symbol->name, "Some::function%d", static_cast<int>(last));
    symbol->displacement = last == 1 ? 0x1234567890 : -5;
    return true;
  });
  EXPECT_EQ((Lines{"ERR Backtrace hash:0xbeef "
                   "0x7ff6000000001000 0x7ff6000000001001 0x7ff6000000001002 ",
                   "ERR  0:0x7ff6000000001000 +0",
                   "ERR  1:0x7ff6000000001001 Some::function1+78187493520",
                   "ERR  2:0x7ff6000000001002 Some::function2+-5"}),
            log.take());
}

TEST(BacktraceTest, ShortAddressesHave16DigitsAndTheHashNoZeros) {
  ov::CapturedLog log;
  ov::Backtrace backtrace;
  backtrace.count = 1;
  backtrace.frames[0] = reinterpret_cast<void*>(uintptr_t{0xab});
  log_backtrace(backtrace, &find_nothing);
  EXPECT_EQ((Lines{"ERR Backtrace hash:0 0x00000000000000ab ", "ERR  0:0x00000000000000ab +0"}),
            log.take());
}

TEST(BacktraceTest, LineOfAddressesEndsBehindTheLastWholeOne) {
  // The hash takes 18 to 26 of 1023 bytes, an address 19.
  for (const uint32_t hash : {0u, 0x1u, 0x12345u, 0xffffffffu}) {
    ov::CapturedLog log;
    log_backtrace(backtrace_of(66, hash), &find_nothing);
    const Lines lines = log.take();
    ASSERT_EQ(67u, lines.size());
    const std::string addresses = lines[0].substr(4);
    const size_t head = addresses.find(' ', addresses.find(':')) + 1;
    EXPECT_EQ((1023 - head) / 19, (addresses.size() - head) / 19);
    EXPECT_EQ(0u, (addresses.size() - head) % 19);
    EXPECT_EQ("ERR 65:0x7ff6000000001041 +0", lines.back());
  }
}

TEST(BacktraceTest, LongNameIsWhole) {
  ov::CapturedLog log;
  log_backtrace(backtrace_of(1, 1), [](void*, uint32_t, ov::Symbol* symbol) {
    std::string(255, 'n').copy(symbol->name, 255);
    symbol->displacement = 7;
    return true;
  });
  EXPECT_EQ("ERR  0:0x7ff6000000001000 " + std::string(255, 'n') + "+7", log.take().at(1));
}

TEST(BacktraceTest, BusyLookUpIsWaitedForOnce) {
  static std::vector<uint32_t> waits;
  waits.clear();
  ov::CapturedLog log;
  log_backtrace(backtrace_of(4, 1), [](void*, uint32_t milliseconds, ov::Symbol*) {
    waits.push_back(milliseconds);
    return waits.size() != 2;
  });
  ASSERT_EQ(4u, waits.size());
  EXPECT_LT(0u, waits[0]);
  EXPECT_EQ(waits[0], waits[1]);
  EXPECT_EQ(0u, waits[2]);
  EXPECT_EQ(0u, waits[3]);
  EXPECT_EQ(5u, log.take().size());
}

TEST(BacktraceTest, CallersErrorsAreTheSameBehindIt) {
  const ov::CapturedLog log;
  ov::set_caller_error(77);
  errno = 5;
  ov_log_btrace();
  EXPECT_EQ(77u, ov::caller_error());
  EXPECT_EQ(5, errno);
}

TEST(BacktraceTest, OfTheCallingThread) {
  ov::CapturedLog log;
  ov_log_btrace();
  const Lines lines = log.take();
  ASSERT_LE(2u, lines.size());
  ASSERT_GE(67u, lines.size());
  EXPECT_EQ(0u, lines[0].find("ERR Backtrace hash:"));
  for (size_t i = 1; i < lines.size(); ++i) {
    char start[32];
    ov_snprintf(start, sizeof start, "ERR %2d:0x", static_cast<int>(i - 1));
    EXPECT_EQ(0u, lines[i].find(start)) << lines[i];
  }
}

}  // namespace
