// The semaphore of the base runtime on POSIX threads, for sanitizer builds.
#include <cerrno>
#include <ctime>
#include <new>

#include <semaphore.h>

#include "runtime/ov_errors.h"
#include "runtime/sync/internal.h"

namespace {

sem_t* native(ov_sem* semaphore) {
  return static_cast<sem_t*>(*semaphore);
}

}  // namespace

ov_rc ov_sem_init(ov_sem* semaphore, int32_t initial) {
  auto* const made = new (std::nothrow) sem_t;
  if (made == nullptr) return OV_ENOMEM;
  sem_init(made, 0, static_cast<unsigned>(initial));
  *semaphore = made;
  return 0;
}

ov_rc ov_sem_destroy(ov_sem* semaphore) {
  sem_destroy(native(semaphore));
  delete native(semaphore);
  *semaphore = nullptr;
  return 0;
}

ov_rc ov_sem_post(ov_sem* semaphore) {
  return sem_post(native(semaphore)) == 0 ? 0 : errno;
}

ov_rc ov_sem_trywait(ov_sem* semaphore, int32_t milliseconds) {
  timespec end = {};
  clock_gettime(CLOCK_MONOTONIC, &end);
  end.tv_sec += milliseconds / 1000;
  end.tv_nsec += int64_t{milliseconds % 1000} * 1000000;
  end.tv_sec += end.tv_nsec / 1000000000;
  end.tv_nsec %= 1000000000;
  while (sem_clockwait(native(semaphore), CLOCK_MONOTONIC, &end) != 0) {
    if (errno != EINTR) return 10035;  // as on Windows when the time is over
  }
  return 0;
}
