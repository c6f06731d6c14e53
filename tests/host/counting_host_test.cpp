// The counting host against a plug-in that is clean until it is told to misbehave: every offence is
// seen, and nothing else is.
#include <gmock/gmock.h>

#include "tests/host/host_fixture.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::Host {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr wchar_t kProbe[] = L"ov_probe_plugin.dll";

class CountingHostTest : public HostTest {
 protected:
  void SetUp() override { start(kProbe); }

  // Faults of one instance on which the page makes one call.
  std::vector<std::string> faultsOf(const char* method, const std::vector<Value>& arguments = {}) {
    {
      Instance instance(host());
      instance.call(method, arguments);
    }
    return finish();
  }
};

TEST_F(CountingHostTest, ACleanInstanceLeavesNothing) {
  { Instance instance(host()); }
  EXPECT_THAT(finish(), IsEmpty());
}

TEST_F(CountingHostTest, ACleanCallPassesTextsBothWays) {
  Instance instance(host());
  const CallResult result = instance.call("answerText", {Value::string("a text")});
  EXPECT_TRUE(result.accepted);
  EXPECT_EQ(result.value, Value::string("a text"));
}

TEST_F(CountingHostTest, EmptyTextsAndEmptyListsPass) {
  Instance instance(host());
  EXPECT_EQ(instance.call("answerText", {Value::string("")}).value, Value::string(""));
  EXPECT_FALSE(instance.call("noSuchMethod").accepted);
}

TEST_F(CountingHostTest, ALeakedBlockIsSeen) {
  EXPECT_THAT(faultsOf("leakMemory"), ElementsAre(HasSubstr("1 blocks of browser memory")));
}

TEST_F(CountingHostTest, ALeakedNameOfAnIdentifierIsSeen) {
  EXPECT_THAT(faultsOf("leakName"), ElementsAre(HasSubstr("0 of them the plug-in's")));
}

TEST_F(CountingHostTest, AWriteBehindABlockIsSeen) {
  EXPECT_THAT(faultsOf("overrun"), ElementsAre(HasSubstr("guard bytes damaged")));
}

TEST_F(CountingHostTest, ABlockFreedTwiceIsSeen) {
  EXPECT_THAT(faultsOf("freeTwice"), ElementsAre(HasSubstr("not live")));
}

TEST_F(CountingHostTest, AWriteIntoAFreedBlockIsSeen) {
  EXPECT_THAT(faultsOf("writeFreed"), ElementsAre(HasSubstr("freed block")));
}

TEST_F(CountingHostTest, ALeakedReferenceIsSeenAtTheEnd) {
  PageReference function = host().page.makeFunction("callback");
  {
    Instance instance(host());
    instance.call("leakReference", {function.value()});
  }
  function.drop();
  EXPECT_THAT(finish(), ElementsAre("live object - callback: plug-in 1, browser 0"));
}

TEST_F(CountingHostTest, AReferenceThatIsKnownToBeKeptIsNoFault) {
  PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.call("leakReference", {function.value()});
  instance.end({.objects = {{function.get(), 1}}});
  function.drop();
  EXPECT_THAT(finish(), IsEmpty());
}

TEST_F(CountingHostTest, AReferenceThatShouldBeKeptAndIsNotIsAFault) {
  PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.end({.objects = {{function.get(), 1}}});
  function.drop();
  EXPECT_THAT(finish(), ElementsAre(HasSubstr("holds 0 references, 1 are known")));
}

TEST_F(CountingHostTest, AReleaseOfSomebodyElsesReferenceIsSeen) {
  PageReference function = host().page.makeFunction("callback");
  {
    Instance instance(host());
    instance.call("releaseTooOften", {function.value()});
  }
  function.drop();
  EXPECT_THAT(finish(), ElementsAre(HasSubstr("not its own: callback")));
}

