// The counting container against a control that is clean until it is told to misbehave: every
// offence is seen, and nothing else is.
#include <gmock/gmock.h>

#include "tests/container/container_fixture.h"
#include "tests/container/page_object_win.h"
#include "tests/container/probe_control.h"

namespace Vantrel::Web::Container {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CountingContainerTest : public ContainerTest {
 protected:
  void SetUp() override { open(kProbeLibrary); }

  // Faults of one control on which the page makes one call.
  std::vector<std::string> faultsOf(const char* method) {
    {
      Control control(container(), kProbeClassId);
      control.call(method);
    }
    return finish();
  }
};

TEST_F(CountingContainerTest, ACleanControlLeavesNothing) {
  {
    Control control(container(), kProbeClassId);
    EXPECT_GT(control.site().taken(), 0);
  }
  EXPECT_THAT(finish(), IsEmpty());
}

TEST_F(CountingContainerTest, ValuesPassBothWays) {
  Control control(container(), kProbeClassId);
  for (const Variant& value :
       {Variant::text("a text \xC3\xA4"), Variant::text(std::string("a\0b", 3)), Variant::text(""),
        Variant::integer(-7), Variant::real(1.5), Variant::boolean(true), Variant::null(),
        Variant(), Variant::missing()}) {
    const CallResult result = control.call("echo", {value});
    EXPECT_EQ(result.result, S_OK);
    EXPECT_EQ(result.value.describe(), value.describe());
  }
}

TEST_F(CountingContainerTest, ErrorsAreToldAsAScriptHearsThem) {
  Control control(container(), kProbeClassId);
  const CallResult refused = control.call("refuse");
  EXPECT_EQ(refused.result, DISP_E_EXCEPTION);
  EXPECT_EQ(refused.error, "the probe refuses");
  EXPECT_EQ(refused.code, 16U);
  EXPECT_EQ(control.call("echo").result, DISP_E_BADPARAMCOUNT);
  EXPECT_FALSE(control.call("noSuchMethod").accepted());
}

TEST_F(CountingContainerTest, ParametersReachTheControlByNamesInAnyCase) {
  Control control(container(), kProbeClassId, {.parameters = {{"greeting", "hello"}}});
  EXPECT_EQ(control.loaded(), S_OK);
  EXPECT_EQ(control.call("greeting").value.describe(), "text \"hello\"");
  EXPECT_THAT(control.bag().asked(), ElementsAre("greeting"));
}

TEST_F(CountingContainerTest, EventsReachTheSink) {
  auto& sink = container().book.make<EventSink>("sink", kProbeEventsId);
  Control control(container(), kProbeClassId);
  DWORD connection = 0;
  ASSERT_EQ(control.connect(sink, kProbeEventsId, connection), S_OK);
  control.call("fire", {Variant::text("one")});
  ASSERT_EQ(sink.events.size(), 1U);
  EXPECT_EQ(sink.events[0].id, kProbeEvent);
  EXPECT_EQ(sink.events[0].arguments.at(0).asText(), "one");
  ASSERT_EQ(control.disconnect(kProbeEventsId, connection), S_OK);
  control.call("fire", {Variant::text("two")});
  EXPECT_EQ(sink.events.size(), 1U);
}

TEST_F(CountingContainerTest, AFunctionThatTheControlKeepsIsGivenBackWithIt) {
  auto& function = container().book.make<PageFunction>("callback");
  {
    Control control(container(), kProbeClassId);
    control.call("later", {Variant::of(&function)});
    EXPECT_EQ(function.references(), 1);
  }
  EXPECT_EQ(function.references(), 0);
}

TEST_F(CountingContainerTest, ASiteThatIsKeptIsSeen) {
  EXPECT_THAT(faultsOf("leakSite"), ElementsAre("site: 1 references were never released"));
}

TEST_F(CountingContainerTest, ASiteThatIsReleasedTooOftenIsSeen) {
  EXPECT_THAT(faultsOf("overReleaseSite"), ElementsAre("site: released once too often"));
}

TEST_F(CountingContainerTest, ACallFromAnotherThreadIsSeen) {
  EXPECT_THAT(faultsOf("callOffThread"),
              ElementsAre("site::AddRef called off the browser's thread",
                          "site::Release called off the browser's thread"));
}

TEST_F(CountingContainerTest, AnotherMemberOfTheDocumentIsSeen) {
  EXPECT_THAT(faultsOf("callStub"), ElementsAre(HasSubstr("another member")));
}

TEST_F(CountingContainerTest, AControlThatIsKeptIsSeen) {
  EXPECT_THAT(faultsOf("leakSelf"), ElementsAre("control: 1 references were left, 0 are known",
                                                "the library says that it is still in use"));
}

TEST_F(CountingContainerTest, ALibraryThatSaysItIsInUseIsSeen) {
  EXPECT_THAT(faultsOf("stayLocked"), ElementsAre("the library says that it is still in use"));
}

TEST_F(CountingContainerTest, AControlThatNobodyEndsIsSeen) {
  auto control = std::make_unique<Control>(container(), kProbeClassId);
  EXPECT_THAT(container().finish(), Contains("1 controls were never released"));
  control.reset();
}

}  // namespace
}  // namespace Vantrel::Web::Container
