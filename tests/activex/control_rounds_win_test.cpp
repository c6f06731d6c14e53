// Many whole lives of the control in one process: load, control, session, request, release, unload.
// After some rounds to warm up nothing grows any more.
#include <gtest/gtest.h>

#include "tests/activex/control_fixture.h"
#include "tests/host/process_growth.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::ActiveX {
namespace {

constexpr int kWarmUpRounds = 20;
constexpr int kRounds = 180;

class ControlRoundsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(OleInitialize(nullptr), S_OK); }
  void TearDown() override { OleUninitialize(); }

  void round() {
    const TestSupport::ScriptedServer server;
    profile_.writeServiceUrl(server.url() + "\nkey");
    Container::ControlLibrary library(Host::programDirectory() + kControlLibrary);
    Container::CountingContainer container(library);
    {
      auto& function = container.book.make<PageFunction>("callback");
      Control control(container, kControlClassId);
      control.set("eventHandler", Variant::of(&function));
      control.call("initSession", {Variant::text("my app"), Variant::text("")});
      control.call("vantrelHttpRequestAsync", {Variant::text("POST"), Variant::text("/path"),
                                               Variant::text("{}"), Variant::of(&function)});
      EXPECT_EQ(control
                    .call("vantrelHttpRequest",
                          {Variant::text("POST"), Variant::text("/path"), Variant::text("")})
                    .value.asText(),
                "{}");
      ASSERT_TRUE(container.pumpUntil([&function] { return !function.calls.empty(); }));
    }
    for (const std::string& fault : container.finish()) ADD_FAILURE() << fault;
  }

  const Host::ScratchProfile profile_;
};

TEST_F(ControlRoundsTest, NothingGrowsFromRoundToRound) {
  for (int i = 0; i < kWarmUpRounds && !HasFailure(); ++i) round();
  const auto rounds = [this] {
    for (int i = 0; i < kRounds && !HasFailure(); ++i) round();
  };
  EXPECT_EQ(Host::growthOver(rounds, {}), "");
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
