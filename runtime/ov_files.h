/* Files and directories of the base runtime. Part of ov_runtime.h.

   Paths are UTF-8 with forward slashes. Results are error codes, 0 for success: the system's last
   error, or errno if that is 0; OV_EINVAL (22) stands for a null argument. What a buffer or a
   record holds after a failure is of no use unless something is said. Nothing may overlap what is
   read unless that is said. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* An open file; all ones when closed. */
typedef void* ov_file;

/* Kinds in ov_stat.type. */
#define OV_TYPE_DIRECTORY 1
#define OV_TYPE_REGULAR 2
#define OV_TYPE_CHARACTER_DEVICE 3
#define OV_TYPE_SYMBOLIC_LINK 7
#define OV_TYPE_OTHER 65535

/* Flags of ov_file_stat. */
#define OV_STAT_NO_FOLLOW 1
#define OV_STAT_IDENTITY 2

/* What ov_file_stat and ov_file_fstat tell. Times are seconds since 1970. */
typedef struct {
  uint64_t id;      /* file index; filled with OV_STAT_IDENTITY and by ov_file_fstat */
  uint64_t size;    /* bytes */
  int32_t reserved; /* always 0 */
  int32_t type;
  int32_t mode; /* POSIX-style bits, such as octal 0100666 */
  int32_t uid;
  int32_t gid;
  int64_t created;
  int64_t modified;
  int64_t accessed;
  int32_t links; /* link count; filled as `id` is */
} ov_stat;

/* The platform's record of a directory entry; 4-byte aligned. */
typedef struct {
  uint32_t opaque[148];
} ov_find_data;

/* An open directory, the caller's record. */
typedef struct {
  void* handle;
  ov_find_data data;
  int32_t state;
} ov_dir;

/* One entry of a directory. `find` points into the ov_dir and lives until its next call. */
typedef struct {
  char name[520];
  const ov_find_data* find; /* null when nothing was delivered */
} ov_dirent;

/* Marks the record closed. 0. */
ov_rc ov_file_init(ov_file* file);

/* 1 if the record holds an open file; else 0. */
int32_t ov_file_valid(const ov_file* file);

/* Closes, and marks the record closed on success. Closing a closed record is 0. */
ov_rc ov_file_close(ov_file* file);

/* The functions that open leave the record closed when they fail. While a file is open, nobody can
   delete or rename it.

   Opens an existing file for reading; meanwhile others may only read it too. */
ov_rc ov_file_openread(const char* path, ov_file* file);

/* Opens for writing; creates the file or empties it. `mode` has no effect. Meanwhile others may
   read and write. */
ov_rc ov_file_openwrite(const char* path, ov_file* file, int32_t mode);

/* A `mode` of ov_file_openrw. */
#define OV_OPEN_EXISTING 7

/* Opens for reading and writing; creates the file if need be, but not with OV_OPEN_EXISTING.
   Meanwhile others may read and write. */
ov_rc ov_file_openrw(const char* path, ov_file* file, int32_t mode);

/* Opens for appending; creates the file if need be. `mode` has no effect. Meanwhile others may read
   and write. */
ov_rc ov_file_openappend(const char* path, ov_file* file, int32_t mode);

/* Reads up to `length` bytes; `*read` of 0 is the end of the file or of a broken pipe. */
ov_rc ov_file_read(ov_file* file, void* buffer, uint32_t length, uint32_t* read);

/* Writes once; `*written` may be less than `length`. */
ov_rc ov_file_write(ov_file* file, const void* buffer, uint32_t length, uint32_t* written);

/* Writes once at `offset` from the start; the file's position stays behind what was written. */
ov_rc ov_file_pwrite(ov_file* file, const void* buffer, uint32_t length, int64_t offset,
                     uint32_t* written);

/* Moves the file's position: `whence` 0 from the start, 1 from the position, 2 from the end. */
ov_rc ov_file_seek(ov_file* file, int64_t offset, int32_t whence);

/* Cuts or extends the file to `size` bytes; the position is left at its end. */
ov_rc ov_file_truncate(ov_file* file, int64_t size);

/* Brings what was written to the disk. */
ov_rc ov_file_flush(ov_file* file);

/* Tells what is at `path`. `flags`: 0, OV_STAT_NO_FOLLOW, OV_STAT_IDENTITY or both. A symbolic link
   is followed: all that is told is of the object it leads to, and a link that leads nowhere is a
   failure. With OV_STAT_NO_FOLLOW it is the link's own, which shows as a file or a directory. */
ov_rc ov_file_stat(const char* path, ov_stat* record, int32_t flags);

/* Tells about an open file. */
ov_rc ov_file_fstat(ov_file* file, ov_stat* record);

/* The result of ov_file_stat alone: 0 if something is at `path`. */
ov_rc ov_file_exist(const char* path, int32_t flags);

/* Deletes a file. */
ov_rc ov_file_delete(const char* path);

/* Renames, over a file that is in the way. */
ov_rc ov_file_rename(const char* from, const char* to);

/* Copies the content, over a file that is in the way; `mode` has no effect. On failure `to` keeps
   what was written. */
ov_rc ov_file_copy(const char* from, const char* to, int32_t mode);

/* Makes `link` another name of the file `existing`. */
ov_rc ov_file_hardlink(const char* existing, const char* link);

/* Makes `link` a symbolic link with the text `target`, which need not lead to anything; a relative
   one counts from the link's directory. OV_ENOPRIVILEGE (1314) without the right to make links. */
