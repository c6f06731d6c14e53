/* A C program's use of the public header. */
#include "runtime/ov_runtime.h"

int32_t use_runtime_from_c(char* text, size_t size);

int32_t use_runtime_from_c(char* text, size_t size) {
  const ov_timeval moment = {1, 45000};
  uint8_t value = 0xab;
  size_t pos = 0;
  OV_DEBUG("room for %zu bytes", size);
  if (ov_str_printf_to(text, size, &pos, "%s ", ov_errno2str(OV_EBUFFER)) != 0) return 1;
  if (ov_str_buf_to_base16(&value, 1, text + pos, size - pos) != 0) return 2;
  if (g_ov_err_count != OV_ERR_COUNT || _ov_str_base16_lookup['f'] != 15) return 3;
  pos += 2;
  ov_time_strftime_usec(text + pos, size - pos, " %S.%L", &moment);
  return 0;
}
