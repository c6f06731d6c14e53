// What the sources of the file family share. Not part of the public header.
#pragma once

#include <cstdint>

#include "runtime/errors/platform.h"
#include "runtime/ov_files.h"

namespace ov {

// Codes that the platform gives for something that is not there, and for a path that does not lead
// to a directory.
constexpr ov_rc kNoEntry = 2;
constexpr ov_rc kNoPath = 3;
constexpr ov_rc kNotDirectory = 267;
constexpr ov_rc kAlreadyExists = 183;

// State of an ov_dir.
constexpr int32_t kReadNext = 5;
constexpr int32_t kFirstPending = 6;
constexpr int32_t kEmptyDirectory = 7;

// Makes one directory; 183 if something is there already. An operation of the platform.
ov_rc make_directory(const char* path);

// Removes one empty directory, or the link itself of a link to a directory. An operation of the
// platform.
ov_rc remove_directory(const char* path);

// Whether a link (of any kind that the platform knows) is at `path` that ov_file_stat shows as its
// target. An operation of the platform.
bool is_directory_link(const char* path);

}  // namespace ov
