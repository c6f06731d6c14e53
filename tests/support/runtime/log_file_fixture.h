// For tests: a log file in a folder of the test's own, with its generations and the messages in
// them. The log is closed before and after each test and then has a limit of 10 MiB.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "runtime/ov_log.h"
#include "tests/support/runtime/temp_folder.h"

namespace ov {

constexpr uint64_t kMebibyte = 1 << 20;

// Lines of a log without their stamps; a line with an ill stamp stays as it is. The line ends are
// CR LF, and a last one without it is kept as "unfinished".
inline std::vector<std::string> log_messages(const std::string& content) {
  static const std::regex stamp(
      "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\[[0-9a-f]+-[0-9a-f]+\\] ");
  std::vector<std::string> lines;
  size_t at = 0;
  while (at < content.size()) {
    const size_t end = content.find("\r\n", at);
    if (end == std::string::npos) return lines.push_back("unfinished"), lines;
    lines.push_back(std::regex_replace(content.substr(at, end - at), stamp, ""));
    at = end + 2;
  }
  return lines;
}

class LogFileFixture : public testing::Test {
 protected:
  void SetUp() override {
    ov_log_cleanup();
    ov_log_set(1);
    ov_dbg_set(0);
    ov_dbg_set_all(0);
    ov_log_set_logfile_size(10);
    // The last message outlives a log; this one is nobody's.
    ASSERT_EQ(0, ov_log_init(2, folder_.path("first.log").c_str()));
    ov_log("%s", folder_.path().c_str());
    ov_log_cleanup();
  }
  void TearDown() override { ov_log_cleanup(); }

  std::string path(const std::string& name = "app.log") const { return folder_.path(name); }
  std::string generation(int digit) const {
    return folder_.path("app." + std::to_string(digit) + ".log");
  }
  std::string content(const std::string& name) const { return TempFolder::read(path(name)); }

  void make(int digit, uint64_t size = 0) const {
    TempFolder::write(generation(digit), "");
    std::filesystem::resize_file(TempFolder::native(generation(digit)), size);
  }

  // The digits of the generations there are.
  std::string digits() const {
    std::string found;
    for (int digit = 0; digit < 10; ++digit) {
      if (std::filesystem::exists(TempFolder::native(generation(digit)))) {
        found += static_cast<char>('0' + digit);
      }
    }
    return found;
  }

  // The generation that a new log writes to.
  std::string target(const std::string& name = "app.log") {
    EXPECT_EQ(0, ov_log_init(2, path(name).c_str()));
    ov_log("find me %d", ++round_);
    ov_log_cleanup();
    std::string found;
    for (int digit = 0; digit < 10; ++digit) {
      const std::string text = TempFolder::read(generation(digit));
      if (text.find("find me " + std::to_string(round_)) != std::string::npos) {
        found += static_cast<char>('0' + digit);
      }
    }
    return found;
  }

  TempFolder folder_;
  int round_ = 0;
};

}  // namespace ov
