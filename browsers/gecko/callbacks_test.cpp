// Answers and events on their way to page functions.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <thread>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/page_callbacks.h"
#include "browsers/gecko/page_calls.h"
#include "browsers/gecko/transfer_event_handler.h"
#include "core/approved_files.h"
#include "service/http_response.h"
#include "tests/support/fake_browser.h"
#include "tests/support/log_recorder.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web::Gecko {
namespace {

using Calls = std::vector<std::vector<std::string>>;

class CallbacksTest : public testing::Test {
 protected:
  ~CallbacksTest() override { freeUndeliveredCalls(&browser_.instance); }

  TestSupport::LogRecorder log_;
  FakeBrowser browser_;
};

TEST_F(CallbacksTest, AnEventCallsItsTargetWithNameAndPayload) {
  NPObject* const target = browser_.newObject();
  sendEvent(&browser_.instance, target, PageEvent::kTransfer, "{\"a\":1}");
  sendEvent(&browser_.instance, target, PageEvent::kDragOver, "");
  sendEvent(&browser_.instance, nullptr, PageEvent::kDrop, "[]");
  EXPECT_EQ(browser_.invocations, (Calls{{"transfer", "{\"a\":1}"}, {"dragover", ""}}));
}

TEST_F(CallbacksTest, OnlyAResultThatIsNoStringIsReleased) {
  NPObject* const target = browser_.newObject();
  const RetainedObject held(target);
  browser_.onInvokeDefault = [this](NPObject*, const std::vector<std::string>&) {
    return browser_.text("kept");
  };
  callPage(&browser_.instance, target, "x");
  EXPECT_EQ(browser_.releasedVariants, 0);
  browser_.onInvokeDefault = [](NPObject*, const std::vector<std::string>&) {
    return FakeBrowser::number(1);
  };
  callPage(&browser_.instance, target, "x");
  EXPECT_EQ(browser_.releasedVariants, 1);
  browser_.invokeResult = false;
  callPage(&browser_.instance, target, "x");
  EXPECT_EQ(browser_.releasedVariants, 1);
}

TEST_F(CallbacksTest, AnAnswerReachesThePageFunctionOnce) {
  NPObject* const function = browser_.newObject();
  {
    RequestCallback callback(&browser_.instance, function);
    EXPECT_EQ(function->referenceCount, 1u);
    HttpResponse response("{\"ok\":\"%s\"}");
    callback.handleCallback(&response);
    callback.returnMessage("a second answer is none");
  }
  EXPECT_TRUE(browser_.invocations.empty());
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_EQ(browser_.invocations, Calls{{"{\"ok\":\"%s\"}"}});
  EXPECT_EQ(function->referenceCount, 0u);
  EXPECT_TRUE(log_.has("DBG RequestCallback::returnMessage() - response={\"ok\":\"%s\"}"));
  EXPECT_TRUE(log_.has("DBG callbackBrowser - msg={\"ok\":\"%s\"}")) << log_.text();
}

TEST_F(CallbacksTest, AnAnswerCostsOneRetainAndOneRelease) {
  RequestCallback callback(&browser_.instance, browser_.newObject());
  callback.handleCallback(nullptr);
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_EQ(browser_.invocations.size(), 1U);
  EXPECT_EQ(browser_.retains, 1);
}

TEST_F(CallbacksTest, TheObserversArgumentIsReleasedAsAVariant) {
  NPObject* const observer = browser_.newObjectWithMethods({"onDrop"});
  browser_.onInvokeDefault = [this](NPObject*, const std::vector<std::string>&) {
    return browser_.text("kept");
  };
  const auto life = std::make_shared<bool>(true);
  callMethod(&browser_.instance, life, observer, "onDrop", "a path");
  EXPECT_EQ(browser_.invocations, (Calls{{"onDrop", "a path"}}));
  EXPECT_EQ(browser_.releasedVariants, 1);
}

TEST_F(CallbacksTest, AKeyOfAPostedCallNeverComesAgain) {
  std::set<void*> keys;
  for (int i = 0; i < 100; ++i) {
    RequestCallback callback(&browser_.instance, browser_.newObject());
    callback.handleCallback(nullptr);
    keys.insert(browser_.waitingArgument());
    EXPECT_EQ(browser_.runAsyncCalls(), 1);
  }
  EXPECT_EQ(keys.size(), 100U);
}

TEST_F(CallbacksTest, TheEndOfAnInstanceFreesItsCallsAlone) {
  NPP_t other = {};
  RequestCallback callback(&browser_.instance, browser_.newObject());
  callback.handleCallback(nullptr);
  freeUndeliveredCalls(&other);
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_EQ(browser_.invocations.size(), 1U);
}

TEST_F(CallbacksTest, ABrowserWithoutCallsFromOtherThreadsGetsNone) {
  browserFuncs.pluginthreadasynccall = nullptr;
  RequestCallback callback(&browser_.instance, browser_.newObject());
  callback.handleCallback(nullptr);
  EXPECT_EQ(log_.lines("ERR"),
            std::vector<std::string>{"The browser takes no calls from other threads"});
  browser_.expectReferencesLeft(1);
}

TEST_F(CallbacksTest, NoResponseIsTheContactError) {
  RequestCallback callback(&browser_.instance, browser_.newObject());
  callback.handleCallback(nullptr);
  browser_.runAsyncCalls();
  EXPECT_EQ(browser_.invocations, Calls{{jsonErrorReply(kErrorContacting)}});
}

TEST_F(CallbacksTest, AnAnswerFromAWorkerTouchesNoReferenceThere) {
  NPObject* const function = browser_.newObject();
  auto callback = std::make_unique<RequestCallback>(&browser_.instance, function);
  std::thread([&callback] {
    callback->handleCallback(nullptr);
    callback.reset();
  }).join();
  EXPECT_EQ(function->referenceCount, 1u);
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_EQ(function->referenceCount, 0u);
}

TEST_F(CallbacksTest, ARequestDroppedWithoutAnAnswerKeepsItsReference) {
  NPObject* const function = browser_.newObject();
  { const RequestCallback dropped(&browser_.instance, function); }
  EXPECT_EQ(function->referenceCount, 1u);
  browser_.expectReferencesLeft(1);
}

TEST_F(CallbacksTest, WhatTheBrowserNeverRunsIsFreedWithTheInstance) {
  RequestCallback callback(&browser_.instance, browser_.newObject());
  callback.handleCallback(nullptr);
  browser_.dropAsyncCalls();
  freeUndeliveredCalls(&browser_.instance);
  browser_.expectReferencesLeft(1);
}

TEST_F(CallbacksTest, ACallThatTheBrowserRunsTooLateDoesNothing) {
  RequestCallback callback(&browser_.instance, browser_.newObject());
  callback.handleCallback(nullptr);
  freeUndeliveredCalls(&browser_.instance);
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_TRUE(browser_.invocations.empty());
  browser_.expectReferencesLeft(1);
}

TEST_F(CallbacksTest, TransferEventsWithoutATargetAreDropped) {
  TransferEventHandler handler(&browser_.instance, nullptr);
  handler.transferEventOccurred("{}");
  EXPECT_EQ(browser_.waitingCalls(), 0u);
  EXPECT_EQ(log_.countContaining("DBG TransferEventHandler() ["), 1u) << log_.text();
}

TEST_F(CallbacksTest, ATransferEventGoesToTheTargetOfItsDelivery) {
  NPObject* const first = browser_.newObject();
  NPObject* const second = browser_.newObject();
  const RetainedObject held(second);
  std::vector<NPObject*> called;
  browser_.onInvokeDefault = [&called](NPObject* function, const std::vector<std::string>&) {
    called.push_back(function);
    return NPVariant{NPVariantType_Void, {}};
  };
  TransferEventHandler handler(&browser_.instance, nullptr);
  handler.setTarget(first);
  handler.transferEventOccurred("{\"n\":1}");
  handler.setTarget(second);
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_EQ(called, std::vector<NPObject*>{second});
  EXPECT_EQ(browser_.invocations, (Calls{{"transfer", "{\"n\":1}"}}));
}

TEST_F(CallbacksTest, AnEventDeliveredAfterItsHandlerIsGoneReachesNobody) {
  NPObject* const target = browser_.newObject();
  auto handler = std::make_unique<TransferEventHandler>(&browser_.instance, target);
  handler->transferEventOccurred("{}");
  handler.reset();
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_TRUE(browser_.invocations.empty());
  EXPECT_EQ(log_.countContaining("DBG ~TransferEventHandler() ["), 1u) << log_.text();
}

TEST_F(CallbacksTest, AKeptTargetLivesUntilAnotherOrTheEnd) {
  NPObject* const target = browser_.newObject();
  NPObject* const other = browser_.newObject();
  TransferEventHandler handler(&browser_.instance, target);
  handler.keepTarget(other);  // not the target
  EXPECT_EQ(other->referenceCount, 0u);
  handler.keepTarget(target);
  handler.keepTarget(target);
  EXPECT_EQ(target->referenceCount, 1u);
  handler.transferEventOccurred("{}");
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_EQ(browser_.invocations.size(), 1u);
  handler.setTarget(other);
  EXPECT_EQ(target->referenceCount, 0u);
  handler.keepTarget(other);
  EXPECT_EQ(other->referenceCount, 1u);  // released by the destructor, or the case fails
}

TEST_F(CallbacksTest, ThePageMayEndTheHandlerInsideItsEvent) {
  auto handler = std::make_unique<TransferEventHandler>(&browser_.instance, nullptr);
  NPObject* const target = browser_.newObject();
  handler->setTarget(target);
  browser_.onInvokeDefault = [&handler](NPObject*, const std::vector<std::string>&) {
    handler.reset();
    return NPVariant{NPVariantType_Void, {}};
  };
  handler->transferEventOccurred("{}");
  EXPECT_EQ(browser_.runAsyncCalls(), 1);
  EXPECT_FALSE(handler);
}

// A dialog that has run.
class FinishedDialog : public FileDialog {
 public:
  FinishedDialog(int32_t code, std::string reply, std::vector<std::string> paths)
      : outcome_(code), text_(std::move(reply)), chosen_(std::move(paths)) {}
  bool stopped() const override { return false; }
  int32_t result() const override { return outcome_; }
  std::string resultText() const override { return text_; }
  void run() override {}
  void stop() override {}
  const std::vector<std::string>& chosenPaths() const override { return chosen_; }

