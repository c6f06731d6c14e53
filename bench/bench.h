// What the programs here share: two sides timed in turns, the figures of many turns, and the one
// form of a row. A row names its aim; whether it is met is told, and nothing depends on it.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <string>
#include <vector>

namespace Vantrel::Web::Bench {

// The middle of many turns, and the quartiles as their spread.
struct Figures {
  double median = 0;
  double low = 0;
  double high = 0;
};

inline Figures figuresOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t last = values.size() - 1;
  return {values[last / 2], values[last / 4], values[last - last / 4]};
}

// What a row is to reach: at most that much, at least that much, or nothing.
struct Aim {
  enum class Kind { kAtMost, kAtLeast, kNone };
  Kind kind = Kind::kNone;
  double value = 0;

  static Aim atMost(double value) { return {Kind::kAtMost, value}; }
  static Aim atLeast(double value) { return {Kind::kAtLeast, value}; }
};

// Of the value as it is printed.
inline const char* verdict(double value, const Aim& aim) {
  if (aim.kind == Aim::Kind::kNone) return "-";
  value = std::round(value * 100) / 100;
  const bool met = aim.kind == Aim::Kind::kAtMost ? value <= aim.value : value >= aim.value;
  return met ? "ok" : "over";
}

// The columns, in this order: name, median, spread, aim, "ok" or "over".
inline void printRow(const std::string& name, const Figures& figures, const Aim& aim) {
  char wanted[32] = "-";
  if (aim.kind != Aim::Kind::kNone) {
    std::snprintf(wanted, sizeof wanted, "%s %.2f",
                  aim.kind == Aim::Kind::kAtMost ? "<=" : ">=", aim.value);
  }
  std::printf("%-60s %9.2f  %9.2f .. %-9.2f %-9s %s\n", name.c_str(), figures.median, figures.low,
              figures.high, wanted, verdict(figures.median, aim));
  static_cast<void>(std::fflush(stdout));
}

// Ends the program: a bench that did not do its work must print no figure.
[[noreturn]] inline void fail(const std::string& what) {
  std::fprintf(stderr, "failed: %s\n", what.c_str());
  std::exit(1);
}

inline void require(bool holds, const char* what) {
  if (!holds) fail(what);
}

// What a program's main returns: the rows print themselves, what they throw ends the program.
template <class Rows>
int runRows(Rows&& rows) {
  try {
    rows();
    return 0;
  } catch (const std::exception& error) {
    fail(error.what());
  }
}

// Natively the processor time of this thread, which other work on the machine does not lengthen;
// under Wine, which counts that in hundredths of a second, the time that has passed.
inline double now() {
#if defined(_WIN32)
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
#else
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
#endif
}

template <class Work>
double secondsOf(Work&& work) {
  const double start = now();
  work();
  return now() - start;
}

// What `measure` says of one side divided by what it says of the other, turn by turn and each first
// in every other turn, so that whatever else the machine does falls on both. Both run once before.
template <class Measure, class Side, class Other>
Figures ratioBy(Measure&& measure, int turns, Side&& side, Other&& other) {
  side();
  other();
  std::vector<double> ratios;
  for (int turn = 0; turn < turns; ++turn) {
    double first = 0;
    double second = 0;
    if (turn % 2 == 0) first = measure(side);
    second = measure(other);
    if (turn % 2 != 0) first = measure(side);
    ratios.push_back(first / second);
  }
  return figuresOf(ratios);
}

template <class Side, class Other>
Figures ratio(int turns, Side&& side, Other&& other) {
  return ratioBy([](auto& work) { return secondsOf(work); }, turns, side, other);
}

// The same work several times, so that one turn is long enough for the clock.
template <class Work>
auto times(int count, Work work) {
  return [count, work]() mutable {
    for (int i = 0; i < count; ++i) work();
  };
}

// Keeps the compiler from leaving out what made the value.
template <class T>
void keep(const T& value) {
  __asm__ volatile("" : : "g"(&value) : "memory");
}

}  // namespace Vantrel::Web::Bench
