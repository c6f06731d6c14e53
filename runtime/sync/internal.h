// What the sources of the mutexes, conditions and threads share. Not part of the public header.
#pragma once

#include <cstdint>

#include <atomic>

#include "runtime/errors/platform.h"
#include "runtime/ov_threads.h"

namespace ov {

// Fields that one thread reads while another may write them.
inline std::atomic_ref<uint32_t> owner_of(ov_mutex* m) {
  return std::atomic_ref(m->owner);
}
inline std::atomic_ref<int32_t> switched_of(ov_mutex* m) {
  return std::atomic_ref(m->switched);
}
inline std::atomic_ref<int32_t> depth_of(ov_mutex* m) {
  return std::atomic_ref(m->depth);
}

// Whether the calling thread holds the mutex. A recursive one keeps its last owner after the
// release; the depth is looked at first, since a new holder stores itself before the depth.
inline bool is_held_by_self(ov_mutex* m) {
  const bool held = m->recursive == 0 || depth_of(m).load() > 0;
  return owner_of(m).load() == ov_thread_self() && held;
}

// Notes the calling thread as the holder, or as the holder no more.
inline void note_acquired(ov_mutex* m) {
  owner_of(m).store(ov_thread_self());
  if (m->recursive != 0) ++depth_of(m);
}

inline void note_released(ov_mutex* m) {
  if (m->recursive != 0) {
    --depth_of(m);
  } else {
    owner_of(m).store(0);
  }
}

// Called instead of ending the process when a holder acquires a non-recursive mutex again; empty
// unless a test sets it.
extern std::atomic<void (*)()> reacquire_hook;

// Replaces the critical section by a kernel mutex, for good.
ov_rc switch_to_mutex(ov_mutex* m);

}  // namespace ov
