// Timing that the programs here share.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace Vantrel::Web::Bench {

// The shortest of a few runs, in seconds.
template <class Work>
double shortest(Work work, int rounds = 5) {
  double best = 1e9;
  for (int round = 0; round < rounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    best = std::min(best, time.count());
  }
  return best;
}

inline void print(const char* name, double seconds, const char* reference,
                  double referenceSeconds) {
  std::printf("%-30s %9.6f s   %-24s %9.6f s   ratio %.2f\n", name, seconds, reference,
              referenceSeconds, seconds / referenceSeconds);
}

}  // namespace Vantrel::Web::Bench
