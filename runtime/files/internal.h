// What the sources of the file family share. Not part of the public header.
#pragma once

#include <cstdint>

#include "runtime/errors/platform.h"
#include "runtime/ov_files.h"

namespace ov {

// State of an ov_dir.
constexpr int32_t kReadNext = 5;
constexpr int32_t kFirstPending = 6;
constexpr int32_t kEmptyDirectory = 7;

// Converts seconds since 1970 into units of 100 ns since 1601, as the platform keeps times of
// files; false for a time that has no such number, or the number 0, which stands for no time.
constexpr bool filetime_of(int64_t seconds, uint64_t* filetime) {
  constexpr int64_t kUnitsPerSecond = 10000000;
  constexpr int64_t kSecondsTo1970 = 11644473600;
  // The platform reads the number as signed.
  constexpr int64_t kLatest = INT64_MAX / kUnitsPerSecond - kSecondsTo1970;
  if (seconds <= -kSecondsTo1970 || seconds > kLatest) return false;
  *filetime = static_cast<uint64_t>((seconds + kSecondsTo1970) * kUnitsPerSecond);
  return true;
}

// Makes one directory; 183 if something is there already. An operation of the platform.
ov_rc make_directory(const char* path);

// Removes one empty directory, or the link itself of a link to a directory. An operation of the
// platform.
ov_rc remove_directory(const char* path);

// Whether what is at `path` stands for something elsewhere, though ov_file_stat shows a directory.
// An operation of the platform.
bool is_directory_link(const char* path);

}  // namespace ov
