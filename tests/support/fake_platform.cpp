#include "tests/support/fake_platform.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "runtime/ov_process.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_threads.h"
#include "service/platform.h"

namespace Vantrel::Web {

namespace TestSupport {

namespace {

constexpr ov_rc kNotFound = 2;

std::atomic<FakePlatform*> current{nullptr};

void shortSleep() {
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

}  // namespace

FakePlatform::FakePlatform() {
  onStart = [](const std::string&) { return ov_rc{0}; };
  onExited = [](int32_t* state, int32_t*) {
    *state = 0;
    return ov_rc{0};
  };
  onSleep = [](uint32_t) {
    shortSleep();
    return ov_rc{0};
  };
  onForeground = [](int32_t) { return ov_rc{0}; };
  current = this;
}

FakePlatform::~FakePlatform() {
  current = nullptr;
}

std::vector<std::string> FakePlatform::starts() const {
  const std::lock_guard lock(mutex_);
  return startedPaths_;
}

std::vector<uint32_t> FakePlatform::sleeps() const {
  const std::lock_guard lock(mutex_);
  return sleptMs_;
}

size_t FakePlatform::closedProcesses() const {
  const std::lock_guard lock(mutex_);
  return closed_;
}

ov_rc FakePlatform::start(const std::string& path) {
  {
    const std::lock_guard lock(mutex_);
    startedPaths_.push_back(path);
  }
  return onStart(path);
}

ov_rc FakePlatform::sleep(uint32_t milliseconds) {
  {
    const std::lock_guard lock(mutex_);
    sleptMs_.push_back(milliseconds);
  }
  return onSleep(milliseconds);
}

void FakePlatform::closeProcess() {
  const std::lock_guard lock(mutex_);
  ++closed_;
}

}  // namespace TestSupport

using TestSupport::current;
using TestSupport::FakePlatform;

StartedProcess::StartedProcess() : record() {}

StartedProcess::~StartedProcess() {
  if (FakePlatform* fake = current; fake != nullptr) fake->closeProcess();
}

ov_rc StartedProcess::start(const std::string& path) {
  FakePlatform* fake = current;
  return fake != nullptr ? fake->start(path) : TestSupport::kNotFound;
}

int32_t localAppDataDirectory(std::string* directory) {
  FakePlatform* fake = current;
  if (fake == nullptr) return -1;
  if (fake->appDataResult >= 0) *directory = fake->appDataDirectory;
  return fake->appDataResult;
}

ov_rc allowForeground(int32_t processId) {
  FakePlatform* fake = current;
  return fake != nullptr ? fake->onForeground(processId) : 0;
}

}  // namespace Vantrel::Web

using Vantrel::Web::TestSupport::current;
using Vantrel::Web::TestSupport::FakePlatform;

// The linker sends the calls of the base runtime's functions here.
extern "C" {

ov_rc __wrap_ov_process_exited(ov_process*, int32_t* state, int32_t* exitCode) {
  FakePlatform* fake = current;
  return fake != nullptr ? fake->onExited(state, exitCode) : 6;
}

ov_rc __wrap_ov_thread_sleep(uint32_t milliseconds) {
  if (FakePlatform* fake = current; fake != nullptr) return fake->sleep(milliseconds);
  Vantrel::Web::TestSupport::shortSleep();
  return 0;
}

constexpr int32_t kEndlessMs = 24 * 3600 * 1000;  // longer than any test

ov_rc __real_ov_sem_trywait(ov_sem* semaphore, int32_t milliseconds);

ov_rc __wrap_ov_sem_trywait(ov_sem* semaphore, int32_t milliseconds) {
  FakePlatform* fake = current;
  const bool endless = fake != nullptr && fake->pausesAreEndless;
  if (fake != nullptr) fake->sleep(static_cast<uint32_t>(milliseconds));
  return __real_ov_sem_trywait(semaphore, endless ? kEndlessMs : 1);
}

ov_rc __wrap_ov_reg_get(void* hive, const char* key, const char* name, char* out,
                        uint32_t* length) {
  const bool known = std::strcmp(key, "SOFTWARE\\Orvane\\Orvane Vantrel\\v2") == 0 &&
                     std::strcmp(name, "InstallDir") == 0;
  FakePlatform* fake = current;
  if (!known || fake == nullptr) return Vantrel::Web::TestSupport::kNotFound;
  const auto& directory =
      hive == OV_REG_LOCAL_MACHINE ? fake->systemInstallation : fake->userInstallation;
  if (!directory) return Vantrel::Web::TestSupport::kNotFound;
  if (directory->size() + 1 > *length) return 28677;
  std::memcpy(out, directory->c_str(), directory->size() + 1);
  *length = static_cast<uint32_t>(directory->size() + 1);
  return 0;
}

}  // extern "C"