ov_rc ov_file_symlink(const char* target, const char* link);

/* Writes what a symbolic link or a mount point leads to, with forward slashes. `size` counts bytes.
   OV_ENOTALINK (4390) for a path that is no link, OV_EILLLINK (4392) for a record of a link that
   cannot be read, OV_ERANGE (122) for a target that does not fit. */
ov_rc ov_file_readlink(const char* path, char* out, size_t size);

/* Sets times of a file or directory, in seconds since 1970; null leaves one as it is. OV_EINVAL
   (22) for a time that the platform has no number for. */
ov_rc ov_file_utime(const char* path, const int64_t* accessed, const int64_t* modified);
ov_rc ov_file_utime3(const char* path, const int64_t* accessed, const int64_t* modified,
                     const int64_t* created);

/* Makes a file read-only, unless the owner's write bit (octal 0200) is in `mode`. This platform
   keeps no other bit. */
ov_rc ov_file_permissions(const char* path, int32_t mode);

/* 0 when `uid` and `gid` are the present ones or -1. Files of this platform have owners without
   numbers, so every other is OV_ENOTSUP (50). */
ov_rc ov_file_chown(const char* path, int32_t uid, int32_t gid);

/* Replaces each backslash by a slash, in place. */
void ov_file_tounixpath(char* path);

/* Writes `dir`, a slash unless it is empty or ends in one, and `name`. `dir` may be `out`. `size`
   counts bytes; a size of 0 is 0, and OV_EBUFFER (28677) says that the result was cut. */
ov_rc ov_file_append_path(const char* dir, const char* name, char* out, size_t size);

/* Points `*result` at what is behind the last slash; null and OV_EBASENAME (28674) if that is
   nothing. */
ov_rc ov_file_basename(const char* path, const char** result);

/* Cuts the last part off, in place; what is left is at least the root or ".". */
void ov_file_dirname(char* path);

/* Writes the path with its long names. OV_ERANGE (122) if it has more than 520 characters or does
   not fit. `path` may be `out`. */
ov_rc ov_file_realpath(const char* path, char* out, size_t size);

/* 0 if the paths are equal or `a` is a directory above `b`; else OV_EPATHMATCH (28675). Case
   matters. */
ov_rc ov_file_path_compare(const char* a, const char* b);

/* Opens a directory for ov_dir_next; an empty path is the root of the present drive. The record is
   to be closed with ov_dir_close after success. */
ov_rc ov_dir_open(const char* path, ov_dir* dir);

/* Delivers the next entry, "." and ".." included; OV_EDIREND (28678) behind the last one. An entry
   whose name has no room (a name may have 765 bytes) is OV_ERANGE (122), one whose name is no text
   OV_EINVAL (22), both with `find` pointing at what the platform told; the next call goes on behind
   it. After any other failure `find` is null. */
ov_rc ov_dir_next(ov_dir* dir, ov_dirent* entry);

/* Closes the directory. 0, also for a closed record. */
ov_rc ov_dir_close(ov_dir* dir);

/* Told of a directory: `created` is 1 if it was made now and 0 if it was there. */
typedef ov_rc (*ov_dir_cb)(const char* path, int32_t created, void* argument);

/* Makes a directory, with `recursive` also those above it. One that is there already is success, a
   file in its place is OV_ENOTDIR (267). `mode` has no effect. */
ov_rc ov_dir_create(const char* path, int32_t mode, int32_t recursive);

/* The same, telling `callback`, which may be null, of each directory from the top; a result of it
   other than 0 ends the work and is returned. The two are one. */
ov_rc ov_dir_create_callback(const char* path, int32_t mode, int32_t recursive, ov_dir_cb callback,
                             void* argument);
ov_rc ov_dir_create_callback2(const char* path, int32_t mode, int32_t recursive, ov_dir_cb callback,
                              void* argument);

/* Removes a directory, with `recursive` with all it holds; a link to a directory is removed itself.
   The first error ends the work; an entry that ov_dir_next has no room to name stays, and with it
   the directory: 145. */
ov_rc ov_dir_delete(const char* path, int32_t recursive);

/* What ov_dir_walk_iterate delivers. */
#define OV_WALK_FILE 1
#define OV_WALK_DIRECTORY 2
#define OV_WALK_UP 3
#define OV_WALK_OTHER 6

/* A walk through a directory and all below it. */
struct ov_dir_walk;

/* Starts a walk at a directory or a file; it is to be released. On failure `*walk` is null;
   OV_ENOTDIR (267) for what is neither. */
ov_rc ov_dir_walk_init(struct ov_dir_walk** walk, const char* path);

/* Delivers the next path and its kind, a directory before what it holds. The end of each directory,
   the first one included, is the path ".." of kind OV_WALK_UP; OV_EDIREND (28678) behind the last.
   An entry whose name has no room in an ov_dirent or is no text is passed over. A path that does
   not fit `out` is OV_EBUFFER (28677), and an entry that cannot be looked at is the look's code;
   after both the next call goes on behind the entry. */
ov_rc ov_dir_walk_iterate(struct ov_dir_walk* walk, char* out, size_t size, int32_t* type);

/* Leaves the directory that is being read, as if its end were reached; OV_EDIREND (28678) if there
   is none. */
ov_rc ov_dir_walk_pop(struct ov_dir_walk* walk);

/* Ends the walk, frees it and sets null. */
void ov_dir_walk_release(struct ov_dir_walk** walk);

OV_END_DECLS