 private:
  int32_t outcome_;
  std::string text_;
  std::vector<std::string> chosen_;
};

class DialogCallbackTest : public CallbacksTest {
 protected:
  void finish(DialogKind kind, NPObject* function, int32_t result,
              const std::vector<std::string>& chosen) {
    FinishedDialog dialog(result, "[reply %s]", chosen);
    DialogCallback callback(&browser_.instance, life_, function, kind);
    callback.handleCallback(static_cast<Runnable*>(&dialog));
  }

  std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
};

TEST_F(DialogCallbackTest, ChosenFilesAreApprovedAndTheReplyReachesThePageAtOnce) {
  finish(DialogKind::kOpenFile, browser_.newObject(), 4, {"C:\\dialog\\file"});
  EXPECT_TRUE(isFileAllowed("C:/dialog/file"));
  EXPECT_EQ(browser_.invocations, Calls{{"[reply %s]"}});
  EXPECT_TRUE(log_.has("DBG DialogCallback::handleCallback() - result=4 resultStr=[reply %s]"))
      << log_.text();
}

TEST_F(DialogCallbackTest, ACancelledDialogStillCallsThePage) {
  finish(DialogKind::kSaveFile, browser_.newObject(), 4, {});
  EXPECT_EQ(browser_.invocations, Calls{{"[reply %s]"}});
}

TEST_F(DialogCallbackTest, AResultOfZeroIsTheEndOfIt) {
  finish(DialogKind::kOpenFile, browser_.newObject(), 0, {"C:/dialog/zero"});
  EXPECT_FALSE(isFileAllowed("C:/dialog/zero"));
  EXPECT_TRUE(browser_.invocations.empty());
}

TEST_F(DialogCallbackTest, WithoutAPageObjectTheChoiceIsRecordedAndNothingCalled) {
  finish(DialogKind::kOpenFile, nullptr, 4, {"C:/dialog/no page"});
  EXPECT_TRUE(isFileAllowed("C:/dialog/no page"));
  EXPECT_TRUE(browser_.invocations.empty());
}

TEST_F(DialogCallbackTest, ASavePathIsNotApprovedAsAFile) {
  finish(DialogKind::kSaveFile, browser_.newObject(), 4, {"C:/dialog/saved"});
  EXPECT_FALSE(isFileAllowed("C:/dialog/saved"));
}

TEST_F(DialogCallbackTest, AnAnswerCostsOneRetainAndOneRelease) {
  finish(DialogKind::kOpenFile, browser_.newObject(), 4, {});
  EXPECT_EQ(browser_.retains, 1);
}

TEST_F(DialogCallbackTest, AfterItsInstanceTheChoiceIsRecordedAndThePageForgotten) {
  NPObject* const function = browser_.newObject();
  FinishedDialog dialog(4, "[reply]", {"C:/dialog/folder"});
  {
    DialogCallback callback(&browser_.instance, life_, function, DialogKind::kOpenFolder);
    life_.reset();
    // The browser has taken its objects away and given the memory to others.
    browser_.instance.pdata = &dialog;
    function->referenceCount = 77;
    callback.handleCallback(static_cast<Runnable*>(&dialog));
  }
  EXPECT_EQ(function->referenceCount, 77U);
  function->referenceCount = 0;
  EXPECT_TRUE(isFileAllowed("C:/dialog/folder"));
  EXPECT_TRUE(browser_.invocations.empty());
}

TEST_F(DialogCallbackTest, AStoppedDialogGivesTheFunctionBackWhileItsInstanceLives) {
  NPObject* const function = browser_.newObject();
  { const DialogCallback callback(&browser_.instance, life_, function, DialogKind::kSaveFile); }
  EXPECT_EQ(function->referenceCount, 0U);
}

}  // namespace
}  // namespace Vantrel::Web::Gecko
