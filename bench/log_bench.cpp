// What the log costs, as ratios within one run:
// - one line to the log file against one bare write of the same bytes to a file of its own;
// - a debug line that is switched off, at its call site, against a loop that only compares.
// usage: log_bench

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

#include "bench/bench.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "tests/support/runtime/temp_folder.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace Vantrel::Web {
namespace {

using Bench::print;
using Bench::shortest;

constexpr int kLines = 5000;
constexpr int kCalls = 100000000;

// Stands for what a line of the log looks like: a name and two numbers.
constexpr char kText[] = "Plugin::vantrelHttpRequestAsync(): argCount=%u, round %05d";

void writeBare(ov_file file, const std::string& bytes) {
#if defined(_WIN32)
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
#else
  uint32_t written = 0;
  ov_file_write(&file, bytes.data(), static_cast<uint32_t>(bytes.size()), &written);
#endif
}

void benchLine() {
  const ov::TempFolder folder;
  ov_log_cleanup();
  if (ov_log_init(2, folder.path("bench.log").c_str()) != 0) return;
  ov_log(kText, 4U, 0);
  const std::string line = ov::TempFolder::read(folder.path("bench.log"));
  ov_file bare;
  if (ov_file_openappend(folder.path("bare.txt").c_str(), &bare, 0660) != 0) return;
  // Turn by turn, so that whatever else the machine does falls on both.
  double logged = 1e9;
  double written = 1e9;
  for (int round = 0; round < 20; ++round) {
    written = std::min(written, shortest(
                                    [&] {
                                      for (int i = 0; i < kLines; ++i) writeBare(bare, line);
                                    },
                                    1));
    logged = std::min(logged, shortest(
                                  [] {
                                    for (int i = 0; i < kLines; ++i) ov_log(kText, 4U, i);
                                  },
                                  1));
  }
  print("5000 lines of the log", logged, "bare writes", written);
  ov_file_close(&bare);
  ov_log_cleanup();
}

void benchDisabledLine() {
  static volatile int32_t level = 0;
  const double compared = shortest([] {
    for (int i = 0; i < kCalls; ++i) {
      if (level >= 2) std::puts("never");
    }
  });
  ov_dbg_set_all(0);
  const double disabled = shortest([] {
    for (int i = 0; i < kCalls; ++i) {
      OV_DEBUG("%d", i);
      // The level may have been set in between, for all that the compiler knows.
      __asm__ volatile("" ::: "memory");
    }
  });
  print("100M debug lines, off", disabled, "comparisons", compared);
}

}  // namespace
}  // namespace Vantrel::Web

int main() {
  Vantrel::Web::benchLine();
  Vantrel::Web::benchDisabledLine();
  return 0;
}
