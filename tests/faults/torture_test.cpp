// Pieces of work of the runtime, again and again, with another call of the platform failing each
// time, until none is left. Whatever fails, nothing leaks, no lock stays held, and the work itself
// works directly afterwards.
#include <winsock2.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "runtime/ov_runtime.h"
#include "tests/faults/failing_calls_win.h"
#include "tests/host/process_state.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;
using Vantrel::Web::Host::handleCount;

// More calls than any piece of work makes.
constexpr int kMostCalls = 2000;

// What comes before and behind each round of a piece of work; not tortured.
struct Around {
  std::function<void()> prepare = [] {};
  std::function<void()> finish = [] {};
};

class TortureTest : public testing::Test {
 protected:
  void SetUp() override {
    ov_log_cleanup();
    folder_ = std::make_unique<TempFolder>();
  }
  void TearDown() override { ov_log_cleanup(); }

  // `work` gives 0 when all of it succeeded; on a failure it gives back what it holds, as any
  // caller would.
  void torture(const std::function<ov_rc()>& work, const Around& around = {}) {
    const auto once = [&] {
      around.prepare();
      const ov_rc result = work();
      around.finish();
      return result;
    };
    ASSERT_EQ(0, once());
    ASSERT_EQ(0, once());
    const size_t handles = handleCount();
    int failures = 0;
    for (int n = 1; n <= kMostCalls && !HasFailure(); ++n) {
      around.prepare();
      ov_rc result = 0;
      const char* const call = ov::torture::with_failing_call(n, [&] { result = work(); });
      around.finish();
      // No trace of the test framework: its thread would count, and outlive the work.
      const std::string where = std::to_string(n) + ": " + (call != nullptr ? call : "none");
      EXPECT_EQ(0, ov::torture::bad_closes) << where;
      EXPECT_EQ(handles, handleCount()) << where;
      EXPECT_EQ(0, once()) << where;
      EXPECT_EQ(0, ov::torture::bad_closes) << where;
      EXPECT_EQ(handles, handleCount()) << where;
      if (call != nullptr) {
        ++failures;
        continue;
      }
      EXPECT_EQ(0, result);
      EXPECT_LT(0, failures);  // otherwise nothing was proven
      return;
    }
    if (!HasFailure()) FAIL() << "it never ends";
  }

  std::string path(const std::string& name) const { return folder_->path(name); }
  void renew() { folder_ = std::make_unique<TempFolder>(); }
  static void make(const std::string& file, size_t size = 10) {
    TempFolder::write(file, std::string(size, 'x'));
  }

  std::unique_ptr<TempFolder> folder_;
};

// Runs a piece of the test itself in a thread. One of the platform's own: those of the C++ library
// use the calls that are replaced here for themselves.
void inAnotherThread(const std::function<void()>& piece) {
  const ov::torture::Pause pause;
  const auto run = [](void* argument) -> DWORD {
    (*static_cast<const std::function<void()>*>(argument))();
    return 0;
  };
  auto* const argument = const_cast<void*>(static_cast<const void*>(&piece));
  ov_thread thread;
  ASSERT_EQ(0, ov_thread_spawn(&thread, run, argument));
  ASSERT_EQ(0, ov_thread_join(&thread));
}

// No lock of the log is held.
void logFromAnotherThread() {
  inAnotherThread([] { ov_log("from another thread"); });
}

TEST_F(TortureTest, LogIsOpenedWrittenAndClosed) {
  torture(
      [this] {
        const ov_rc result = ov_log_init(2, path("app.log").c_str());
        ov_log("a line");
        ov_log("a line");
        ov_err("another");
        ov_log_flush();
        logFromAnotherThread();
        ov_log_cleanup();
        return result;
      },
      {.prepare = [this] { renew(); }});
}

TEST_F(TortureTest, LogRotates) {
  torture(
      [this] {
        ov_log_set_logfile_size(0);
        const ov_rc result = ov_log_init(2, path("app.log").c_str());
        const std::string filler(4000, 'x');
        for (int i = 0; i < 18; ++i) ov_log("%d %s", i, filler.c_str());
        logFromAnotherThread();
        ov_log_cleanup();
        ov_log_set_logfile_size(10);
        return result;
      },
      {.prepare = [this] {
        renew();
        for (const int digit : {3, 4, 5, 7}) make(path("app." + std::to_string(digit) + ".log"));
      }});
}

TEST_F(TortureTest, ExceptionLoggerIsInstalledAndRemoved) {
  torture([] {
    const ov_rc result = ov_log_init_function([](const char*) {});
    logFromAnotherThread();
    ov_log_cleanup();
    return result;
  });
}

