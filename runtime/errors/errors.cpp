// Names and messages of the error codes.
#include "runtime/ov_errors.h"

#include <cstring>

#include "runtime/errors/platform.h"
#include "runtime/ov_strings.h"

const int32_t g_ov_err_count = OV_ERR_COUNT;

const char* const g_ov_err_table[OV_ERR_COUNT] = {
    "Invalid doc root path",
    "Invalid command or token separator mismatch",
    "Base file/directory name not found in path",
    "File/directory path mismatch",
    "Illegal UTF string",
    "Insufficient buffer space",
    "End or directory reached",
    "Library open/close failed",
    "Library module loading failed",
    "Could not create UUID string",
    "Could not parse xml file for configs",
    "Could not read locale info",
    "Could not compute md5sum",
    "Could not compute SHA hash",
    "Could not log message",
    "Invalid user name",
    "Parse error inside UAC",
    "No transmitting xfer found",
    "Unimplemented function",
    "Internal error",
    "Reached end",
    "Storage inaccessible",
    "Bad pathname",
    "Invalid license",
    "Disabled by license",
    "Connection insecure",
    "File not valid",
    "Not enabled",
    "Not present",
    "Already locked",
    "Invalid lock",
    "Lock time skew detected",
    "Incorrect channel accessed",
    "User aborted session",
    "Bad token",
    "Illegal character(s) in path name",
    "Missing docroot restriction",
    "Failed docroot restriction check",
    "Expired",
};

namespace {

struct CodeName {
  int32_t code;
  const char* name;
};

// Names of the private codes, OV_ERR_END included, in the order of g_ov_err_table.
constexpr const char* kPrivateNames[OV_ERR_COUNT + 1] = {
    "EDOCROOT",
    "ETOKENIZER",
    "EBASENAME",
    "EPATHMATCH",
    "EILLUTFSTR",
    "EBUFFER",
    "EDIREND",
    "ELIBERR",
    "ELIBMODERR",
    "EUUID",
    "EXMLPARSER",
    "ELOCALE",
    "EMD5SUM",
    "EHASHSUM",
    "ELOG",
    "EUNAME",
    "EUACPARSE",
    "ENOXFER",
    "EUNIMPL",
    "EINTERNAL1",
    "EEND",
    "ESTORAGEINACCESSIBLE",
    "EBADPATHNAME",
    "ELICENSE",
    "EDDBYLICENSE",
    "ECONNINSECURE",
    "EFILENOTVALID",
    "ENOTENABLED",
    "ENOTPRESENT",
    "ELOCKED",
    "ELOCKINVAL",
    "ELOCKSKEW",
    "EWRONGCHANNEL",
    "EABORTSESSION",
    "EBADTOKEN",
    "EILLEGALCHAR",
    "EDOCROOTMISSINGRESTR",
    "EDOCROOTFAILEDRESTR",
    "EEXPIRED",
    "ERR_END",
};

constexpr CodeName kPlatformNames[] = {
    {OV_OK, "OK"},
    {1, "EPERM"},
    {2, "ENOENT"},
    {3, "ESRCH"},
    {4, "ENFILE"},
    {5, "EACCES"},
    {OV_EBADF, "EBADF"},
    {OV_ENOMEM, "ENOMEM"},
    {14, "ENOSPC"},
    {21, "ENOTREADY"},
    {OV_EINVAL, "EINVAL"},
    {31, "EIO"},
    {41, "ENOTEMPTY"},
    {OV_ENOTSUP, "ENOTSUP"},
    {OV_ERANGE, "ERANGE"},
    {OV_EEXIST, "EEXIST"},
    {OV_EPATHMAX, "EPATHMAX"},
    {267, "ENOTDIR"},
    {10035, "EWOULDBLOCK"},
    {10036, "EINPROGRESS"},
    {10040, "EMSGSIZE"},
    {10048, "EADDRINUSE"},
    {10054, "ECONNRESET"},
    {10055, "ENOBUFS"},
    {10056, "EISCONN"},
    {10057, "ENOTCONN"},
    {10060, "ETIMEDOUT"},
    {10061, "ECONNREFUSED"},
};

// Cuts the line end that the platform's messages close with; texts below three bytes stay.
void cut_line_end(char* text) {
  const size_t length = std::strlen(text);
  if (length < 3) return;
  if (text[length - 2] == '\r') {
    text[length - 2] = 0;
  } else if (text[length - 1] == '\n') {
    text[length - 1] = 0;
  }
}

}  // namespace

const char* ov_errno2str(int32_t code) {
  if (code >= OV_ERR_FIRST && code <= OV_ERR_END) return kPrivateNames[code - OV_ERR_FIRST];
  for (const CodeName& entry : kPlatformNames) {
    if (entry.code == code) return entry.name;
  }
  return "OV_UNKNOWN_ERRNO";
}

ov_rc ov_platform_errstr(int32_t code, char* buffer, size_t size) {
  if (buffer == nullptr || size == 0) return OV_EINVAL;
  if (code >= OV_ERR_FIRST && code < OV_ERR_END) {
    ov_str_ncpy(buffer, g_ov_err_table[code - OV_ERR_FIRST], size);
    return 0;
  }
  if (const ov_rc error = ov::system_message(code, buffer, size)) return error;
  cut_line_end(buffer);
  return 0;
}

const char* ov_platform_errstr_inline(int32_t code, char* buffer, size_t size) {
  return ov_platform_errstr(code, buffer, size) == 0 ? buffer : "Could not retrieve error message";
}

int32_t ov_err_is_eintr(int32_t code) {
  return code == OV_EINTR || code == OV_ESOCKINTR ? 1 : 0;
}
