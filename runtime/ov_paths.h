/* UTF-8 paths of the base runtime. Part of ov_runtime.h.

   Inside the runtime a path uses forward slashes. Buffers are the caller's and sizes count bytes,
   the terminator included; the usual size is OV_PATH_SIZE. Unless a function says otherwise, -1 is
   failure and leaves an empty text in `out` (if there is one and `size` is not 0), and a length or
   0 is success. A buffer may overlap what is read only where that is said. */
#pragma once

#include "runtime/ov_types.h"

/* The usual size of a path buffer, and the size of every prefix buffer below. */
#define OV_PATH_SIZE 520

/* The most segments that an ov_path holds. */
#define OV_PATH_SEGMENTS 260

OV_BEGIN_DECLS

/* One segment of a path: it points into the caller's text. */
typedef struct {
  const char* text;
  uint32_t length;
  uint32_t reserved; /* always 0 */
} ov_path_segment;

/* A path in segments, for walking it step by step; the texts it was made of must outlive it. The
   entry behind the last is cleared. */
typedef struct {
  char prefix[OV_PATH_SIZE];
  int32_t count;
  ov_path_segment segments[OV_PATH_SEGMENTS + 1];
} ov_path;

/* Writes the canonical form of `in`: forward slashes, no ".", no "..", no doubled or trailing
   slash. A relative path keeps the ".." it starts with, and "../" its slash; an empty text stays
   empty; anything that cancels out becomes ".". URIs are copied as they are, and cut to `size`.
   `in` may be `out`. 0, or -1 for a line feed, a network path without a share, or when `in` itself,
   the result, or what is written on the way to it does not fit `size`. */
int32_t ov_path_canonical_path(const char* in, char* out, size_t size);

/* Joins `rel` behind `dir`, also when `rel` begins with a slash, and canonicalises. Both may
   overlap `out`; then `rel` has less than OV_PATH_SIZE bytes. The result is that of
   ov_path_canonical_path, and also 0, with `out` left as it was or cut, when the joined text does
   not fit. Null arguments are -1 and leave `out` alone. */
int32_t ov_path_append(const char* dir, const char* rel, char* out, size_t size);

/* Writes the canonical path of the directory above `path`, which is "../.." for "..", and "../"
   stays when that is what is left. `path` may be `out`. Its length, or -1 for a null or empty path,
   or when `path` with "/.." behind it, or what is written on the way to the result, does not fit
   `size`; of `path` there may be OV_PATH_SIZE bytes at most. */
int32_t ov_path_parent_dir(const char* path, char* out, size_t size);

/* Splits off the root ("C:/", "/", "//host/share/" or none) into `prefix`, a buffer of
   OV_PATH_SIZE, and points `rest` behind it, or at null for a bare network share. 0, or -1 with an
   empty prefix for a null argument, a network path without a share, or a root that does not fit. */
int32_t ov_path_extract_prefix(const char* path, char* prefix, const char** rest);

/* What ov_path_extract_prefix does for a network path. */
int32_t ov_path_unc_parts(const char* path, char* prefix, const char** rest);

/* 1 for two slashes, two more characters and a slash at the fourth character or later; else 0. */
int32_t ov_path_is_unc_path(const char* path);

/* 1 if an ASCII letter and ":" stand behind any leading white space; else 0. */
int32_t ov_path_has_windows_drive_letter(const char* path);

/* 1 if the path is neither a URI nor begins with a slash or a drive and a slash; else 0. */
int32_t ov_path_is_relative(const char* path);

/* 1 if the path begins with "zept://", in this case; else 0. */
int32_t ov_path_is_zept_uri(const char* path);

/* Writes the form of `path` that a wide system call takes, with the long-path prefix where one is
   needed. `*bytes` is the size of `wide` in bytes, and afterwards the bytes used or needed. A long
   form is taken by the system as it stands: doubled separators are refused there. 0, OV_EBUFFER
   (28677) for a path that is too long, OV_ERANGE (122) for a buffer that is too small, OV_EINVAL
   (22) for bad UTF-8; what `wide` then holds is of no use. */
ov_rc ov_path_widen_path(const char* path, wchar_t* wide, size_t* bytes);

/* Formats a path and writes its canonical form; arguments may lie in `out`. Returns `out`, or null
   with the reason in `*err` (which may be null): OV_EINVAL (22) for a null `out` or no canonical
   form, OV_ERANGE (122) for a formatted text of OV_PATH_SIZE bytes or more, which leaves `out`
   alone. */
char* ov_path_build_canonical_path(char* out, size_t size, ov_rc* err, const char* format, ...)
    OV_PRINTF(4, 5);

/* 1 if ".." stands as a whole segment between slashes or ends; else 0. */
int32_t ov_path_contains_dotdot(const char* path);

