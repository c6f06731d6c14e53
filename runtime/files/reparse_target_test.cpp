#include "runtime/files/reparse_target.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kMountPoint = 0xA0000003;
constexpr uint32_t kSymbolicLink = 0xA000000C;

void put(std::vector<uint8_t>* record, uint32_t number, size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) record->push_back(static_cast<uint8_t>(number >> (8 * i)));
}

std::vector<uint8_t> recordOf(uint32_t kind, const std::u16string& system,
                              const std::u16string& shown) {
  std::vector<uint8_t> record;
  const auto systemBytes = static_cast<uint32_t>(2 * system.size());
  const auto shownBytes = static_cast<uint32_t>(2 * shown.size());
  put(&record, kind, 4);
  put(&record, 12 + systemBytes + shownBytes, 2);
  put(&record, 0, 2);
  put(&record, 0, 2);
  put(&record, systemBytes, 2);
  put(&record, systemBytes, 2);
  put(&record, shownBytes, 2);
  if (kind == kSymbolicLink) put(&record, 1, 4);
  for (const char16_t unit : system + shown) put(&record, unit, 2);
  return record;
}

// The target, or the code as text.
std::u16string targetOf(const std::vector<uint8_t>& record, size_t size = 64) {
  // Memory of exactly the record's length, so that a read behind it is seen.
  const std::unique_ptr<uint8_t[]> exact(new uint8_t[record.size()]);
  std::copy(record.begin(), record.end(), exact.get());
  std::vector<uint16_t> out(size, 'x');
  const ov_rc error = ov::reparse_target(exact.get(), record.size(), out.data(), size);
  if (error != 0) {
    const std::string code = std::to_string(error);
    return {code.begin(), code.end()};
  }
  std::u16string text;
  for (size_t i = 0; out[i] != 0; ++i) text += static_cast<char16_t>(out[i]);
  return text;
}

TEST(ReparseTargetTest, ShownNameComesFirst) {
  for (const uint32_t kind : {kMountPoint, kSymbolicLink}) {
    EXPECT_EQ(u"C:\\shown", targetOf(recordOf(kind, u"\\??\\C:\\system", u"C:\\shown")));
  }
}

TEST(ReparseTargetTest, SystemsNameLosesItsMark) {
  for (const uint32_t kind : {kMountPoint, kSymbolicLink}) {
    EXPECT_EQ(u"C:\\system", targetOf(recordOf(kind, u"\\??\\C:\\system", u"")));
    EXPECT_EQ(u"..\\relative", targetOf(recordOf(kind, u"..\\relative", u"")));
    EXPECT_EQ(u"\\??", targetOf(recordOf(kind, u"\\??", u"")));
    EXPECT_EQ(u"", targetOf(recordOf(kind, u"\\??\\", u"")));
    EXPECT_EQ(u"", targetOf(recordOf(kind, u"", u"")));
  }
}

TEST(ReparseTargetTest, OtherKindsAreNoLinks) {
  EXPECT_EQ(u"4390", targetOf(recordOf(0x80000013, u"a", u"b")));
  EXPECT_EQ(u"4390", targetOf(recordOf(0, u"a", u"b")));
}

TEST(ReparseTargetTest, TargetMustFit) {
  const std::vector<uint8_t> record = recordOf(kSymbolicLink, u"", u"abc");
  EXPECT_EQ(u"abc", targetOf(record, 4));
  EXPECT_EQ(u"122", targetOf(record, 3));
}

TEST(ReparseTargetTest, NamesMustLieInTheRecord) {
  for (const uint32_t kind : {kMountPoint, kSymbolicLink}) {
    const std::vector<uint8_t> whole = recordOf(kind, u"sys", u"shown");
    for (size_t length = 0; length < whole.size(); ++length) {
      EXPECT_EQ(u"4392", targetOf({whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)}))
          << length;
    }
  }
  std::vector<uint8_t> odd = recordOf(kMountPoint, u"sys", u"shown");
  odd[14] = 3;
  EXPECT_EQ(u"4392", targetOf(odd));
}

TEST(ReparseTargetTest, AnyBytesAreReadWithinTheirLength) {
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    std::vector<uint8_t> record = recordOf(round % 2 == 0 ? kMountPoint : kSymbolicLink, u"", u"");
    record.resize(16 + random() % 32);
    for (size_t i = 8; i < record.size(); ++i) {
      record[i] = static_cast<uint8_t>(random() % (random() % 2 == 0 ? 256 : 16));
    }
    const std::u16string target = targetOf(record, 1 + random() % 16);
    // A code, or a text that its buffer had room for.
    ASSERT_TRUE(target == u"122" || target == u"4392" || target.size() < 16) << round;
  }
}

}  // namespace
