// Backtraces in the log: which faults are told, how many frames are taken, and the lines.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ov {

// The most frames of a backtrace that a caller asks for, and of one after a fault. Systems of the
// generation of version 5.1 cannot take as many.
constexpr int kCalledFrames = 66;
constexpr int kFaultFrames = 64;
constexpr int kOldSystemFrames = 60;
// Frames left out at the top: the capture itself and whoever asked for it.
constexpr int kSkippedFrames = 2;

struct Backtrace {
  int count = 0;
  uint32_t hash = 0;
  void* frames[kCalledFrames];
};

// What is known about an address; the name is empty when nothing is.
struct Symbol {
  char name[256] = {};
  int64_t displacement = 0;
};

// The number of frames to ask for on a system of this version, where usually `usual` are.
// `second_release` is what tells the two systems of version 5.2 apart.
int frame_limit(uint32_t major, uint32_t minor, bool second_release, int usual);

constexpr uint32_t kStackOverflow = 0xc00000fd;

// Whether a fault with this code of the platform is told in the log.
bool is_hard_fault(uint32_t code);

// The platform's part: takes the backtrace of the calling thread, without its caller.
void capture_backtrace(Backtrace* backtrace, int usual);
// The platform's part: looks an address up; false when the look-up was not free within that time.
bool find_symbol(void* address, uint32_t milliseconds, Symbol* symbol);

// Room for the text of a line.
constexpr size_t kBacktraceLineRoom = 1024;

using FindSymbol = bool (*)(void* address, uint32_t milliseconds, Symbol* symbol);

// How the names are looked up for a fault with this code: not at all where the stack has run out,
// since the debugging library needs more of it than is left.
FindSymbol symbol_finder(uint32_t code);

// Writes the backtrace as ERR lines: all addresses in one, then a line with the name for each
// frame. The texts are made in `line`.
void log_backtrace(const Backtrace& backtrace, char (&line)[kBacktraceLineRoom], FindSymbol find);

}  // namespace ov
