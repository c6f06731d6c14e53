#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <regex>
#include <thread>

#include "tests/support/scratch_folder.h"
#include "tools/client/random_text.h"
#include "tools/client/recorder.h"
#include "tools/client/run_files.h"

namespace Vantrel::StandIn {
namespace {

namespace fs = std::filesystem;

TEST(RunFilesTest, FormsOfTheUriFile) {
  EXPECT_EQ(RunFiles::uriText(4711, "k", "key"), "http://127.0.0.1:4711\nk");
  EXPECT_EQ(RunFiles::uriText(4711, "k", "key_lf"), "http://127.0.0.1:4711\nk\n");
  EXPECT_EQ(RunFiles::uriText(4711, "k", "url_only"), "http://127.0.0.1:4711");
}

TEST(RunFilesTest, TheKeyIsEverythingBehindTheFirstLineFeed) {
  EXPECT_EQ(RunFiles::keyOfReader("u\nk"), "k");
  EXPECT_EQ(RunFiles::keyOfReader("u\nk\n"), "k\n");
  EXPECT_EQ(RunFiles::keyOfReader("u"), "u");
}

TEST(RunFilesTest, BothFilesComeAndGo) {
  ScratchFolder scratch;
  Knobs knobs;
  RunFiles files(scratch.path(), knobs, 77);
  files.write(80, "k");
  EXPECT_EQ(bytesOf(scratch.path() / "var/run/http.uri"), "http://127.0.0.1:80\nk");
  EXPECT_EQ(bytesOf(scratch.path() / "var/run/process.pid"), "77");
  files.write(81, "l");
  EXPECT_EQ(bytesOf(scratch.path() / "var/run/http.uri"), "http://127.0.0.1:81\nl");
  files.remove();
  EXPECT_TRUE(fs::is_empty(scratch.path() / "var/run"));
}

TEST(RunFilesTest, FilesOfAnotherClientStay) {
  ScratchFolder scratch;
  Knobs knobs;
  RunFiles first(scratch.path(), knobs, 1);
  RunFiles second(scratch.path(), knobs, 2);
  first.write(80, "k");
  second.write(81, "l");
  first.remove();
  EXPECT_EQ(bytesOf(scratch.path() / "var/run/http.uri"), "http://127.0.0.1:81\nl");
}

TEST(RunFilesTest, NoneWritesNothing) {
  ScratchFolder scratch;
  Knobs knobs;
  knobs.uriFile = "none";
  RunFiles files(scratch.path(), knobs, 1);
  files.write(80, "k");
  files.remove();
  EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST(RunFilesTest, AReaderNeverSeesHalfAFile) {
  ScratchFolder scratch;
  fs::path file = scratch.path() / "f";
  replaceFile(file, std::string(5000, 'a'));
  std::atomic<bool> done = false;
  std::jthread writer([&] {
    for (int i = 0; i < 40; ++i) replaceFile(file, std::string(5000, i % 2 == 0 ? 'b' : 'a'));
    done = true;
  });
  int whole = 0;
  while (!done) {
    std::string text = bytesOf(file);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (text.empty()) continue;  // the reader came between two names
    ASSERT_EQ(text, std::string(5000, text[0]));
    ++whole;
  }
  EXPECT_GT(whole, 0);
}

TEST(RecorderTest, EachConnectionHasItsFile) {
  ScratchFolder scratch;
  Recorder recorder(scratch.path() / "rec");
  ConnectionRecord first = recorder.next();
  ConnectionRecord second = recorder.next();
  first.add("ab");
  second.add(std::string_view("\0\r\n", 3));
  first.add("c");
  EXPECT_EQ(bytesOf(scratch.path() / "rec/000001.bin"), "abc");
  EXPECT_EQ(bytesOf(scratch.path() / "rec/000002.bin"), std::string("\0\r\n", 3));
}

TEST(RecorderTest, WithoutAFolderNothingIsRecorded) {
  ScratchFolder scratch;
  fs::path before = fs::current_path();
  fs::current_path(scratch.path());
  Recorder recorder{fs::path()};
  recorder.next().add("x");
  fs::current_path(before);
  EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST(RandomTextTest, KeysAndIdsHaveTheirFormsAndDiffer) {
  EXPECT_TRUE(std::regex_match(randomHex(32), std::regex("[0-9a-f]{32}")));
  EXPECT_TRUE(std::regex_match(
      randomUuid(), std::regex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-8[0-9a-f]{3}-[0-9a-f]{12}")));
  EXPECT_NE(randomHex(32), randomHex(32));
}

}  // namespace
}  // namespace Vantrel::StandIn