/* 1 if a relative path climbs out of the directory it starts in, or is too long to tell; else 0. */
int32_t ov_path_leaves_home_dir(const char* path);

/* The next slash behind any leading ones, passing over the one behind a drive or a network host;
   null if there is none. */
const char* ov_path_next_dirsep(const char* path);

/* Copies without the slashes at the end; a path of slashes becomes empty. `in` may overlap `out`.
   The new length, or -1, with `out` left alone, if `in` does not fit. */
int32_t ov_path_remove_trailing_slashes(const char* in, char* out, size_t size);

/* Makes one slash of several, except of two at the very start. */
void ov_path_remove_redundant_slashes(char* path, size_t size);

/* Turns backslashes into slashes. */
void ov_path_convert_path_to_forward_slashes(char* path, size_t size);

/* Drops white space in front, turns backslashes into slashes, and puts a slash in front of a path
   that has no root. OV_EINVAL (22) for a drive with no slash behind it, OV_EPATHMAX (206) if the
   slash does not fit; then the white space is still there. */
ov_rc ov_path_enforce_rootedness(char* path, size_t size);

/* 1 if something exists at `path`; else 0. */
int32_t ov_path_exists(const char* path);

/* Writes the canonical path of the running program. Its length or -1. */
int32_t ov_path_executable_path(char* out, size_t size);

/* There is no such argument on this platform: always -1. */
int32_t ov_path_executable_path_from_arg(void);

/* Writes the directory of the running program. Its length or -1. */
int32_t ov_path_executable_dir(char* out, size_t size);

/* Writes the product's root: the parent of `path` or one of the two directories above it, whichever
   first holds the file of ov_path_product_info_file_name, and otherwise the directory above the
   parent. `path` may be `out`. Its length or -1. */
int32_t ov_path_root_dir(const char* path, char* out, size_t size);

/* The name of the file that marks the product's root: "product-info.mf". */
const char* ov_path_product_info_file_name(void);

/* Looks for `name` in each of the directories, a null-ended array, and writes the first path that
   exists, the directory as it was given and a slash in front of the name. 0, or -1 if there is none
   or a candidate does not fit; then `out` holds the last candidate, if there was one. */
int32_t ov_path_find_file_in_paths(const char* name, const char* const* dirs, char* out,
                                   size_t size);

/* The same in a text of directories with ":" between them, a drive's colon included. */
int32_t ov_path_find_file_in_string_of_paths(const char* name, const char* text, char* out,
                                             size_t size);

/* 1 if a directory is at `path`; else 0. */
int32_t ov_path_is_dir(const char* path);

/* Looks for `name` in the parent of `path`, in its "etc", and likewise in the two directories
   above, and writes the first path that exists. `path` may be `out`, `name` not. Its length, or
   -1. */
int32_t ov_path_etc_file(const char* name, const char* path, char* out, size_t size);

/* Writes the directory of the "orvane.conf" that belongs to `path`, else "etc" below the product's
   root. `path` may be `out`. Its length or -1. */
int32_t ov_path_etc_dir(const char* path, char* out, size_t size);

/* Writes "lib" below the directory above that of "orvane.conf", else below the product's root.
   `path` may be `out`. Its length or -1. */
int32_t ov_path_lib_dir(const char* path, char* out, size_t size);

/* Writes the present directory as the platform tells it. 0 or an error code. */
ov_rc ov_path_getcwd(char* out, size_t size);

/* Writes the canonical home directory of this process's user. Its length or -1. */
int32_t ov_path_home_dir(char* out, size_t size);

/* Writes the home or profile directory of `user`, which may be "DOMAIN\user", as the system tells
   it. 0 or an error code: of the system; OV_EINVAL (22) for null arguments; OV_ENOSPC (14) for a
   profile of more than OV_PATH_SIZE characters; OV_ERANGE (122) for a text that does not fit. What
   `out` then holds is of no use. */
ov_rc ov_path_user_home_dir(const char* user, char* out, size_t size);

/* Makes the path empty; the caller may then fill in `prefix`. */
void ov_path_init(ov_path* path);

/* Walks from where the path stands along each segment of `text`. */
void ov_path_string_to_path(ov_path* path, const char* text);

/* One step: an empty segment and "." do nothing, ".." goes up if it can, is dropped at a prefix and
   kept elsewhere; all else goes down. Beyond OV_PATH_SEGMENTS nothing more is stored. */
void ov_path_change_directory(ov_path* path, const char* segment, size_t length);

/* 1 if ".." leads to a place above; 0 if the path is empty or made of ".." only. */
int32_t ov_path_can_go_up_a_directory(const ov_path* path);

/* Writes the prefix and the segments, which must not lie in `out`, with slashes between them, "."
   for nothing at all. 0, or -1 if that does not fit; then `out` holds its beginning. */
int32_t ov_path_path_to_string(const ov_path* path, char* out, size_t size);

OV_END_DECLS
