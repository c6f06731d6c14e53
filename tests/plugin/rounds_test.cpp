// Many whole lives of the library in one process: load, instance, session, request, destroy,
// unload. After some rounds to warm up nothing grows any more.
#include <gtest/gtest.h>

#include <memory>

#include "tests/host/process_growth.h"
#include "tests/host/process_state.h"
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using Host::CountingHost;

constexpr int kWarmUpRounds = 20;
constexpr size_t kRounds = 180;
// The sizes of these, each with a link to the one before.
constexpr size_t kKeptTable = sizeof(NPClass) + sizeof(void*);
constexpr size_t kKeptObject = sizeof(NPObject) + 2 * sizeof(void*);

class RoundsTest : public testing::Test {
 protected:
  void round() {
    const ScriptedServer server;
    profile_.writeServiceUrl(server.url() + "\nkey");
    CountingHost host(Host::programDirectory() + kPluginLibrary);
    ASSERT_EQ(host.initialize(), NPERR_NO_ERROR);
    ASSERT_EQ(host.getEntryPoints(), NPERR_NO_ERROR);
    {
      Host::PageReference function = host.page.makeFunction("callback");
      Instance instance(host);
      instance.set("eventHandler", function.value());
      instance.call("initSession", {Value::string("my app"), Value::string("")});
      instance.call("vantrelHttpRequestAsync", {Value::string("POST"), Value::string("/path"),
                                                Value::string("{\"a\":[1]}"), function.value()});
      EXPECT_EQ(instance
                    .call("vantrelHttpRequest",
                          {Value::string("POST"), Value::string("/path"), Value::string("")})
                    .value,
                Value::string("{}"));
      ASSERT_TRUE(host.pumpUntil([&function] { return !function->calls.empty(); }));
      instance.end({.objects = {{function.get(), 1}}});
    }
    for (const std::string& fault : host.finish()) ADD_FAILURE() << fault;
  }

  const Host::ScratchProfile profile_;
};

TEST_F(RoundsTest, NothingGrowsFromRoundToRound) {
  for (int i = 0; i < kWarmUpRounds && !HasFailure(); ++i) round();
  const auto rounds = [this] {
    for (size_t i = 0; i < kRounds && !HasFailure(); ++i) round();
  };
  // But for what the browser may look at for ever: the script object of a round and its table.
  EXPECT_EQ(Host::growthOver(
                rounds, {.blocks = 2 * kRounds, .bytes = kRounds * (kKeptTable + kKeptObject)}),
            "");
}

}  // namespace
}  // namespace Vantrel::Web
