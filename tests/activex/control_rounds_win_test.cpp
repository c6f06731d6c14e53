// Many whole lives of the control in one process: load, control, session, request, release, unload.
// After some rounds to warm up nothing grows any more.
#include <gtest/gtest.h>

#include "tests/activex/control_fixture.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::ActiveX {
namespace {

constexpr int kWarmUpRounds = 20;
constexpr int kRounds = 200;

struct Use {
  size_t threads;
  size_t handles;
  Host::HeapUse heap;
};

Use useNow() {
  return {Host::threadIds().size(), Host::handleCount(), Host::heapUse()};
}

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
  const Use before = useNow();
  for (int i = kWarmUpRounds; i < kRounds && !HasFailure(); ++i) round();
  const Use after = useNow();
  EXPECT_EQ(after.threads, before.threads);
  EXPECT_EQ(after.handles, before.handles);
  EXPECT_EQ(after.heap.blocks, before.heap.blocks);
  EXPECT_EQ(after.heap.bytes, before.heap.bytes);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
