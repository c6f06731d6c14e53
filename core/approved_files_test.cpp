#include "core/approved_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/log_recorder.h"

namespace Vantrel::Web {
namespace {

using TestSupport::LogRecorder;

// Asks for a path after all other statics of the process have gone, as a dialog may under which the
// process ends. Made before all of them for that.
struct LastQuestion {
  LastQuestion() = default;
  ~LastQuestion() {
    if (path != nullptr) std::_Exit(isFileAllowed(path) ? kAllowed : kRefused);
  }
  static constexpr int kAllowed = 42;
  static constexpr int kRefused = 43;
  const char* path = nullptr;
};
constexpr int kEarliest = 101;
__attribute__((init_priority(kEarliest))) LastQuestion lastQuestion;

// The set is one for the process and never shrinks, so every case names files of its own.

TEST(ApprovedFilesTest, BackslashesAndSlashesAreTheSamePath) {
  addToApprovedFileList({"C:\\slashes\\me\\f.txt"});
  EXPECT_TRUE(isFileAllowed("C:/slashes/me/f.txt"));
  EXPECT_TRUE(isFileAllowed("C:\\slashes/me\\f.txt"));
}

TEST(ApprovedFilesTest, CaseIsKept) {
  addToApprovedFileList({"C:/case/f.txt"});
  EXPECT_FALSE(isFileAllowed("C:\\case\\F.TXT"));
}

TEST(ApprovedFilesTest, AFolderApprovesItsOwnPathOnly) {
  addToApprovedFileList({"C:\\folder\\"});
  EXPECT_TRUE(isFileAllowed("C:/folder"));
  EXPECT_TRUE(isFileAllowed("C:/folder/"));
  EXPECT_FALSE(isFileAllowed("C:/folder/f.txt"));
  EXPECT_FALSE(isFileAllowed("C:/fold"));
}

TEST(ApprovedFilesTest, OneTrailingSlashIsDropped) {
  addToApprovedFileList({"C:/two//"});
  EXPECT_TRUE(isFileAllowed("C:/two//"));
  EXPECT_FALSE(isFileAllowed("C:/two"));
  EXPECT_FALSE(isFileAllowed("C:/two/"));  // asked as C:/two
}

TEST(ApprovedFilesTest, SegmentsAreNotResolved) {
  addToApprovedFileList({"C:/dots/a.txt"});
  EXPECT_FALSE(isFileAllowed("C:/dots/./a.txt"));
  EXPECT_FALSE(isFileAllowed("C:/dots/b/../a.txt"));
}

TEST(ApprovedFilesTest, AnApprovedFileStaysApprovedWhenAddedAgain) {
  addToApprovedFileList({"C:/twice", "C:/twice"});
  EXPECT_TRUE(isFileAllowed("C:/twice"));
}

TEST(ApprovedFilesTest, BytesBehindANulCount) {
  addToApprovedFileList({std::string("C:/nul\0a", 8)});
  EXPECT_FALSE(isFileAllowed("C:/nul"));
  EXPECT_TRUE(isFileAllowed(std::string("C:/nul\0a", 8)));
}

TEST(ApprovedFilesTest, ManyFilesAreFoundAndNoOthers) {
  const auto name = [](int i) { return "C:/set/" + std::to_string(i); };
  for (int i = 0; i < 3000; ++i) {
    addToApprovedFileList({name(i), name(i / 2)});
    EXPECT_FALSE(isFileAllowed(name(i + 1))) << i;
  }
  for (int i = 0; i < 3000; ++i) EXPECT_TRUE(isFileAllowed(name(i))) << i;
  EXPECT_FALSE(isFileAllowed("C:/set/"));
}

TEST(ApprovedFilesTest, PathsBelowARootOfAnyLengthAreFoundByTheRestOfThem) {
  for (size_t length = 0; length < 40; ++length) {
    const std::string root = "C:/below/" + std::string(length, 'r') + "/";
    addToApprovedFileList({root + "in/file", root});
    // Also with less of the root, and with the slash that the list does not keep.
    for (size_t known = 0; known <= root.size(); ++known) {
      const ApprovedPrefix prefix = prefixOf(root.substr(0, known));
      EXPECT_TRUE(isJoinedFileAllowed(root + "in/file", prefix)) << length << " " << known;
      EXPECT_TRUE(isJoinedFileAllowed(root, prefix)) << length << " " << known;
      EXPECT_FALSE(isJoinedFileAllowed(root + "in/other", prefix)) << length << " " << known;
    }
  }
}

TEST(ApprovedFilesTest, SeveralThreadsApproveAndAskAtOnce) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([number] {
      const std::string folder = "C:/threads/" + std::to_string(number) + "/";
      for (int i = 0; i < 500; ++i) {
        addToApprovedFileList({folder + std::to_string(i)});
        EXPECT_TRUE(isFileAllowed(folder + std::to_string(i)));
        EXPECT_FALSE(isFileAllowed(folder + std::to_string(i + 1)));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(ApprovedFilesTest, TheEmptyRestOfALoneSlashIsAPathOfItsOwn) {
  EXPECT_FALSE(isFileAllowed("/"));
  addToApprovedFileList({"\\"});
  EXPECT_TRUE(isFileAllowed("/"));
}

void expectOutOfRange(const std::function<void()>& call) {
  try {
    call();
    FAIL() << "no exception";
  } catch (const std::out_of_range& exception) {
    EXPECT_STREQ(exception.what(), "invalid string position");
  }
}

TEST(ApprovedFilesTest, AnEmptyPathIsOutOfRangeAndKeepsTheEntriesBeforeIt) {
  LogRecorder log;
  expectOutOfRange([] { addToApprovedFileList({"C:/before", "", "C:/behind"}); });
  expectOutOfRange([] { isFileAllowed(""); });
  EXPECT_EQ(log.countContaining("PlugIn::"), 1u);
  EXPECT_TRUE(isFileAllowed("C:/before"));
  EXPECT_FALSE(isFileAllowed("C:/behind"));
}

TEST(ApprovedFilesTest, LogsTheNormalFormOnAddingAndThePathAsGivenOnARefusal) {
  LogRecorder log;
  addToApprovedFileList({"C:\\logged %s\\"});
  EXPECT_TRUE(
      log.has("DBG PlugIn::addToApprovedFileList() - added path to allowed list "
              "C:/logged %s"))
      << log.text();
  EXPECT_FALSE(isFileAllowed("C:\\other %n\\"));
  EXPECT_TRUE(log.has("DBG PlugIn::isFileAllowed() - path is not allowed C:\\other %n\\"))
      << log.text();
}

// Seen by the sanitizer: the memory of a set that is gone is freed.
TEST(ApprovedFilesDeathTest, ApprovalsOutliveEveryStaticOfTheProcess) {
  EXPECT_EXIT(
      {
        addToApprovedFileList({"C:/to/the/end"});
        lastQuestion.path = "C:/to/the/end";
        std::exit(0);
      },
      testing::ExitedWithCode(LastQuestion::kAllowed), "");
}

}  // namespace
}  // namespace Vantrel::Web
