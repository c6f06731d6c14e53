/* Sockets of the base runtime. Part of ov_runtime.h. Results are 0 or an error code. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* A socket; all ones when closed. */
typedef uint64_t ov_sock;

/* Starts and ends the use of sockets; the calls are counted, so each user makes a pair of them. */
ov_rc ov_sock_init(void);
ov_rc ov_sock_fini(void);

/* Closes, and marks the record closed on success. */
ov_rc ov_sock_close(ov_sock* sock);

OV_END_DECLS
