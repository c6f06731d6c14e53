#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_files.h"
#include "runtime/ov_process.h"
#include "runtime/platform/internal.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/fake_identity.h"
#include "tests/support/runtime/fake_registry.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using Messages = std::vector<std::string>;

const std::string kMismatch = "LOG Process owner and %USER% name mismatch, using env name";
constexpr const char* kVariables[] = {"USER", "LOGNAME", "USERNAME", "USERDOMAIN", "DOMAINNAME"};

class UsrTest : public ::testing::Test {
 protected:
  UsrTest() {
    for (const char* name : kVariables) ov_process_setenv(name, nullptr);
    EXPECT_EQ(0, ov_platform_get_process_uname(owner_, sizeof owner_));
  }
  std::string usr(size_t size = 520) {
    char out[520] = "old";
    EXPECT_EQ(0, ov_platform_usr(out, size));
    return out;
  }
  ov_rc failure(size_t size) {
    char out[520] = "old";
    const ov_rc error = ov_platform_usr(out, size);
    EXPECT_STREQ("", out);
    return error;
  }
  void expectFailureLine(ov_rc error) {
    const Messages lines = log_.take();
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ(0U, lines[0].find("ERR Failed to resolve user name, errno:" + std::to_string(error) +
                                ", err desc:"));
  }
  char owner_[256] = "";
  ov::CapturedLog log_;
};

TEST_F(UsrTest, UserComesFirst) {
  ov_process_setenv("USER", "Bob");
  ov_process_setenv("LOGNAME", "Log");
  ov_process_setenv("USERNAME", "Name");
  EXPECT_EQ("Bob", usr());
  EXPECT_EQ(Messages{kMismatch}, log_.take());
}

TEST_F(UsrTest, OwnerIsComparedWithItsCase) {
  ov_process_setenv("USER", owner_);
  EXPECT_EQ(owner_, usr());
  EXPECT_EQ(Messages{}, log_.take());
  std::string other = owner_;
  other[0] = static_cast<char>(other[0] ^ 0x20);
  ov_process_setenv("USER", other.c_str());
  EXPECT_EQ(other, usr());
  EXPECT_EQ(Messages{kMismatch}, log_.take());
}

TEST_F(UsrTest, LognameComesSecond) {
  ov_process_setenv("LOGNAME", "Log");
  ov_process_setenv("USERNAME", "Name");
  ov_process_setenv("USERDOMAIN", "dom");
  EXPECT_EQ("Log", usr());
}

TEST_F(UsrTest, UsernameTakesItsDomain) {
  ov_process_setenv("USERNAME", "Name");
  EXPECT_EQ("Name", usr());
  ov_process_setenv("DOMAINNAME", "second");
  EXPECT_EQ("SECOND\\name", usr());
  ov_process_setenv("USERDOMAIN", "first.example");
  EXPECT_EQ("FIRST.EXAMPLE\\name", usr());
  ov_process_setenv("USERDOMAIN", ov::fake_identity.computer.c_str());
  EXPECT_EQ("name", usr());
  EXPECT_EQ(Messages{}, ov::fake_identity.asked);
  EXPECT_EQ(Messages(4, kMismatch), log_.take());
}

TEST_F(UsrTest, NoVariable) {
  EXPECT_EQ(22, failure(520));
  expectFailureLine(22);
  EXPECT_EQ(22, ov_platform_usr(nullptr, 520));
  char out[] = "old";
  EXPECT_EQ(22, ov_platform_usr(out, 0));
  EXPECT_STREQ("old", out);
}

TEST_F(UsrTest, NameThatDoesNotFitIsNotReplacedByAnother) {
  ov_process_setenv("USERNAME", "N");
  ov_process_setenv("LOGNAME", "Long-name");
  EXPECT_EQ(28677, failure(5));
  expectFailureLine(28677);
  ov_process_setenv("LOGNAME", "L");
  ov_process_setenv("USER", "Long-name");
  EXPECT_EQ(28677, failure(5));
  expectFailureLine(28677);
  ov_process_setenv("USER", nullptr);
  ov_process_setenv("LOGNAME", nullptr);
  ov_process_setenv("USERNAME", "Long-name");
  EXPECT_EQ(28677, failure(5));
  expectFailureLine(28677);
}

TEST_F(UsrTest, DomainThatDoesNotFit) {
  ov_process_setenv("USERNAME", "N");
  ov_process_setenv("USERDOMAIN", "abc");
  EXPECT_EQ("ABC\\n", usr(6));
  log_.take();
  EXPECT_EQ(28677, failure(5));
  expectFailureLine(28677);
}

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

// A doubled separator would be refused in a long path.
TEST_F(UidTest, InstallDirectoryMayEndInSeparators) {
  ov_process_setenv("USER", "bob");
  ASSERT_EQ(0, ov_dir_create(folder_.path("etc").c_str(), 0, 0));
  TempFolder::write(folder_.path("etc/passwd"), "bob:x:77:\n");
  for (const char* end : {"\\", "/", "\\\\", ""}) {
    ov::fake_registry.directories["SOFTWARE\\Orvane\\ZEPT"] = folder_.path() + end;
    int32_t uid = 7;
    EXPECT_EQ(0, ov_platform_uid(&uid)) << end;
    EXPECT_EQ(77, uid) << end;
  }
  ov::fake_registry.directories["SOFTWARE\\Orvane\\ZEPT"] = "Q:\\";
  int32_t uid = 7;
  log_.take();
  EXPECT_NE(0, ov_platform_uid(&uid));
  EXPECT_EQ(0U, log_.take()[2].find("LOG Could not open Q:/etc/passwd errno="));
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
