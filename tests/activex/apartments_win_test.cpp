// Two apartments at once, each with a container and controls of its own: neither sees anything of
// the other, and no reference is counted on a foreign thread.
#include <array>
#include <thread>

#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

using Container::CountingContainer;
using TestSupport::Script;

constexpr char kPath[] = "/some/path";
constexpr int kRounds = 10;

// What one apartment has seen.
struct Outcome {
  int answers = 0;
  int transfers = 0;
  std::vector<std::string> faults;
};

void livePage(CountingContainer& container, const std::string& id, Outcome& outcome) {
  auto& callback = container.book.make<PageFunction>("callback");
  auto& handler = container.book.make<PageFunction>("handler");
  Control control(container, kControlClassId);
  control.set("eventHandler", Variant::of(&handler));
  control.set("name", Variant::text(id));
  control.call("initSession", {Variant::text(id), Variant::text("")});
  control.call("vantrelHttpRequestAsync", {Variant::text("POST"), Variant::text(kPath),
                                           Variant::text("{}"), Variant::of(&callback)});
  container.pumpUntil([&] { return !callback.calls.empty() && !handler.calls.empty(); });
  outcome.answers += callback.texts() == std::vector<std::string>{"{\"answer\":1}"} ? 1 : 0;
  outcome.transfers += handler.calls.empty() ? 0 : 1;
  if (control.get("name").value.asText() != id) outcome.faults.push_back("a name of another");
}

void liveApartment(Container::ControlLibrary& library, const std::string& id, Outcome& outcome) {
  CountingContainer container(library);
  for (int i = 0; i < kRounds; ++i) livePage(container, id, outcome);
  for (std::string& fault : container.finish()) outcome.faults.push_back(std::move(fault));
}

class ApartmentsTest : public ServedControlTest {};

TEST_F(ApartmentsTest, TwoLiveBesideEachOther) {
  server_.always(kPath, Script::reply("{\"answer\":1}"));
  std::array<Outcome, 2> outcomes;
  std::thread other([&] { liveApartment(library(), "the other", outcomes[0]); });
  for (int i = 0; i < kRounds; ++i) livePage(container(), "the one", outcomes[1]);
  other.join();
  for (const Outcome& outcome : outcomes) {
    EXPECT_EQ(outcome.answers, kRounds);
    EXPECT_EQ(outcome.transfers, kRounds);
    EXPECT_TRUE(outcome.faults.empty()) << outcome.faults.front();
  }
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
