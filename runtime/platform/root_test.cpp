#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/fake_registry.h"

namespace {

using Messages = std::vector<std::string>;
using ov::fake_registry;

constexpr char kZept[] = "SOFTWARE\\Orvane\\ZEPT";
constexpr char kMarrow[] = "SOFTWARE\\Orvane\\Marrow Server";
constexpr char kTrellis[] = "SOFTWARE\\Orvane\\Trellis-Link";

std::string line(const std::string& key, const std::string& word) {
  return "LOG Key \"" + key + "\" " + word + "found in registry";
}

class RootTest : public ::testing::Test {
 protected:
  RootTest() { fake_registry = {}; }
  char out_[64] = "old";
  ov::CapturedLog log_;
};

TEST_F(RootTest, NamesInTheRegistry) {
  EXPECT_STREQ(kZept, OV_WINREG_ZEPT);
  EXPECT_STREQ(kMarrow, OV_WINREG_MRWSRV);
  EXPECT_STREQ(kTrellis, OV_WINREG_TLINK);
  EXPECT_STREQ("InstallDir", OV_WINREG_DIR);
  EXPECT_STREQ("LogDir", OV_WINREG_LOG);
}

TEST_F(RootTest, FirstProductThatIsThere) {
  fake_registry.directories[kTrellis] = "C:\\t";
  EXPECT_EQ(0, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("C:\\t", out_);
  EXPECT_EQ((Messages{line(kZept, "not "), line(kMarrow, "not "), line(kTrellis, "")}),
            log_.take());
  fake_registry.directories[kMarrow] = "C:\\m";
  EXPECT_EQ(0, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("C:\\m", out_);
  EXPECT_EQ((Messages{line(kZept, "not "), line(kMarrow, "")}), log_.take());
  fake_registry.directories[kZept] = "C:\\z";
  EXPECT_EQ(0, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("C:\\z", out_);
  EXPECT_EQ(Messages{line(kZept, "")}, log_.take());
}

TEST_F(RootTest, NoProduct) {
  EXPECT_EQ(2, ov_platform_root(out_, sizeof out_));
  EXPECT_STREQ("", out_);
  EXPECT_EQ((Messages{line(kZept, "not "), line(kMarrow, "not "), line(kTrellis, "not ")}),
            log_.take());
  EXPECT_EQ((Messages{kZept, kMarrow, kTrellis}), fake_registry.asked);
  EXPECT_EQ(22, ov_platform_root(nullptr, sizeof out_));
}

TEST_F(RootTest, PathWithForwardSlashes) {
  fake_registry.directories[kZept] = "C:\\p\\q r\\";
  EXPECT_EQ(0, ov_platform_winpath(out_, sizeof out_));
  EXPECT_STREQ("C:/p/q r/", out_);
  EXPECT_EQ(28677, ov_platform_winpath(out_, 4));
  fake_registry.directories = {{kMarrow, "C:\\m"}};
  EXPECT_EQ(2, ov_platform_winpath(out_, sizeof out_));
  EXPECT_EQ(Messages{}, log_.take());
  EXPECT_EQ(22, ov_platform_winpath(nullptr, sizeof out_));
}

}  // namespace