TEST_F(TortureTest, BacktraceIsLogged) {
  torture(
      [] {
        ov_log_btrace();
        return ov_rc{0};
      },
      {.prepare = [] { ov_log_init_function([](const char*) {}); }, .finish = &ov_log_cleanup});
}

TEST_F(TortureTest, DirectoriesAreMade) {
  torture([this] { return ov_dir_create(path("a/b/c/d").c_str(), 0777, 1); },
          {.prepare = [this] { renew(); }});
  torture(
      [this] {
        int calls = 0;
        return ov_dir_create_callback(
            path("a/b/c").c_str(), 0777, 1,
            [](const char*, int32_t, void* count) {
              ++*static_cast<int*>(count);
              return ov_rc{0};
            },
            &calls);
      },
      {.prepare = [this] { renew(); }});
}

TEST_F(TortureTest, DirectoriesAreDeleted) {
  torture([this] { return ov_dir_delete(path("a").c_str(), 1); }, {.prepare = [this] {
            renew();
            std::filesystem::create_directories(TempFolder::native(path("a/b/c")));
            std::filesystem::create_directories(TempFolder::native(path("a/d")));
            for (const char* name : {"a/1", "a/b/2", "a/b/c/3"}) make(path(name));
          }});
}

TEST_F(TortureTest, DirectoriesAreWalked) {
  std::filesystem::create_directories(TempFolder::native(path("a/b/c")));
  for (const char* name : {"a/1", "a/b/2", "a/b/c/3"}) make(path(name));
  torture([this] {
    ov_dir_walk* walk = nullptr;
    ov_rc result = ov_dir_walk_init(&walk, path("a").c_str());
    while (result == 0) {
      char name[OV_PATH_SIZE];
      int32_t type = 0;
      result = ov_dir_walk_iterate(walk, name, sizeof name, &type);
    }
    ov_dir_walk_release(&walk);
    return result == OV_EDIREND ? 0 : result;
  });
}

TEST_F(TortureTest, FilesAreCopied) {
  torture([this] { return ov_file_copy(path("from").c_str(), path("to").c_str(), 0660); },
          {.prepare = [this] {
            renew();
            make(path("from"), 20000);
          }});
}

TEST_F(TortureTest, FilesAreWrittenAndRenamed) {
  torture(
      [this] {
        ov_file file;
        ov_rc result = ov_file_openrw(path("file").c_str(), &file, 0660);
        if (result != 0) return result;
        uint32_t count = 0;
        ov_stat record;
        result = ov_file_write(&file, "abcdef", 6, &count);
        if (result == 0) result = ov_file_pwrite(&file, "x", 1, 2, &count);
        if (result == 0) result = ov_file_truncate(&file, 4);
        if (result == 0) result = ov_file_seek(&file, 0, 0);
        if (result == 0) result = ov_file_flush(&file);
        if (result == 0) result = ov_file_fstat(&file, &record);
        ov_file_close(&file);
        if (result == 0) result = ov_file_hardlink(path("file").c_str(), path("link").c_str());
        if (result == 0) result = ov_file_rename(path("file").c_str(), path("moved").c_str());
        if (result == 0) result = ov_file_stat(path("moved").c_str(), &record, OV_STAT_IDENTITY);
        char real[OV_PATH_SIZE];
        if (result == 0) result = ov_file_realpath(path("moved").c_str(), real, sizeof real);
        if (result == 0) result = ov_file_delete(path("moved").c_str());
        return result;
      },
      {.prepare = [this] { renew(); }});
}

TEST_F(TortureTest, LocksAreMadeAndUsed) {
  torture([] {
    ov_mutex* mutex = nullptr;
    ov_rc result = ov_mutex_create(&mutex);
    if (result != 0) return result;
    ov_cond condition;
    result = ov_cond_init(&condition, mutex);
    const bool made = result == 0;
    if (result == 0) result = ov_mutex_acquire(mutex);
    if (result == 0) {
      const ov_rc waited = ov_cond_timedwait_ms(&condition, 0);
      if (waited != 10060) result = waited;
      ov_mutex_release(mutex);
    }
    if (result == 0) {
      inAnotherThread([mutex, &result] {
        result = ov_mutex_acquire_nb(mutex);
        if (result == 0) ov_mutex_release(mutex);
      });
    }
    if (made) ov_cond_destroy(&condition);
    ov_mutex_dispose(&mutex);
    return result;
  });
}

