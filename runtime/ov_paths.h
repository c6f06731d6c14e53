/* UTF-8 paths of the base runtime. Part of ov_runtime.h.

   Inside the runtime a path uses forward slashes. Buffers are the caller's and sizes count bytes,
   the terminator included; the usual size is OV_PATH_SIZE. Unless a function says otherwise, -1 is
   failure and a length or 0 is success. */
#pragma once

#include "runtime/ov_types.h"

/* The usual size of a path buffer, and the size of every prefix buffer below. */
#define OV_PATH_SIZE 520

OV_BEGIN_DECLS

/* Writes the canonical form of `in`: forward slashes, no ".", no "..", no doubled or trailing
   slash. A relative path keeps the ".." it starts with; an empty text stays empty; anything that
   cancels out becomes ".". URIs are copied as they are. `in` may be `out`. 0, or -1 for a line
   feed, a network path without a share, or a result that does not fit. */
int32_t ov_path_canonical_path(const char* in, char* out, size_t size);

/* Joins `rel` behind `dir`, also when `rel` begins with a slash, and canonicalises. `rel` may
   overlap `out`. The result is that of ov_path_canonical_path, and also 0, with `out` left as it
   was or cut, when the joined text does not fit. */
int32_t ov_path_append(const char* dir, const char* rel, char* out, size_t size);

/* Writes the canonical path of the directory above `path`. Its length, or -1 for a null or empty
   path or a result that does not fit. */
int32_t ov_path_parent_dir(const char* path, char* out, size_t size);

/* Splits off the root ("C:/", "/", "//host/share/" or none) into `prefix`, a buffer of
   OV_PATH_SIZE, and points `rest` behind it, or at null for a bare network share. 0 or -1. */
int32_t ov_path_extract_prefix(const char* path, char* prefix, const char** rest);

/* The same for a network path. -1 if it names no share. */
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
   needed. `*bytes` is the size of `wide` in bytes, and afterwards the bytes used or needed. 0, or
   122 for a path or a buffer that is too long or too small, 22 for bad UTF-8. */
ov_rc ov_path_widen_path(const char* path, wchar_t* wide, size_t* bytes);

/* 1 if something exists at `path`; else 0. */
int32_t ov_path_exists(const char* path);

/* Writes the canonical path of the running program. Its length or -1. */
int32_t ov_path_executable_path(char* out, size_t size);

/* Writes the directory of the running program. Its length or -1. */
int32_t ov_path_executable_dir(char* out, size_t size);

/* Writes the product's root: the parent of `path` or one of the two directories above it, whichever
   first holds "product-info.mf", and otherwise the directory above the parent. Its length or -1. */
int32_t ov_path_root_dir(const char* path, char* out, size_t size);

/* Looks for `name` in each of the directories, a null-ended array, and writes the first path that
   exists. 0, or -1 if there is none or a candidate does not fit. */
int32_t ov_path_find_file_in_paths(const char* name, const char* const* dirs, char* out,
                                   size_t size);

/* The name of the file that marks the product's root: "product-info.mf". */
const char* ov_path_product_info_file_name(void);

OV_END_DECLS
