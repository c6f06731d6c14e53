// COM on a worker's thread, for real.
#include <windows.h>
#include <objbase.h>

#include <gtest/gtest.h>

#include <atomic>

#include "threads/worker.h"

namespace Vantrel::Web {
namespace {

class ComWorker : public Worker {
 public:
  bool done() override { return finished_; }
  void run() override {
    // A second initialisation of the same kind tells that the first one stands.
    result = CoInitialize(nullptr);
    CoUninitialize();
    finished_ = true;
  }
  void stop() override {}

  HRESULT result = E_FAIL;

 private:
  std::atomic<bool> finished_{false};
};

TEST(WorkerComTest, ThreadIsInASingleThreadedApartment) {
  ComWorker worker;
  worker.start();
  worker.join();
  EXPECT_EQ(worker.result, S_FALSE);
}

}  // namespace
}  // namespace Vantrel::Web
