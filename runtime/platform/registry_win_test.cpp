#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_registry.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

// A key for each process, since cases run side by side in one registry.
const std::string kKeyName = "SOFTWARE\\Orvane-Test-Set-" + std::to_string(GetCurrentProcessId());
const std::wstring kWideKeyName(kKeyName.begin(), kKeyName.end());

class RegistrySetTest : public ::testing::Test {
 protected:
  RegistrySetTest() {
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
  }
  ~RegistrySetTest() override {
    RegDeleteKeyExW(HKEY_CURRENT_USER, kWideKeyName.c_str(), KEY_WOW64_64KEY, 0);
  }
  ov::CapturedLog log_;
};

TEST_F(RegistrySetTest, TextIsWrittenAndReadBack) {
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

TEST_F(RegistrySetTest, BytesAreWrittenAndReadBack) {
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
  EXPECT_EQ(12U, length);
  EXPECT_EQ(22, ov_reg_get_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", out, nullptr));
  EXPECT_EQ(22, ov_reg_set_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", nullptr, 1));
  EXPECT_EQ(0, ov_reg_set_binary(OV_REG_CURRENT_USER, kKeyName.c_str(), "b", nullptr, 0));
}

TEST_F(RegistrySetTest, Removal) {
  EXPECT_EQ(2, ov_reg_del(OV_REG_CURRENT_USER, kKeyName.c_str(), "a"));
  EXPECT_EQ(0, ov_reg_set(OV_REG_CURRENT_USER, kKeyName.c_str(), "a", "1"));
  EXPECT_EQ(0, ov_reg_del(OV_REG_CURRENT_USER, kKeyName.c_str(), "a"));
  EXPECT_EQ(2, ov_reg_del(OV_REG_CURRENT_USER, kKeyName.c_str(), "a"));
  EXPECT_EQ((Messages{"DBG Registry subkey " + kKeyName + " not found",
                      "DBG Created registry subkey " + kKeyName, "DBG Registry value a not found"}),
            log_.take());
}

TEST_F(RegistrySetTest, Failures) {
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
