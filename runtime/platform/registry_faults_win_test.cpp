// The registry when calls of the system fail with the codes that a case sets.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_registry.h"
#include "tests/support/runtime/captured_log.h"

namespace {

using Messages = std::vector<std::string>;

// What each call gives, and how keys were opened.
struct Told {
  LSTATUS open = 0, query = 0, create = 0, set = 0, remove = 0;
  std::vector<REGSAM> access;
  int closed = 0;
} told;

HKEY fakeKey() {
  return reinterpret_cast<HKEY>(&told);
}

LSTATUS WINAPI openKey(HKEY, LPCWSTR, DWORD, REGSAM access, PHKEY key) {
  told.access.push_back(access);
  *key = told.open == 0 ? fakeKey() : nullptr;
  return told.open;
}

LSTATUS WINAPI createKey(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM access, LPSECURITY_ATTRIBUTES,
                         PHKEY key, LPDWORD disposition) {
  told.access.push_back(access);
  *key = told.create == 0 ? fakeKey() : nullptr;
  *disposition = REG_OPENED_EXISTING_KEY;
  return told.create;
}

LSTATUS WINAPI queryValue(HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD) {
  return told.query;
}

LSTATUS WINAPI setValue(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD) {
  return told.set;
}

LSTATUS WINAPI deleteValue(HKEY, LPCWSTR) {
  return told.remove;
}

LSTATUS WINAPI closeKey(HKEY key) {
  EXPECT_EQ(fakeKey(), key);
  ++told.closed;
  return 0;
}

}  // namespace

extern "C" {
decltype(&RegOpenKeyExW) __imp_RegOpenKeyExW = openKey;
decltype(&RegCreateKeyExW) __imp_RegCreateKeyExW = createKey;
decltype(&RegQueryValueExW) __imp_RegQueryValueExW = queryValue;
decltype(&RegSetValueExW) __imp_RegSetValueExW = setValue;
decltype(&RegDeleteValueW) __imp_RegDeleteValueW = deleteValue;
decltype(&RegCloseKey) __imp_RegCloseKey = closeKey;
}

namespace {

class RegistryFaultsTest : public ::testing::Test {
 protected:
  RegistryFaultsTest() { told = {}; }
  // One line, with a text of the system's at its end.
  void expectLine(const std::string& start) {
    const Messages lines = log_.take();
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ(0U, lines[0].find("LOG " + start + " failed, errno:5, err desc:")) << lines[0];
  }
  ov_rc get() {
    length_ = sizeof out_;
    out_[0] = 'x';
    return ov_reg_get(OV_REG_LOCAL_MACHINE, "Key", "Name", out_, &length_);
  }
  char out_[16] = "";
  uint32_t length_ = 0;
  ov::CapturedLog log_;
};

TEST_F(RegistryFaultsTest, BothViewsAreLookedAt) {
  told.open = 2;
  EXPECT_EQ(2, get());
  EXPECT_EQ((std::vector<REGSAM>{0x101, 0x201}), told.access);
  EXPECT_EQ(Messages{"DBG Registry subkey Key not found"}, log_.take());
  EXPECT_EQ(0, told.closed);
}

TEST_F(RegistryFaultsTest, OtherErrorsEndTheSearch) {
  told.open = 5;
  EXPECT_EQ(5, get());
  EXPECT_STREQ("", out_);
  EXPECT_EQ(std::vector<REGSAM>{0x101}, told.access);
  expectLine("RegOpenKeyEx() Key");
}

TEST_F(RegistryFaultsTest, QueryFails) {
  told.query = 5;
  EXPECT_EQ(5, get());
  EXPECT_STREQ("", out_);
  EXPECT_EQ(1, told.closed);
  expectLine("RegQueryValueEx() Name");
  EXPECT_EQ(5, ov_reg_get_binary(OV_REG_LOCAL_MACHINE, "Key", "Name", out_, &length_));
  expectLine("RegQueryValueEx() Name");
}

TEST_F(RegistryFaultsTest, SetFails) {
  told.set = 5;
  EXPECT_EQ(5, ov_reg_set(OV_REG_LOCAL_MACHINE, "Key", "Name", "value"));
  EXPECT_EQ(std::vector<REGSAM>{0x102}, told.access);
  expectLine("RegSetValueEx() Name");
  EXPECT_EQ(5, ov_reg_set_binary(OV_REG_LOCAL_MACHINE, "Key", "Name", "b", 1));
  expectLine("RegSetValueEx() Name");
  EXPECT_EQ(2, told.closed);
  told.create = 5;
  EXPECT_EQ(5, ov_reg_set(OV_REG_LOCAL_MACHINE, "Key", "Name", "value"));
  expectLine("RegCreateKeyEx() Key");
}

TEST_F(RegistryFaultsTest, RemovalFails) {
  told.remove = 5;
  EXPECT_EQ(5, ov_reg_del(OV_REG_LOCAL_MACHINE, "Key", "Name"));
  EXPECT_EQ(std::vector<REGSAM>{0x102}, told.access);
  expectLine("RegDeleteValue() Name");
  told.open = 5;
  EXPECT_EQ(5, ov_reg_del(OV_REG_LOCAL_MACHINE, "Key", "Name"));
  expectLine("RegOpenKeyEx() Key");
}

}  // namespace