TEST_F(TortureTest, SemaphoresAreMadeAndUsed) {
  torture([] {
    ov_sem semaphore;
    ov_rc result = ov_sem_init(&semaphore, 0);
    if (result != 0) return result;
    result = ov_sem_post(&semaphore);
    if (result == 0) result = ov_sem_wait(&semaphore);
    ov_sem_destroy(&semaphore);
    if (result != 0) return result;
    ov_named_mutex lock;
    result = ov_named_local_mutex_init(&lock, "torture");
    if (result != 0) return result;
    result = ov_named_mutex_acquire(&lock);
    if (result == 0 && ov_named_mutex_release(&lock) != 0) result = ov_named_mutex_release(&lock);
    ov_named_mutex_destroy(&lock);
    return result;
  });
}

TEST_F(TortureTest, ThreadsAreStartedAndJoined) {
  torture([] {
    std::atomic<int> runs = 0;
    ov_thread thread;
    const ov_rc result = ov_thread_spawn(
        &thread,
        [](void* argument) -> DWORD {
          ++*static_cast<std::atomic<int>*>(argument);
          return 0;
        },
        &runs);
    if (result != 0) return result;
    // A join that fails leaves the thread to be joined.
    const ov_rc joined = ov_thread_join(&thread);
    EXPECT_TRUE(joined == 0 || ov_thread_join(&thread) == 0);
    EXPECT_EQ(1, runs);
    return ov_rc{0};
  });
}

TEST_F(TortureTest, RegistryIsWrittenReadAndCleared) {
  void* const user = HKEY_CURRENT_USER;
  const std::string key =
      "Software\\Orvane Web Tests\\torture-" + std::to_string(GetCurrentProcessId());
  torture([&] {
    ov_rc result = ov_reg_set(user, key.c_str(), "name", "a text");
    char text[64];
    uint32_t length = sizeof text;
    if (result == 0) result = ov_reg_get(user, key.c_str(), "name", text, &length);
    EXPECT_TRUE(result != 0 || std::string(text) == "a text");
    if (result == 0) result = ov_reg_set_binary(user, key.c_str(), "bytes", "\1\2", 2);
    length = sizeof text;
    if (result == 0) result = ov_reg_get_binary(user, key.c_str(), "bytes", text, &length);
    if (result == 0) result = ov_reg_del(user, key.c_str(), "name");
    return result;
  });
  RegDeleteKeyA(HKEY_CURRENT_USER, key.c_str());
}

TEST_F(TortureTest, ProcessesAreStartedAndFollowed) {
  torture([] {
    ov_process process;
    ov_rc result = ov_process_create(&process, "cmd.exe /c exit 3");
    if (result != 0) return result;
    int32_t state = 0;
    if (ov_process_wait(&process, 30000, &state) != 0) ov_process_wait(&process, 30000, &state);
    int32_t code = 0;
    result = ov_process_exited(&process, &state, &code);
    EXPECT_TRUE(result == 0 || ov_process_exited(&process, &state, &code) == 0);
    EXPECT_EQ(1, state);
    EXPECT_EQ(3, code);
    return result;
  });
}

TEST_F(TortureTest, ProcessesAreStartedWithAnEnvironmentOfTheirOwn) {
  torture([] {
    const char* const environment[] = {"A=1", "B=2"};
    return ov_process_spawnas("cmd.exe /c exit", environment, 2, 0);
  });
}

TEST_F(TortureTest, VariablesAreSetAndRead) {
  torture([] {
    char text[64];
    ov_rc result = ov_process_setenv("OV_TORTURE", "a value");
    if (result == 0) result = ov_process_getenv("OV_TORTURE", text, sizeof text);
    return result;
  });
}

TEST_F(TortureTest, LibrariesAreOpenedAndAsked) {
  torture([] {
    ov_library library;
    ov_rc result = ov_library_open(&library, "version.dll");
    if (result != 0) return result;
    void* symbol = nullptr;
    result = ov_library_symbol(&library, "VerQueryValueW", &symbol);
    EXPECT_EQ(result != 0, symbol == nullptr);
    const ov_rc closed = ov_library_close(&library);
    return result != 0 ? result : closed;
  });
}

TEST_F(TortureTest, FilesOfProcessIdsAreMadeAndRemoved) {
  std::filesystem::create_directories(TempFolder::native(path("var/run/orvane")));
  torture([this] {
    char* file = nullptr;
    const ov_rc result = ov_process_create_pidfile(path("").c_str(), "torture", &file);
    EXPECT_EQ(result != 0, file == nullptr);
    ov_process_destroy_pidfile(&file);
    EXPECT_EQ(nullptr, file);
    return result;
  });
}

}  // namespace
