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
    const std::lock_guard<std::mutex> lock(mutex);
    texts.push_back(text);
    changed.notify_all();
  }
  std::vector<std::string> get() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return texts;
  }
  // Waits until there are `count`; false after half a minute.
  bool wait(size_t count) const {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, std::chrono::seconds(30),
                            [this, count] { return texts.size() >= count; });
  }

 private:
  mutable std::mutex mutex;  // guards texts
  mutable std::condition_variable changed;
  std::vector<std::string> texts;
};

class AnswerCallback : public Callback {
 public:
  explicit AnswerCallback(Answers& receiver) : answers(receiver) {}
  void handleCallback(void* argument) override {
    const auto* const response = static_cast<const HttpResponse*>(argument);
    answers.add(response ? response->body() : "no response");
  }
  void returnMessage(const std::string& text) override { answers.add("message: " + text); }

 private:
  Answers& answers;
};

class PluginTest : public testing::Test {
 protected:
  PluginTest() { files.writeUrl(server.url() + "\nkey"); }

  // A core as a front end leaves it, with a client that answers unless a case says otherwise.
  Plugin& plugin() {
    if (!core) {
      core = std::make_unique<Plugin>();
      core->hostname = "some.host";
      core->init(0);
    }
    return *core;
  }
  std::unique_ptr<Callback> callback() { return std::make_unique<AnswerCallback>(answers); }

  static inline const std::string kContactReply = jsonErrorReply(
      "Error contacting Orvane Vantrel. Ensure that it is running, and not blocked by your "
      "firewall or security policies.");
  static constexpr char kPing[] = "/v5/vantrel/info/ping";

  TestSupport::ServiceFiles files;
  TestSupport::FakePlatform platform;
  TestSupport::ScriptedServer server;
  TestSupport::LogRecorder log;
  Answers answers;
  std::unique_ptr<Plugin> core;
};

}  // namespace Vantrel::Web