TEST_F(CountingHostTest, ACallOfADeadObjectIsSeen) {
  PageReference function = host().page.makeFunction("callback");
  {
    Instance instance(host());
    instance.call("borrow", {function.value()});
    function.drop();
    instance.call("useBorrowed");
  }
  EXPECT_THAT(finish(), ElementsAre("NPN_InvokeDefault of a dead object"));
}

TEST_F(CountingHostTest, ACallOffTheBrowsersThreadIsSeen) {
  EXPECT_THAT(faultsOf("callOffThread"),
              ElementsAre("NPN_MemAlloc called off the browser's thread",
                          "NPN_MemFree called off the browser's thread"));
}

TEST_F(CountingHostTest, AQueuedCallFromAThreadRunsOnTheBrowsersThread) {
  PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.call("callBackLater", {function.value()});
  EXPECT_EQ(host().calls.countOffThread("NPN_PluginThreadAsyncCall"), 1);
  EXPECT_TRUE(function->calls.empty());
  host().pumpOnce();
  EXPECT_EQ(function->calls.size(), 1U);
}

TEST_F(CountingHostTest, HeldCallsWaitAndDroppedOnesNeverRun) {
  PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  host().async.setMode(AsyncCalls::Mode::kHold);
  instance.call("callBackLater", {function.value()});
  host().pumpOnce();
  EXPECT_TRUE(function->calls.empty());
  host().async.setMode(AsyncCalls::Mode::kQueue);
  host().pumpOnce();
  EXPECT_EQ(function->calls.size(), 1U);
  host().async.setMode(AsyncCalls::Mode::kDrop);
  instance.call("callBackLater", {function.value()});
  host().pumpOnce();
  EXPECT_EQ(function->calls.size(), 1U);
  instance.end({.objects = {{function.get(), 1}}});
}

TEST_F(CountingHostTest, ACallThatWasNeverRunIsSeen) {
  PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.call("callBackLater", {function.value()});
  instance.end();
  function.drop();
  EXPECT_THAT(finish(), Contains("queued calls are left"));
}

TEST_F(CountingHostTest, AThreadAndAModuleLeftBehindAreSeen) {
  EXPECT_THAT(faultsOf("leakThread"),
              ElementsAre("1 threads of the plug-in are alive", "the library is still mapped",
                          "1 threads more than before"));
}

TEST_F(CountingHostTest, AResultOutsideBrowserMemoryIsSeen) {
  EXPECT_THAT(faultsOf("answerOwnMemory"), ElementsAre(HasSubstr("browser's memory")));
}

TEST_F(CountingHostTest, AResultOfARefusedCallIsSeen) {
  EXPECT_THAT(faultsOf("refuseWithResult"), ElementsAre("a refused call left a result"));
}

TEST_F(CountingHostTest, AFunctionThatIsNotNeededReportsItsUse) {
  EXPECT_THAT(faultsOf("callUnneeded"), ElementsAre("browser function 0 of the table was called"));
}

TEST_F(CountingHostTest, AnInventedIdentifierIsSeen) {
  EXPECT_THAT(faultsOf("inventIdentifier", {Value::null()}), ElementsAre(HasSubstr("identifier")));
}

TEST_F(CountingHostTest, MoreReferencesOfTheHostnameLookUpThanKnownAreSeen) {
  { Instance instance(host(), {{"a", "b"}}); }
  EXPECT_THAT(finish(),
              ElementsAre(HasSubstr("window: the plug-in holds 2"),
                          HasSubstr("location: the plug-in holds 2"), "2 hostnames were left"));
}

TEST_F(CountingHostTest, AnInstanceThatIsNeverDestroyedIsSeen) {
  auto instance = std::make_unique<Instance>(host());
  instance->settle();
  EXPECT_THAT(finish(), Contains("an instance was never destroyed"));
  static_cast<void>(instance.release());
}

