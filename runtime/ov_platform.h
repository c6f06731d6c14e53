/* Who and where this process is: the machine, the system, the user, the drives, the install root.
   Part of ov_runtime.h. Results are 0 or an error code; OV_EINVAL (22) stands for a null argument.
   Texts are UTF-8 and terminated, sizes count bytes with the terminator, and a result that does not
   fit is OV_EBUFFER (28677) unless told otherwise; what `out` holds after a failure is of no use
   unless something is said. Any thread may call everything here. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* Keys of the installed products below OV_REG_LOCAL_MACHINE, and names of values in them. */
OV_DATA const char OV_WINREG_ZEPT[];
OV_DATA const char OV_WINREG_MRWSRV[];
OV_DATA const char OV_WINREG_TLINK[];
OV_DATA const char OV_WINREG_DIR[];
OV_DATA const char OV_WINREG_LOG[];

/* A drive, in a list. */
typedef struct ov_drive {
  char path[520]; /* such as "C:/" */
  struct ov_drive* next;
} ov_drive;

/* A drive or directory with the space of its volume in bytes, in a list. */
typedef struct ov_mount {
  char path[520];
  char filesystem[520]; /* empty here */
  char options[520];    /* empty here */
  uint64_t total;
  uint64_t used;
  uint64_t free;
  uint64_t reserved; /* always 0 */
  int32_t error;     /* OV_ENOTREADY (21) for a drive that is not ready; then the sizes are 0 */
  struct ov_mount* next;
} ov_mount;

/* The parts of a locale's name; empty where it has none. */
typedef struct {
  char language[129];
  char country[129];
  char codeset[129];
} ov_locale;

/* Each call of ov_platform_init, which gives 0, is to be paired with one of ov_platform_fini, the
   last of which forgets the domains that were looked up; OV_EINVAL (22) for one that is not
   paired. */
ov_rc ov_platform_init(void);
ov_rc ov_platform_fini(void);

/* Raises the calling thread's priority above normal. */
ov_rc ov_platform_thread_init(void);

/* Write "UNSET" into 6 bytes and "Windows" into 8. */
ov_rc ov_platform_build_ver(char* out);
ov_rc ov_platform_build_os(char* out);

/* Writes this computer's name. OV_EINVAL (22) if the system does not tell it. */
ov_rc ov_platform_hostname(char* out, size_t size);

/* Writes "Microsoft Windows MAJOR.MINOR SERVICE-PACK". */
ov_rc ov_platform_os(char* out, size_t size);

/* Writes the install directory of the first product that the registry knows, as it stands there.
   OV_ENOENT (2) if there is none; then `out` is empty. */
ov_rc ov_platform_root(char* out, size_t size);

/* Writes the install directory of the product OV_WINREG_ZEPT with forward slashes. */
ov_rc ov_platform_winpath(char* out, size_t size);

/* Fills the record from the program's present locale. */
ov_rc ov_platform_getlocale(ov_locale* locale);

/* There are no such names on this platform: one function, which writes an empty text if `size` is
   not 0. */
ov_rc ov_platform_uname(int32_t id, char* out, size_t size);
ov_rc ov_platform_gname(int32_t id, char* out, size_t size);

/* Writes the name of the account that this process runs as. OV_ERANGE (122) if it does not fit. */
ov_rc ov_platform_get_process_uname(char* out, size_t size);

/* Writes the user's name as the variables USER, LOGNAME or USERNAME tell it, the last one with its
   domain and in normal form; OV_EINVAL (22) if none is set. On failure `out` is empty. */
ov_rc ov_platform_usr(char* out, size_t size);

/* Looks that name up in "etc/passwd" below ov_platform_root. OV_EUNAME (28687) if it is not there;
   on any failure `*uid` is -1. */
ov_rc ov_platform_uid(int32_t* uid);

/* How user names are brought into normal form. */
#define OV_NORMALIZE_NONE 0   /* not at all */
#define OV_NORMALIZE_LOCAL 1  /* with no look-up of the domain */
#define OV_NORMALIZE_LOOKUP 2 /* with one, each time */
#define OV_NORMALIZE_CACHED 3 /* with one that is remembered; the level at the start */

/* Sets the level of ov_platform_normalize_user_name; OV_EINVAL (22) from 4 on. */
ov_rc ov_platform_normalize_set_level(int32_t level);

/* Brings "user@domain", "domain\user", "domain/user" or "user" into the form "DOMAIN\user", or
   "user" if the domain is "." or this computer, in place; letters beyond ASCII keep their case. A
   domain that is not found is kept. On failure, as for a part of 512 bytes or a result that does
   not fit `size`, the name stays as it is. */
ov_rc ov_platform_normalize_user_name(char* name, size_t size);
ov_rc ov_platform_normalize_user_name_ex(char* name, size_t size, int32_t level);

/* Hands out the drives, to be given to ov_platform_free_drives; null on failure. */
ov_rc ov_platform_drives(ov_drive** list);
void ov_platform_free_drives(ov_drive** list);

/* Hands out one entry for `path`, or with a null path one for each drive, to be given to
   ov_platform_free_mnt; null on failure. */
ov_rc ov_platform_mnt(ov_mount** list, const char* path);
void ov_platform_free_mnt(ov_mount** list);

OV_END_DECLS
