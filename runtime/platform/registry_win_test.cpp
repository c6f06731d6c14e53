#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_registry.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

// A key for each process, since cases run side by side in one registry.
const std::string kKeyName = "SOFTWARE\\Orvane-Test-" + std::to_string(GetCurrentProcessId());
const std::wstring kWideKeyName(kKeyName.begin(), kKeyName.end());

class RegistryTest : public ::testing::Test {
 protected:
  RegistryTest() { open(KEY_WOW64_64KEY); }
  ~RegistryTest() override {
    RegCloseKey(key_);
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_32KEY, 0);
  }
  void open(REGSAM view) {
    ASSERT_EQ(0, RegCreateKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), 0, nullptr, 0,
                                 KEY_ALL_ACCESS | view, nullptr, &key_, nullptr));
  }
  void set(DWORD type, const void* data, DWORD bytes) {
    ASSERT_EQ(0, RegSetValueExW(key_, L"Name", 0, type, static_cast<const BYTE*>(data), bytes));
  }
  ov_rc get(uint32_t size) {
    length_ = size;
    return ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), "Name", out_, &length_);
  }
  HKEY key_ = nullptr;
  char out_[64] = "old";
  uint32_t length_ = 0;
  ov::CapturedLog log_;
};

TEST_F(RegistryTest, TextIsUtf8) {
  EXPECT_EQ(HKEY_LOCAL_MACHINE, OV_REG_LOCAL_MACHINE);
  EXPECT_EQ(HKEY_CURRENT_USER, OV_REG_CURRENT_USER);
  set(REG_SZ, L"C:\\\u00E4", 10);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("C:\\\xC3\xA4", out_);
  EXPECT_EQ(6U, length_);
  set(REG_EXPAND_SZ, L"%X%", 8);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("%X%", out_);
}

TEST_F(RegistryTest, TextNeedNotBeTerminatedNorEven) {
  set(REG_SZ, L"abcd", 6);  // the system would add a terminator that it sees behind
  EXPECT_EQ(0, get(6));
  EXPECT_STREQ("abc", out_);
  set(REG_SZ, L"abc", 5);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("ab", out_);
  set(REG_SZ, L"", 0);
  EXPECT_EQ(0, get(sizeof out_));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(1U, length_);
}

TEST_F(RegistryTest, SmallBufferTellsALargerSizeAndIsEmptied) {
  set(REG_SZ, L"abcd", 10);
  EXPECT_EQ(28677, get(9));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(40U, length_);
  EXPECT_EQ(Messages{"DBG Buffer length of 40 required"}, log_.take());
  length_ = 0;
  EXPECT_EQ(0, ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), "Name", nullptr, &length_));
  EXPECT_EQ(40U, length_);
  EXPECT_EQ(28677, get(0));
}

TEST_F(RegistryTest, TextThatGrowsInUtf8) {
  set(REG_SZ, L"\u20AC\u20AC\u20AC", 6);
  EXPECT_EQ(28677, get(8));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(10U, length_);
  const Messages lines = log_.take();
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ(0U, lines[0].find("LOG ov_str_ncpy() failed, errno:28677, err desc:"));
  EXPECT_EQ(0, get(10));
  EXPECT_EQ(10U, length_);
}

TEST_F(RegistryTest, OtherTypesAreRefused) {
  const DWORD number = 7;
  set(REG_DWORD, &number, sizeof number);
  EXPECT_EQ(22, get(sizeof out_));
  EXPECT_STREQ("", out_);
  EXPECT_EQ(Messages{"LOG RegQueryValueEx() returned unexpected type: 4l"}, log_.take());
}

TEST_F(RegistryTest, IllFormedTextIsRefused) {
  set(REG_SZ, L"a\xD800", 6);
  EXPECT_EQ(22, get(sizeof out_));
  EXPECT_STREQ("", out_);
  const Messages lines = log_.take();
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ(0U, lines[0].find("LOG ov_wchar_to_utf8() failed, errno:22, err desc:"));
}

TEST_F(RegistryTest, MissingKeyAndValue) {
  EXPECT_EQ(2, get(sizeof out_));
  EXPECT_STREQ("", out_);
  length_ = sizeof out_;
  EXPECT_EQ(2, ov_reg_get(OV_REG_CURRENT_USER, "SOFTWARE\\No", "Name", out_, &length_));
  EXPECT_EQ(
      (Messages{"DBG Registry value Name not found", "DBG Registry subkey SOFTWARE\\No not found"}),
      log_.take());
}

TEST_F(RegistryTest, ThirtyTwoBitViewIsLookedAtSecond) {
  RegCloseKey(key_);
  RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
  ASSERT_EQ(0, RegCreateKeyExW(HKEY_LOCAL_MACHINE, kWideKeyName.c_str(), 0, nullptr, 0,
                               KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, &key_, nullptr));
  set(REG_SZ, L"32", 6);
  length_ = sizeof out_;
  EXPECT_EQ(0, ov_reg_get(OV_REG_LOCAL_MACHINE, kKeyName.c_str(), "Name", out_, &length_));
  EXPECT_STREQ("32", out_);
  RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kWideKeyName.c_str(), KEY_WOW64_32KEY, 0);
}

