// What the sources of the path family share. Not part of the public header.
#pragma once

#include <cstddef>

#include "runtime/ov_paths.h"

namespace ov {

// White space in front of a path, as every function of the family skips it.
const char* skip_white_space(const char* text);

// ov_path_extract_prefix and ov_path_unc_parts with the size of the prefix buffer told; a prefix
// that does not fit is -1.
int32_t extract_prefix(const char* path, char* prefix, size_t prefixSize, const char** rest);
int32_t unc_parts(const char* path, char* prefix, size_t prefixSize, const char** rest);

// Size of the text that widened_text writes.
constexpr size_t kWidenedSize = 530;

// The text, still UTF-8, that ov_path_widen_path converts for a path that needs the long form:
// prefixed, with backslashes, without dots at the end of a name. `*result` is null when the path is
// to be converted as it stands. 0, or 28677 when it is too long.
ov_rc widened_text(const char* path, char (&buffer)[kWidenedSize], const char** result);

// Empties `out`, of `size` bytes, if it is there; -1.
int32_t no_path(char* out, size_t size);

// Length of the text in `out` when `result` is 0, else -1.
int32_t length_or_failure(int32_t result, const char* out);

}  // namespace ov