TEST_F(CountingHostTest, ReleasedResultsOfPageFunctionsLeaveNothing) {
  PageReference other = host().page.makeFunction("other");
  PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  for (const Value& answer : {Value::undefined(), Value::null(), Value::number(5),
                              Value::number(5.5), Value::string("text"), other.value()}) {
    function->answer = answer;
    instance.call("releaseCallResult", {function.value()});
  }
  EXPECT_EQ(function->calls.size(), 6U);
}

TEST_F(CountingHostTest, AResultOfAFailedCallMustNotBeReleased) {
  PageReference function = host().page.makeFunction("callback");
  {
    Instance instance(host());
    function->throws = true;
    instance.call("releaseCallResult", {function.value()});
  }
  function.drop();
  EXPECT_THAT(finish(), ElementsAre("NPN_ReleaseObject of a dead object"));
}

TEST_F(CountingHostTest, TextsThatPageFunctionsReturnedAreCounted) {
  PageReference function = host().page.makeFunction("callback");
  function->answer = Value::string("text");
  Instance first(host());
  first.call("keepCallResult", {function.value()});
  first.end({.pageResults = 1});
  EXPECT_TRUE(host().faults.empty());
  Instance second(host());
  second.call("keepCallResult", {function.value()});
  second.end();
  function.drop();
  EXPECT_THAT(finish(), ElementsAre(HasSubstr("1 results of page functions were left")));
}

TEST_F(CountingHostTest, ATableCopiedBeyondItsSizeCrashes) {
  EXPECT_DEATH(host().initialize({.size = 360, .bytes = 360}), "");
}

TEST_F(CountingHostTest, AReadBehindATextCrashes) {
  Instance instance(host());
  EXPECT_DEATH(instance.call("readBehindText", {Value::string("true")}), "");
}

TEST_F(CountingHostTest, ATextInsideALargerBufferDoesNotEndWhereMemoryEnds) {
  Instance instance(host());
  EXPECT_TRUE(instance.call("readBehindText", {Value::stringInside("truex", 4)}).accepted);
}

TEST_F(CountingHostTest, AReadBehindTheArgumentsCrashes) {
  Instance instance(host());
  EXPECT_DEATH(instance.call("readBehindArguments", {Value::null()}), "");
}

TEST_F(CountingHostTest, AnAllocationFailsWhenTold) {
  host().memory.failAllocationAfter(1);
  Instance instance(host());
  EXPECT_EQ(instance.call("answerText", {Value::string("a")}).value, Value::string("a"));
  EXPECT_FALSE(instance.call("leakMemory").accepted);
  EXPECT_EQ(instance.call("answerText", {Value::string("b")}).value, Value::string("b"));
}

TEST_F(CountingHostTest, EveryStepOfTheHostnameLookUpCanBreak) {
  for (const Step step : {Step::kFails, Step::kFailsButWrites, Step::kUntouched, Step::kNull}) {
    host().page.address = {.window = step};
    Instance instance(host());
  }
  for (const Step step : {Step::kFails, Step::kFailsButWrites, Step::kUntouched, Step::kNull,
                          Step::kNumber, Step::kText}) {
    host().page.address = {.location = step};
    Instance instance(host());
  }
  for (const Step step :
       {Step::kFails, Step::kFailsButWrites, Step::kUntouched, Step::kNull, Step::kNumber}) {
    host().page.address = {.hostname = step};
    Instance instance(host());
  }
}

TEST(ProcessStateTest, HandlesAreCounted) {
  const size_t before = handleCount();
  EXPECT_GT(before, 0U);
  const GuardedBytes warm(1);
  EXPECT_EQ(handleCount(), before);
}

TEST(ProcessStateTest, HeapBlocksAreCounted) {
  const HeapUse before = heapUse();
  const auto block = std::make_unique<std::string>(100000, 'x');
  const HeapUse after = heapUse();
  EXPECT_GE(after.bytes, before.bytes + 100000);
  EXPECT_GE(after.blocks, before.blocks + 1);
}

}  // namespace
}  // namespace Vantrel::Web::Host
