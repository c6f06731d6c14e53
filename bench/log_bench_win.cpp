// What a line of the log costs through the library: a text of 20, 80 and 1000 bytes / WriteFile of
// the whole line that stands in the log then, to a file of its own.
// usage: log_bench

#include <windows.h>

#include <string>
#include <vector>

#include "bench/bench.h"
#include "runtime/ov_log.h"
#include "tests/support/runtime/temp_folder.h"

namespace Vantrel::Web::Bench {
namespace {

constexpr int kTurns = 201;
constexpr int kLines = 50;
constexpr int kTexts = 10;
constexpr int kNoLimit = 2048;

HANDLE openAppend(const std::string& path) {
  HANDLE file = CreateFileW(ov::TempFolder::native(path).c_str(), FILE_APPEND_DATA,
                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  require(file != INVALID_HANDLE_VALUE, "a file to write to");
  return file;
}

void lineRow(size_t size, const Aim& aim) {
  const ov::TempFolder folder;
  require(ov_log_init(2, folder.path("bench.log").c_str()) == 0, "the log");
  ov_log_set_logfile_size(kNoLimit);
  // One after the other: a message that repeats the one before it is only counted.
  std::vector<std::string> texts;
  texts.reserve(kTexts);
  for (int i = 0; i < kTexts; ++i) texts.push_back(std::string(size - 1, 'x') + std::to_string(i));
  const std::string path = folder.path("bench.log");
  const size_t before = ov::TempFolder::read(path).size();
  ov_log("%s", texts.back().c_str());
  const std::string line = ov::TempFolder::read(path).substr(before);
  require(line.find(texts.back()) != std::string::npos, "a line in the log");
  HANDLE const bare = openAppend(folder.path("bare.txt"));
  const auto log = [&texts, next = size_t{0}]() mutable {
    ov_log("%s", texts[next++ % texts.size()].c_str());
  };
  const auto write = [&line, bare] {
    DWORD written = 0;
    WriteFile(bare, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    require(written == line.size(), "WriteFile");
  };
  printRow("log line of " + std::to_string(size) + " bytes / WriteFile",
           ratio(kTurns, times(kLines, log), times(kLines, write)), aim);
  require(ov::TempFolder::read(path).size() == before + line.size() * (kLines * (kTurns + 1) + 1),
          "every line in the log");
  CloseHandle(bare);
  ov_log_cleanup();
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main() {
  using namespace Vantrel::Web::Bench;
  return runRows([] {
    lineRow(20, Aim::atMost(1.15));
    lineRow(80, Aim::atMost(1.15));
    lineRow(1000, Aim::atMost(1.4));
  });
}
