// A hard fault in a process with the library leaves its name and a backtrace in the log, and the
// process ends as it would without the library.
#include <windows.h>

#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/runtime/temp_folder.h"

namespace {

using Lines = std::vector<std::string>;
using ov::TempFolder;

struct Outcome {
  DWORD status = 0;
  Lines lines;  // of the log, without their stamps
};

class FaultTest : public testing::Test {
 protected:
  Outcome run(const char* way) {
    const std::string log = folder_.path("app.log");
    std::string command =
        std::string("\"") + OV_FAULT_PROBE + "\" \"" + OV_LIBRARY + "\" \"" + log + "\" " + way;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    Outcome outcome;
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
      ADD_FAILURE() << "the probe does not start: " << GetLastError();
      return outcome;
    }
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process.hProcess, 45000)) << "the probe hangs";
    TerminateProcess(process.hProcess, 99);
    GetExitCodeProcess(process.hProcess, &outcome.status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    outcome.lines = withoutStamps(TempFolder::read(log));
    return outcome;
  }

  static Lines withoutStamps(const std::string& text) {
    static const std::regex stamp("^[-0-9]+ [:0-9]+ \\[[0-9a-f]+-[0-9a-f]+\\] ");
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
      if (line.ends_with('\r')) line.pop_back();
      lines.push_back(std::regex_replace(line, stamp, ""));
    }
    return lines;
  }

  // The index of the first line that the expression matches from end to end; -1 for none.
  static int find(const Lines& lines, const std::string& expression) {
    for (size_t i = 0; i < lines.size(); ++i) {
      if (std::regex_match(lines[i], std::regex(expression))) return static_cast<int>(i);
    }
    return -1;
  }

  static std::string joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
  }

  // The lines of one fault: its name, the addresses, a frame each; one of them is in `function`.
  void expectFault(const Outcome& outcome, const std::string& name, const std::string& function) {
    const Lines& lines = outcome.lines;
    ASSERT_LE(4U, lines.size()) << joined(lines);
    EXPECT_EQ("LOG begins", lines[0]);
    EXPECT_EQ("ERR Unhandled Exception " + name, lines[1]);
    EXPECT_TRUE(std::regex_match(
        lines[2], std::regex("ERR Backtrace hash:0x[0-9a-f]{1,8} (0x[0-9a-f]{16} )+")))
        << lines[2];
    for (size_t i = 3; i < lines.size(); ++i) {
      EXPECT_TRUE(
          std::regex_match(lines[i], std::regex("ERR [ 0-9][0-9]:0x[0-9a-f]{16} [^+]*\\+-?[0-9]+")))
          << lines[i];
    }
    EXPECT_LT(2, find(lines, "ERR [ 0-9][0-9]:0x[0-9a-f]{16} " + function + "\\+[0-9]+"))
        << joined(lines);
  }

  TempFolder folder_;
};

TEST_F(FaultTest, InTheHostsOwnCode) {
  const Outcome outcome = run("write");
  EXPECT_EQ(0xC0000005, outcome.status);
  expectFault(outcome, "ACCESS_VIOLATION(3221225477)", "probe_writes_to_nowhere");
}

TEST_F(FaultTest, InTheLibrarysCodeUnderACallOfTheHost) {
  const Outcome outcome = run("text");
  EXPECT_EQ(0xC0000005, outcome.status);
  expectFault(outcome, "ACCESS_VIOLATION(3221225477)", "ov_log_vmsg");
  EXPECT_LT(2, find(outcome.lines, "ERR .* probe_logs_a_bad_text\\+[0-9]+"));
}

TEST_F(FaultTest, Division) {
  const Outcome outcome = run("divide");
  EXPECT_EQ(0xC0000094, outcome.status);
  expectFault(outcome, "INT_DIVIDE_BY_ZERO(3221225620)", "probe_divides");
}

TEST_F(FaultTest, InstructionThatIsNone) {
  const Outcome outcome = run("instruction");
  EXPECT_EQ(0xC000001D, outcome.status);
  expectFault(outcome, "ILLEGAL_INSTRUCTION(3221225501)", "probe_runs_no_instruction");
}

TEST_F(FaultTest, PrivilegedInstruction) {
  const Outcome outcome = run("privileged");
  EXPECT_EQ(0xC0000096, outcome.status);
  expectFault(outcome, "PRIV_INSTRUCTION(3221225622)", "probe_runs_a_privileged_instruction");
}

TEST_F(FaultTest, StackOverflow) {
  const Outcome outcome = run("overflow");
  EXPECT_EQ(0xC00000FD, outcome.status);
  // Names would take more stack than is left.
  expectFault(outcome, "STACK_OVERFLOW(3221225725)", "");
  EXPECT_EQ(-1, find(outcome.lines, ".*probe_recurses.*"));
}

TEST_F(FaultTest, HostsOwnHandlerIsReachedBehindTheReport) {
  const Outcome outcome = run("handled");
  EXPECT_EQ(42U, outcome.status);
  expectFault(outcome, "ACCESS_VIOLATION(3221225477)", "probe_writes_to_nowhere");
}

TEST_F(FaultTest, BreakpointIsNotReported) {
  const Outcome outcome = run("breakpoint");
  EXPECT_EQ(0x80000003, outcome.status);
  EXPECT_EQ(Lines{"LOG begins"}, outcome.lines);
}

TEST_F(FaultTest, NotReportedOnceTheLogIsClosed) {
  const Outcome outcome = run("cleaned");
  EXPECT_EQ(0xC0000005, outcome.status);
  EXPECT_EQ(Lines{"LOG begins"}, outcome.lines);
}

TEST_F(FaultTest, NothingOfTheLibraryIsCalledOnceItIsUnloadedWithTheLogOpen) {
  const Outcome outcome = run("unloaded");
  EXPECT_EQ(0xC0000005, outcome.status);
  EXPECT_EQ(Lines{"LOG begins"}, outcome.lines);
}

TEST_F(FaultTest, BacktraceOnRequestBeginsWithItsCaller) {
  const Outcome outcome = run("backtrace");
  EXPECT_EQ(0U, outcome.status);
  ASSERT_LE(3U, outcome.lines.size());
  EXPECT_EQ(1, find(outcome.lines, "ERR Backtrace hash:0x[0-9a-f]+ (0x[0-9a-f]{16} )+"));
  EXPECT_EQ(2, find(outcome.lines, "ERR  0:0x[0-9a-f]{16} probe_asks_for_a_backtrace\\+[0-9]+"))
      << joined(outcome.lines);
}

TEST_F(FaultTest, MutexAcquiredTwiceEndsWithItsBacktrace) {
  const Outcome outcome = run("reacquire");
  EXPECT_EQ(0x80000003, outcome.status);
  ASSERT_LE(4U, outcome.lines.size());
  EXPECT_EQ("ERR ov_mutex_acquire: attempt to reacquire non-recursive mutex.  Aborting.",
            outcome.lines[1]);
  EXPECT_EQ(2, find(outcome.lines, "ERR Backtrace hash:0x[0-9a-f]+ (0x[0-9a-f]{16} )+"));
  EXPECT_LT(2, find(outcome.lines, "ERR .* ov_mutex_acquire\\+[0-9]+")) << joined(outcome.lines);
  EXPECT_LT(2, find(outcome.lines, "ERR .* probe_acquires_twice\\+[0-9]+"));
}

}  // namespace
