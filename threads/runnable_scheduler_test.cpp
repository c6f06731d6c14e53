// Work that runs from the browser's message loop, and the record of what is pending.
#include "threads/runnable_scheduler.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/log_recorder.h"
#include "tests/support/message_loop.h"

namespace Vantrel::Web {
namespace {

using TestSupport::breakMessageWindows;
using TestSupport::runMessageLoop;
using Words = std::vector<std::string>;

// Notes what becomes of it.
class NotingRunnable : public Runnable {
 public:
  NotingRunnable(Words& notes, std::string name) : notes_(notes), name_(std::move(name)) {}
  ~NotingRunnable() override { notes_.push_back("~" + name_); }
  bool stopped() const override { return stopped_; }
  void run() override {
    notes_.push_back(name_ + " runs");
    if (onRun) onRun();
  }
  void stop() override {
    notes_.push_back(name_ + " stops");
    stopped_ = true;
    if (onStop) onStop();
  }

  std::function<void()> onRun;
  std::function<void()> onStop;

 private:
  Words& notes_;
  std::string name_;
  bool stopped_ = false;
};

class NotingCallback : public Callback {
 public:
  NotingCallback(Words& notes, std::string name) : notes_(notes), name_(std::move(name)) {}
  ~NotingCallback() override { notes_.push_back("~answer of " + name_); }
  void handleCallback(void* argument) override {
    notes_.push_back("answer of " + name_);
    received = argument;
    if (onAnswer) onAnswer();
  }
  void returnMessage(const std::string&) override {}

  void* received = nullptr;
  std::function<void()> onAnswer;

 private:
  Words& notes_;
  std::string name_;
};

class RunnableSchedulerTest : public testing::Test {
 protected:
  // Schedules work of that name; the runnable is the scheduler's.
  NotingRunnable& schedule(OneShotManager& manager, const std::string& name) {
    auto runnable = std::make_unique<NotingRunnable>(notes_, name);
    NotingRunnable& scheduled = *runnable;
    RunnableScheduler::scheduleRunnable(&manager, std::move(runnable),
                                        std::make_unique<NotingCallback>(notes_, name));
    return scheduled;
  }

