// Names of the log's ten generations: one digit before the last extension of the configured path,
// "dir/stem.ext" giving "dir/stem.0.ext" to "dir/stem.9.ext". A plain value, no platform calls.
#pragma once

#include <bitset>
#include <cstddef>
#include <string_view>

namespace ov {

constexpr int kLogGenerationCount = 10;
// A path of the log, its terminator included, and a path with a generation's dot and digit.
constexpr size_t kLogPathRoom = 520;
constexpr size_t kLogGenerationPathRoom = kLogPathRoom + 2;

using LogGenerationSet = std::bitset<kLogGenerationCount>;

// The digit after `digit`, around the ring.
constexpr int next_log_generation(int digit) {
  return (digit + 1) % kLogGenerationCount;
}

// Where writing goes on: upward from the lowest generation there is as long as the next one is
// there too, since the gap in the ring marks where writing stopped. -1 for an empty set.
int choose_log_generation(const LogGenerationSet& existing);

class LogGenerations {
 public:
  // `path` has forward slashes, less than kLogPathRoom bytes, and outlives the object.
  explicit LogGenerations(std::string_view path);

  // Directory of the generations, "." for a path with no slash.
  void directory(char (&out)[kLogPathRoom]) const;
  // The digit of a directory entry that is a generation, else -1.
  int digitOf(std::string_view entry) const;
  void pathOf(int digit, char (&out)[kLogGenerationPathRoom]) const;

 private:
  std::string_view path_;
  size_t base_;       // where the base name begins
  size_t extension_;  // where its last extension begins, the dot included; or its end
};

}  // namespace ov
