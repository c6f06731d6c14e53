#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_files.h"
#include "runtime/ov_process.h"
#include "runtime/platform/passwd_file.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/fake_registry.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using Messages = std::vector<std::string>;
using ov::TempFolder;

class UidTest : public ::testing::Test {
 protected:
  // The number of "bob" in a file of this content, or the negative code.
  int64_t uidOfBob(const std::string& content) {
    TempFolder::write(folder_.path("passwd"), content);
    int32_t uid = 7;
    const ov_rc error = ov::find_uid(folder_.path("passwd").c_str(), "bob", &uid);
    if (error == 0) return static_cast<uint32_t>(uid);
    EXPECT_EQ(-1, uid);
    return -error;
  }
  TempFolder folder_;
  ov::CapturedLog log_;
};

TEST_F(UidTest, LinesOfThePasswordFile) {
  EXPECT_EQ(12, uidOfBob("root:x:0:0\nBob:x:12:13:Bob:/home\nbob:x:14\n"));
  EXPECT_EQ((Messages{"DBG user = root", "DBG user = Bob", "ERR uid for user bob = 12"}),
            log_.take());
  const struct {
    const char* content;
    int64_t expected;
  } rows[] = {
      {"BOB:x:5", 5},
      {"bob:x:5\r\n", 5},
      {"bob::0:\n", 0},
      {"bob:x:4294967295", 4294967295},
      {"bob:x:4294967296\n", -28687},
      {"bob:x:99999999999999999999999\n", -28687},
      {"bob:x:\n", -28687},
      {"bob:x\n", -28687},
      {"bob\n", -28687},
      {"bob:x:-1\n", -28687},
      {"bob:x:1a\n", -28687},
      {"bobb:x:1\nbo:x:2\n:x:3\n", -28687},
      {"\n\n:\nbob:x:3\n", 3},
      {"", -28687},
      {"bob:x:z\nbob:x:6\n", 6},
  };
  for (const auto& row : rows) EXPECT_EQ(row.expected, uidOfBob(row.content)) << row.content;
}

TEST_F(UidTest, LongLinesAndManyLines) {
  const std::string longName(5000, 'x');
  EXPECT_EQ(9, uidOfBob(longName + ":x:1\nbob:x:9:" + longName + "\n"));
  std::string many;
  for (int i = 0; i < 2000; ++i) many += "user" + std::to_string(i) + ":x:1\n";
  EXPECT_EQ(3, uidOfBob(many + "bob:x:3"));
}

TEST_F(UidTest, UserWithoutALine) {
  EXPECT_EQ(-28687, uidOfBob("root:x:0\n"));
  EXPECT_EQ((Messages{"DBG user = root", "LOG Invalid user name, uid not found for user bob"}),
            log_.take());
}

TEST_F(UidTest, OfThisProcess) {
  ov_process_setenv("USER", "bob");
  ov::fake_registry.directories["SOFTWARE\\Orvane\\ZEPT"] = folder_.path();
  int32_t uid = 7;
  EXPECT_EQ(2, ov_dir_create(folder_.path("etc").c_str(), 0, 0) == 0 ? ov_platform_uid(&uid) : 0);
  EXPECT_EQ(-1, uid);
  Messages lines = log_.take();
  ASSERT_EQ(4U, lines.size());
  EXPECT_EQ("LOG Could not open " + folder_.path("etc/passwd") + " errno=2", lines[2]);
  EXPECT_EQ("LOG Could not find uid for user [bob]", lines[3]);
  TempFolder::write(folder_.path("etc/passwd"), "bob:x:77:\n");
  EXPECT_EQ(0, ov_platform_uid(&uid));
  EXPECT_EQ(77, uid);
}

TEST_F(UidTest, WithoutARootOrAUser) {
  ov::fake_registry = {};
  ov_process_setenv("USER", "bob");
  int32_t uid = 7;
  EXPECT_EQ(2, ov_platform_uid(&uid));
  EXPECT_EQ(-1, uid);
  EXPECT_EQ("LOG Could not find uid for user [bob]", log_.take().back());
  for (const char* name : {"USER", "LOGNAME", "USERNAME"}) ov_process_setenv(name, nullptr);
  uid = 7;
  EXPECT_EQ(22, ov_platform_uid(&uid));
  EXPECT_EQ(-1, uid);
  EXPECT_EQ("LOG Could not find uid for user []", log_.take().back());
  EXPECT_EQ(22, ov_platform_uid(nullptr));
  ov::fake_registry.directories["SOFTWARE\\Orvane\\ZEPT"] = std::string(515, 'x');
  ov_process_setenv("USER", "bob");
  EXPECT_EQ(28677, ov_platform_uid(&uid));
}

}  // namespace
