/* A C program that uses the base runtime in nporvaneweb.dll: it logs to a file, takes a path and a
   URI apart, writes a file and reads it back, and hands a job to a thread.

   Build:  x86_64-w64-mingw32-gcc -I. examples/runtime.c nporvaneweb.dll
   Run:    beside the library; prints what it does and ends with 0 if all of it worked. */
#include "runtime/ov_runtime.h"

#include <stdio.h>
#include <string.h>

/* Tells a failed call with the system's words for its code. */
static int failed(const char* what, ov_rc code) {
  char words[256];
  fprintf(stderr, "%s: %s (%d)\n", what, ov_platform_errstr_inline(code, words, sizeof words),
          code);
  ov_err("%s failed with %d", what, code);
  return 1;
}

static int write_and_read(const char* path) {
  static const char text[] = "Grüße, world";
  char back[sizeof text] = "";
  char encoded[4 * sizeof text];
  uint32_t done = 0;
  ov_file file;
  ov_rc code;

  ov_file_init(&file);
  if ((code = ov_file_openwrite(path, &file, 0)) != 0) return failed("openwrite", code);
  code = ov_file_write(&file, text, sizeof text, &done);
  ov_file_close(&file);
  if (code != 0 || done != sizeof text) return failed("write", code);

  if ((code = ov_file_openread(path, &file)) != 0) return failed("openread", code);
  code = ov_file_read(&file, back, sizeof back, &done);
  ov_file_close(&file);
  if (code != 0 || done != sizeof text) return failed("read", code);
  if (memcmp(text, back, sizeof text) != 0) return failed("comparison", OV_EBUFFER);

  code = ov_str_buf_to_base64(back, strlen(back), encoded, sizeof encoded);
  if (code != 0) return failed("base64", code);
  printf("%s: %u bytes, in base64 %s\n", path, (unsigned)done, encoded);
  return 0;
}

static unsigned long job(void* argument) {
  ov_mutex* lock = argument;
  ov_mutex_acquire(lock);
  puts("a thread of its own had the lock");
  ov_mutex_release(lock);
  return 0;
}

static int run_thread(void) {
  ov_mutex* lock = NULL;
  ov_thread thread;
  ov_rc code = ov_mutex_create(&lock);
  if (code != 0) return failed("mutex", code);
  code = ov_thread_spawn(&thread, job, lock);
  if (code == 0) code = ov_thread_join(&thread);
  ov_mutex_dispose(&lock);
  return code == 0 ? 0 : failed("thread", code);
}

int main(void) {
  char folder[OV_PATH_SIZE];
  char path[OV_PATH_SIZE];
  char log_path[OV_PATH_SIZE];
  ov_rc code = ov_path_getcwd(folder, sizeof folder);
  if (code != 0) return failed("getcwd", code);
  if (ov_path_append(folder, "runtime_example.log", log_path, sizeof log_path) < 0 ||
      ov_path_append(folder, "runtime_example.txt", path, sizeof path) < 0)
    return failed("append", OV_EBUFFER);

  if ((code = ov_log_init(1, log_path)) != 0) return failed("log", code);
  ov_log("%s", "the example runs");
  printf("http://localhost/ is %sa URI\n", ov_uri_valid_uri("http://localhost/") ? "" : "not ");
  code = write_and_read(path) || run_thread();
  ov_file_delete(path);
  ov_log_cleanup();
  return code;
}
