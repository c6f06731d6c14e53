// A core object beside a scripted desktop client, for its tests.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/plugin.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"
#include "text/error_reply.h"

namespace Vantrel::Web {

// Notes what it is told, on whatever thread; it may outlive its callback.
class Answers {
 public:
  void add(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    texts_.push_back(text);
    changed_.notify_all();
  }
  std::vector<std::string> get() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return texts_;
  }
  // Waits until there are `count`; false after half a minute.
  bool wait(size_t count) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(30),
                             [this, count] { return texts_.size() >= count; });
  }

 private:
  mutable std::mutex mutex_;  // guards texts
  mutable std::condition_variable changed_;
  std::vector<std::string> texts_;
};

class AnswerCallback : public Callback {
 public:
  explicit AnswerCallback(Answers& receiver) : answers_(receiver) {}
  void handleCallback(void* argument) override {
    const auto* const response = static_cast<const HttpResponse*>(argument);
    answers_.add(response != nullptr ? response->body() : "no response");
  }
  void returnMessage(const std::string& text) override { answers_.add("message: " + text); }

 private:
  Answers& answers_;
};

class PluginTest : public testing::Test {
 protected:
  PluginTest() { files_.writeUrl(server_.url() + "\nkey"); }

  // A core as a front end leaves it, with a client that answers unless a case says otherwise.
  Plugin& plugin() {
    if (!core_) {
      core_ = std::make_unique<Plugin>();
      core_->hostname = "some.host";
      core_->init(0);
    }
    return *core_;
  }
  std::unique_ptr<Callback> callback() { return std::make_unique<AnswerCallback>(answers_); }

  static inline const std::string kContactReply = jsonErrorReply(
      "Error contacting Orvane Vantrel. Ensure that it is running, and not blocked by your "
      "firewall or security policies.");
  static constexpr char kPing[] = "/v5/vantrel/info/ping";

  TestSupport::ServiceFiles files_;
  TestSupport::FakePlatform platform_;
  TestSupport::ScriptedServer server_;
  TestSupport::LogRecorder log_;
  Answers answers_;
  std::unique_ptr<Plugin> core_;
};

}  // namespace Vantrel::Web
