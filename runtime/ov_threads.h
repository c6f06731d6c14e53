/* Mutexes, conditions and threads of the base runtime. Part of ov_runtime.h.

   Records are the caller's. Results are 0 or an error code: the system's, or one of those of
   ov_errors.h that are named at the functions; a null record gives OV_EINVAL. Any thread may call
   anything here, but init and destroy must not overlap a use. */
#pragma once

#include "runtime/ov_errors.h"
#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* Room for the platform's critical section. */
typedef struct {
  uint64_t opaque[5];
} ov_critical_section;

/* A mutex: cheap in user mode until a condition is tied to it, then a kernel mutex for good. */
typedef struct {
  ov_critical_section critical_section;
  int32_t recursive;
  uint32_t owner;   /* thread id of the holder, 0 when free */
  int32_t switched; /* the kernel mutex has replaced the critical section */
  int32_t depth;    /* of a recursive mutex: how often its holder has acquired it */
  void* mutex;      /* the kernel mutex, all ones until switched */
} ov_mutex;

/* A condition, tied to one mutex for life. */
typedef struct {
  ov_mutex* mutex;
  int32_t waiters; /* threads inside a wait */
  ov_critical_section waiters_lock;
  void* semaphore;        /* where waiters sleep */
  void* last_waiter_done; /* wakes the broadcaster */
  int64_t broadcast;      /* non-zero during ov_cond_signal_all */
} ov_cond;

/* A thread. `handle` is all ones once it is joined. */
typedef struct {
  void* handle;
  uint32_t id;
} ov_thread;

/* A thread's function, with the signature and calling convention that the platform wants. */
#if defined(_WIN32)
typedef unsigned long (*ov_thread_fn)(void* argument);
#else
typedef uint32_t (*ov_thread_fn)(void* argument);
#endif

/* Makes a mutex that its holder must not acquire again, or may. 0. */
ov_rc ov_mutex_init(ov_mutex* m);
ov_rc ov_mutex_init_recursive(ov_mutex* m);

/* Frees what the record holds; nobody may hold the mutex. */
ov_rc ov_mutex_destroy(ov_mutex* m);

/* Allocates and initialises; OV_ENOMEM when out of memory. ov_mutex_dispose destroys, frees and
   sets null; it tolerates null and a pointer to null. */
ov_rc ov_mutex_create(ov_mutex** out);
void ov_mutex_dispose(ov_mutex** m);

/* Waits for the mutex. A holder of a non-recursive mutex who acquires it again ends the process.
   OV_EABANDONED says that the last holder's thread ended while it held the lock. */
ov_rc ov_mutex_acquire(ov_mutex* m);

/* The same without waiting: OV_EWOULDBLOCK if the mutex is held (OV_EWAITTIMEOUT once a condition
   is tied to it), OV_EEXIST if the caller holds it and it is not recursive. */
ov_rc ov_mutex_acquire_nb(ov_mutex* m);

/* Gives the mutex back; OV_ENOTOWNER if the caller does not hold it. */
ov_rc ov_mutex_release(ov_mutex* m);

/* Ties a condition to a mutex, best right after ov_mutex_init: a thread that waits for the mutex at
   this moment may never wake. */
ov_rc ov_cond_init(ov_cond* c, ov_mutex* m);

/* Frees what the record holds; nobody may wait. 0. */
ov_rc ov_cond_destroy(ov_cond* c);

/* Releases the mutex, sleeps until a signal and acquires the mutex again. The caller holds it. 0.
 */
ov_rc ov_cond_wait(ov_cond* c);

/* The same with a relative time limit of {seconds, microseconds}; null waits without limit.
   OV_ETIMEDOUT when the time ran out, OV_EINVAL when the wait failed; the mutex is held again in
   every case. */
ov_rc ov_cond_timedwait(ov_cond* c, const int32_t sec_usec[2]);

/* The same in milliseconds; a negative time waits without limit. */
ov_rc ov_cond_timedwait_ms(ov_cond* c, int32_t milliseconds);

/* Wakes one waiter, if there is any; no wake-up is remembered. 0, or the system's code. */
ov_rc ov_cond_signal(ov_cond* c);

/* Wakes all waiters and returns when each of them has left its sleep. 0, or the
   system's code when none could be woken. */
ov_rc ov_cond_signal_all(ov_cond* c);

/* A semaphore, and a lock that threads of several processes share; all ones when destroyed. */
typedef void* ov_sem;
typedef void* ov_named_mutex;

/* A semaphore with a count of `initial` and at most 32767. */
ov_rc ov_sem_init(ov_sem* s, int32_t initial);
ov_rc ov_sem_destroy(ov_sem* s);

/* Raises the count by one. */
ov_rc ov_sem_post(ov_sem* s);

/* Lowers the count by one, waiting while it is 0: without limit, or at most so many milliseconds,
   and then OV_EWOULDBLOCK. -1 waits without limit too. */
ov_rc ov_sem_wait(ov_sem* s);
ov_rc ov_sem_trywait(ov_sem* s, int32_t milliseconds);

/* Opens or makes the lock of this name, for the machine or for the session. It has no owner: any
   thread may release it. The system knows it as the semaphore "Global\ov_mutex_NAME", or with
   "Local\", where case counts and backslashes of the name have become slashes, so that a path may
   be a name; the whole takes 519 bytes of UTF-8 at most, else OV_EBUFFER. A machine's lock may take
   a privilege to make. On failure the record is null. */
ov_rc ov_named_mutex_init(ov_named_mutex* m, const char* name);
ov_rc ov_named_local_mutex_init(ov_named_mutex* m, const char* name);

/* Close the lock in this process; the two differ in the words of a failure only. */
ov_rc ov_named_mutex_destroy(ov_named_mutex* m);
ov_rc ov_named_mutex_force_destroy(ov_named_mutex* m);

/* Wait for the lock and give it back; the second form does not wait and gives OV_EWAITTIMEOUT if it
   is held. OV_EBADF for a lock that is closed. */
ov_rc ov_named_mutex_acquire(ov_named_mutex* m);
ov_rc ov_named_mutex_acquire_nb(ov_named_mutex* m);
ov_rc ov_named_mutex_release(ov_named_mutex* m);

/* Starts a thread. With a null record it is detached, otherwise it is to be joined, and the record
   is filled before the thread runs. OV_EINVAL for a null function. */
ov_rc ov_thread_spawn(ov_thread* thread, ov_thread_fn function, void* argument);

/* Waits for the end of the thread and frees its handle; OV_EBADF for one that was joined before. */
ov_rc ov_thread_join(ov_thread* thread);

/* Sleeps. 0. */
ov_rc ov_thread_sleep(uint32_t milliseconds);

/* The id of the calling thread. */
uint32_t ov_thread_self(void);

/* The id in the record, 0 for a null record. */
uint32_t ov_thread_getid(const ov_thread* thread);

/* Despite its name: 1 if the thread has ended or was joined, 0 if it still runs. */
int32_t ov_thread_alive(const ov_thread* thread);

/* Ends the calling thread with the code 0; does not return. Destructors do not run. */
void ov_thread_exit(void);

OV_END_DECLS
