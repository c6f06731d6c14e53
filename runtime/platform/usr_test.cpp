#include "runtime/ov_platform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/ov_process.h"
#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/fake_names.h"

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
  ov_process_setenv("USERDOMAIN", ov::fake_names.computer.c_str());
  EXPECT_EQ("name", usr());
  EXPECT_EQ(Messages{}, ov::fake_names.asked);
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

}  // namespace
