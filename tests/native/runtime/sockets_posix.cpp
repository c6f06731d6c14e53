// The socket layer of native test builds, which needs no start and no end.

#include "runtime/ov_sockets.h"

extern "C" {

ov_rc ov_sock_init(void) {
  return 0;
}

ov_rc ov_sock_fini(void) {
  return 0;
}

}  // extern "C"