  TestSupport::LogRecorder log_;
  // Before all that notes in it at its end.
  Words notes_;
};

TEST_F(RunnableSchedulerTest, WorkRunsWhenTheLoopTurnsAndIsAnsweredAndFreed) {
  OneShotManager manager;
  schedule(manager, "a");
  EXPECT_EQ(notes_, Words{});
  runMessageLoop();
  EXPECT_EQ(notes_, (Words{"a runs", "answer of a", "~answer of a", "~a"}));
  RunnableScheduler::stopRunnables(&manager);
  EXPECT_EQ(log_.countContaining("stopRunnables() - stopping"), 0U);
}

TEST_F(RunnableSchedulerTest, TheAnswerIsTheRunnable) {
  OneShotManager manager;
  auto runnable = std::make_unique<NotingRunnable>(notes_, "a");
  auto callback = std::make_unique<NotingCallback>(notes_, "a");
  const Runnable* const scheduled = runnable.get();
  const NotingCallback* const answered = callback.get();
  callback->onAnswer = [=] { EXPECT_EQ(answered->received, scheduled); };
  RunnableScheduler::scheduleRunnable(&manager, std::move(runnable), std::move(callback));
  runMessageLoop();
  EXPECT_EQ(notes_.size(), 4U);
}

TEST_F(RunnableSchedulerTest, WorkIsDoneInTheOrderOfItsScheduling) {
  OneShotManager first;
  OneShotManager second;
  schedule(first, "a");
  schedule(second, "b");
  schedule(first, "c");
  runMessageLoop();
  Words runs;
  for (const std::string& note : notes_) {
    if (note.ends_with(" runs")) runs.push_back(note);
  }
  EXPECT_EQ(runs, (Words{"a runs", "b runs", "c runs"}));
}

TEST_F(RunnableSchedulerTest, WithoutACallbackWorkRunsAndIsFreed) {
  OneShotManager manager;
  RunnableScheduler::scheduleRunnable(&manager, std::make_unique<NotingRunnable>(notes_, "a"),
                                      nullptr);
  runMessageLoop();
  EXPECT_EQ(notes_, (Words{"a runs", "~a"}));
}

TEST_F(RunnableSchedulerTest, StoppedWorkOfOneInstanceIsNotAnsweredTheOthersIs) {
  OneShotManager first;
  OneShotManager second;
  schedule(first, "a");
  schedule(second, "b");
  RunnableScheduler::stopRunnables(&first);
  EXPECT_EQ(notes_, Words{"a stops"});
  runMessageLoop();
  EXPECT_EQ(notes_, (Words{"a stops", "a runs", "~answer of a", "~a", "b runs", "answer of b",
                           "~answer of b", "~b"}));
}

TEST_F(RunnableSchedulerTest, WorkMayBeStoppedWhileItRuns) {
  OneShotManager manager;
  schedule(manager, "a").onRun = [&manager] { RunnableScheduler::stopRunnables(&manager); };
  runMessageLoop();
  EXPECT_EQ(notes_, (Words{"a runs", "a stops", "~answer of a", "~a"}));
}

TEST_F(RunnableSchedulerTest, AStopMayLetOtherWorkRunAndEnd) {
  OneShotManager manager;
  NotingRunnable& first = schedule(manager, "a");
  NotingRunnable& second = schedule(manager, "b");
  // Whichever is stopped first.
  first.onStop = [] { runMessageLoop(); };
  second.onStop = [] { runMessageLoop(); };
  RunnableScheduler::stopRunnables(&manager);
  EXPECT_EQ(log_.countContaining("stopRunnables() - stopping"), 1U) << log_.text();
  EXPECT_EQ(notes_.back()[0], '~');
}

TEST_F(RunnableSchedulerTest, WhatWorkThrowsIsLoggedAndItsRecordGoes) {
  OneShotManager manager;
  schedule(manager, "a").onRun = [] { throw std::runtime_error("100% broken"); };
  schedule(manager, "b").onRun = [] { throw 1; };  // NOLINT(*-exception-baseclass)
  runMessageLoop();
  EXPECT_EQ(log_.lines("ERR"), (Words{"100% broken", "an exception of an unknown kind"}));
  EXPECT_EQ(notes_, (Words{"a runs", "~answer of a", "~a", "b runs", "~answer of b", "~b"}));
  RunnableScheduler::stopRunnables(&manager);
  EXPECT_EQ(log_.countContaining("stopRunnables() - stopping"), 0U);
}

TEST_F(RunnableSchedulerTest, WhatAStopThrowsDoesNotKeepTheOthersFromBeingStopped) {
  OneShotManager manager;
  schedule(manager, "a").onStop = [] { throw std::runtime_error("a"); };
  schedule(manager, "b").onStop = [] { throw std::runtime_error("b"); };
  RunnableScheduler::stopRunnables(&manager);
  EXPECT_EQ(log_.lines("ERR").size(), 2U);
  runMessageLoop();
}

TEST_F(RunnableSchedulerTest, AFailingPostIsToldAndLeavesItsWorkWhole) {
  OneShotManager broken;
  breakMessageWindows();
  // Freed by nobody, and so are its notes.
  static Words notes;
  auto runnable = std::make_unique<NotingRunnable>(notes, "a");
  try {
    RunnableScheduler::scheduleRunnable(&broken, std::move(runnable), nullptr);
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "PostMessage failed (1400)");
  }
  EXPECT_EQ(notes, Words{});
  RunnableScheduler::stopRunnables(&broken);
  EXPECT_EQ(notes, Words{"a stops"});
  // Another instance, also at the same address, has nothing to do with it.
  OneShotManager other;
  RunnableScheduler::stopRunnables(&other);
  EXPECT_EQ(notes, Words{"a stops"});
}

TEST_F(RunnableSchedulerTest, AnInstanceAtTheSameAddressIsAnotherOne) {
  static Words notes;  // as above: what the window took with it is freed by nobody
  alignas(OneShotManager) unsigned char place[sizeof(OneShotManager)];
  auto* manager = new (place) OneShotManager;
  RunnableScheduler::scheduleRunnable(manager, std::make_unique<NotingRunnable>(notes, "a"),
                                      nullptr);
  manager->~OneShotManager();
  manager = new (place) OneShotManager;
  RunnableScheduler::stopRunnables(manager);
  EXPECT_EQ(notes, Words{});
  manager->~OneShotManager();
}

TEST_F(RunnableSchedulerTest, ItWorksBeforeItsStartAndAfterItsEndAndOverAnother) {
  OneShotManager manager;
  RunnableScheduler::stopRunnables(&manager);
  RunnableScheduler::cleanup();
  NotingRunnable& open = schedule(manager, "dialog");
  // The module ends and starts again while the work is further up the stack.
  open.onRun = [] {
    RunnableScheduler::init();
    RunnableScheduler::cleanup();
    RunnableScheduler::cleanup();
  };
  runMessageLoop();
  RunnableScheduler::init();
  RunnableScheduler::init();
  schedule(manager, "a");
  runMessageLoop();
  EXPECT_EQ(notes_, (Words{"dialog runs", "answer of dialog", "~answer of dialog", "~dialog",
                           "a runs", "answer of a", "~answer of a", "~a"}));
  RunnableScheduler::cleanup();
}

TEST_F(RunnableSchedulerTest, WorkOfAnInstanceThatIsGoneIsNeverRun) {
  static Words notes;
  {
    OneShotManager manager;
    RunnableScheduler::scheduleRunnable(&manager, std::make_unique<NotingRunnable>(notes, "a"),
                                        nullptr);
  }
  runMessageLoop();
  EXPECT_EQ(notes, Words{});
}

}  // namespace
}  // namespace Vantrel::Web