TEST_F(RegistryTest, BadHiveAndArguments) {
  length_ = sizeof out_;
  EXPECT_EQ(6, ov_reg_get(nullptr, kKeyName.c_str(), "Name", out_, &length_));
  const Messages lines = log_.take();
  ASSERT_EQ(1U, lines.size());
  EXPECT_EQ(0U, lines[0].find("LOG RegOpenKeyEx() " + kKeyName + " failed, errno:6, err desc:"));
  EXPECT_EQ(22, ov_reg_get(OV_REG_CURRENT_USER, nullptr, "Name", out_, &length_));
  EXPECT_EQ(22, ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), nullptr, out_, &length_));
  EXPECT_EQ(22, ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), "Name", out_, nullptr));
}

class RegistryWriteTest : public ::testing::Test {
 protected:
  RegistryWriteTest() {
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
  }
  ~RegistryWriteTest() override {
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
  }
  ov::CapturedLog log_;
};

TEST_F(RegistryWriteTest, TextIsWrittenAndReadBack) {
  EXPECT_EQ(0, ov_reg_set(OV_REG_CURRENT_USER, kKeyName.c_str(), "N\xC3\xA4me", "v\xE2\x82\xAC"));
  EXPECT_EQ(Messages{"DBG Created registry subkey " + kKeyName}, log_.take());
  EXPECT_EQ(0, ov_reg_set(OV_REG_CURRENT_USER, kKeyName.c_str(), "other", ""));
  EXPECT_EQ(Messages{}, log_.take());
  char out[16];
  uint32_t length = sizeof out;
  EXPECT_EQ(0, ov_reg_get(OV_REG_CURRENT_USER, kKeyName.c_str(), "N\xC3\xA4me", out, &length));
  EXPECT_STREQ("v\xE2\x82\xAC", out);
  wchar_t raw[8];
  DWORD bytes = sizeof raw;
  DWORD type = 0;
  EXPECT_EQ(0, RegGetValueW(HKEY_CURRENT_USER, kWideKeyName.c_str(), L"N\u00E4me", RRF_RT_ANY,
                            &type, raw, &bytes));
  EXPECT_EQ(DWORD{REG_SZ}, type);
  EXPECT_EQ(6U, bytes);  // with the terminator
}

TEST_F(RegistryWriteTest, BytesAreWrittenAndReadBack) {
  const char data[] = {1, 0, 2};
  EXPECT_EQ(0, ov_reg_set_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", data, 3));
  char out[4] = {9, 9, 9, 9};
  uint32_t length = sizeof out;
  EXPECT_EQ(0, ov_reg_get_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", out, &length));
  EXPECT_EQ(3U, length);
  EXPECT_EQ(0, memcmp(data, out, 3));
  length = 2;
  EXPECT_EQ(28677, ov_reg_get_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", out, &length));
  EXPECT_EQ(12U, length);
  EXPECT_EQ(0, ov_reg_get_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", nullptr, &length));
  EXPECT_EQ(3U, length);
  EXPECT_EQ(22, ov_reg_get_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", out, nullptr));
  EXPECT_EQ(22, ov_reg_set_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", nullptr, 1));
  EXPECT_EQ(0, ov_reg_set_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", nullptr, 0));
}

TEST_F(RegistryWriteTest, Removal) {
  EXPECT_EQ(2, ov_reg_del(OV_REG_CURRENT_USER, kKeyName.c_str(), "a"));
  EXPECT_EQ(0, ov_reg_set(OV_REG_CURRENT_USER, kKeyName.c_str(), "a", "1"));
  EXPECT_EQ(0, ov_reg_del(OV_REG_CURRENT_USER, kKeyName.c_str(), "a"));
  EXPECT_EQ(2, ov_reg_del(OV_REG_CURRENT_USER, kKeyName.c_str(), "a"));
  EXPECT_EQ((Messages{"DBG Registry subkey " + kKeyName + " not found",
                      "DBG Created registry subkey " + kKeyName, "DBG Registry value a not found"}),
            log_.take());
}

TEST_F(RegistryWriteTest, Failures) {
  EXPECT_EQ(6, ov_reg_set(nullptr, kKeyName.c_str(), "a", "1"));
  EXPECT_EQ(6, ov_reg_del(nullptr, kKeyName.c_str(), "a"));
  const Messages lines = log_.take();
  ASSERT_EQ(2U, lines.size());
  const std::string rest = "() " + kKeyName + " failed, errno:6, err desc:";
  EXPECT_EQ(0U, lines[0].find("LOG RegCreateKeyEx" + rest));
  EXPECT_EQ(0U, lines[1].find("LOG RegOpenKeyEx" + rest));
  EXPECT_EQ(22, ov_reg_set(OV_REG_CURRENT_USER, nullptr, "a", "1"));
  EXPECT_EQ(22, ov_reg_set(OV_REG_CURRENT_USER, kKeyName.c_str(), nullptr, "1"));
  EXPECT_EQ(22, ov_reg_set(OV_REG_CURRENT_USER, kKeyName.c_str(), "a", nullptr));
  EXPECT_EQ(22, ov_reg_set(OV_REG_CURRENT_USER, kKeyName.c_str(), "a", "\xFF"));
  EXPECT_EQ(22, ov_reg_del(OV_REG_CURRENT_USER, nullptr, "a"));
  EXPECT_EQ(22, ov_reg_del(OV_REG_CURRENT_USER, kKeyName.c_str(), nullptr));
}

}  // namespace
