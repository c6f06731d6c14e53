/* Error codes and their names and texts, names of signals and hardware exceptions. Part of
   ov_runtime.h. All functions are reentrant; texts they return are constant. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* Numbers of the platform that the base runtime also returns by itself. */
#define OV_OK 0
#define OV_ENOENT 2  /* no such file, key or value */
#define OV_ENOPATH 3 /* no directory on the way to it */
#define OV_EINTR 4
#define OV_EBADF 6
#define OV_ENOMEM 8
#define OV_ENOSPC 14    /* no room for a user's profile directory */
#define OV_ENOTREADY 21 /* a drive without a disk */
#define OV_EINVAL 22
#define OV_EIO 31
#define OV_ENOTSUP 50
#define OV_ERANGE 122
#define OV_ENOTEMPTY 145
#define OV_EEXIST 183
#define OV_EPATHMAX 206
#define OV_ENOTDIR 267
#define OV_ENOPRIVILEGE 1314
#define OV_ENOTALINK 4390
#define OV_EILLLINK 4392
#define OV_ESOCKINTR 10004

/* Private codes, in one unbroken range; OV_ERR_END marks its end and has no message. */
#define OV_ERR_FIRST 28672
#define OV_EDOCROOT 28672
#define OV_ETOKENIZER 28673
#define OV_EBASENAME 28674
#define OV_EPATHMATCH 28675
#define OV_EILLUTFSTR 28676
#define OV_EBUFFER 28677
#define OV_EDIREND 28678
#define OV_ELIBERR 28679
#define OV_ELIBMODERR 28680
#define OV_EUUID 28681
#define OV_EXMLPARSER 28682
#define OV_ELOCALE 28683
#define OV_EMD5SUM 28684
#define OV_EHASHSUM 28685
#define OV_ELOG 28686
#define OV_EUNAME 28687
#define OV_EUACPARSE 28688
#define OV_ENOXFER 28689
#define OV_EUNIMPL 28690
#define OV_EINTERNAL1 28691
#define OV_EEND 28692
#define OV_ESTORAGEINACCESSIBLE 28693
#define OV_EBADPATHNAME 28694
#define OV_ELICENSE 28695
#define OV_EDDBYLICENSE 28696
#define OV_ECONNINSECURE 28697
#define OV_EFILENOTVALID 28698
#define OV_ENOTENABLED 28699
#define OV_ENOTPRESENT 28700
#define OV_ELOCKED 28701
#define OV_ELOCKINVAL 28702
#define OV_ELOCKSKEW 28703
#define OV_EWRONGCHANNEL 28704
#define OV_EABORTSESSION 28705
#define OV_EBADTOKEN 28706
#define OV_EILLEGALCHAR 28707
#define OV_EDOCROOTMISSINGRESTR 28708
#define OV_EDOCROOTFAILEDRESTR 28709
#define OV_EEXPIRED 28710
#define OV_ERR_END 28711
#define OV_ERR_COUNT 39

/* Numbers of the platform's waits and sockets that functions here name. */
#define OV_ENOTOWNER 1
#define OV_EABANDONED 128
#define OV_EWAITTIMEOUT 258
#define OV_EWOULDBLOCK 10035
#define OV_EMSGSIZE 10040
#define OV_ENOTCONN 10057
#define OV_ETIMEDOUT 10060

/* Messages of the private codes, indexed by code minus OV_ERR_FIRST, and their number. */
OV_DATA const int32_t g_ov_err_count;
OV_DATA const char* const g_ov_err_table[OV_ERR_COUNT];

/* Name of a code, "EINVAL" for OV_EINVAL; "OV_UNKNOWN_ERRNO" for a code not listed. */
const char* ov_errno2str(int32_t code);

/* Message of a code in UTF-8, without a line end. A private code's message may be cut and is still
   0; a message of the system that does not fit gives OV_ERANGE. OV_EINVAL for a null buffer or size
   0; the system's code when it has no message. */
ov_rc ov_platform_errstr(int32_t code, char* buffer, size_t size);
/* The same as an expression: `buffer`, or the constant "Could not retrieve error message". */
const char* ov_platform_errstr_inline(int32_t code, char* buffer, size_t size);

/* 1 for the codes of an interrupted call, OV_EINTR and OV_ESOCKINTR; else 0. ov_errno2str has the
   platform's name for the first, which is another. */
int32_t ov_err_is_eintr(int32_t code);

/* "SIGINT" for the platform's signal number 2, and so on; "UNKNOWN SIGNAL" for others. */
const char* ov_signal2str(int32_t number);
/* Number of "INT" or "SIGINT", in either case; -1, with a log line, for a name not known. */
int32_t ov_str2signal(const char* name);
/* "ACCESS_VIOLATION" for the platform's exception code, and so on; "UNKNOWN EXCEPTION" for others.
 */
const char* ov_exc2str(uint32_t code);
/* Code of a name with or without "EXCEPTION_", in either case; all ones for a name not known. */
uint32_t ov_str2exc(const char* name);

OV_END_DECLS
