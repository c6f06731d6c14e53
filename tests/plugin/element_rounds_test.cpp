// A thousand lives of an element within one life of the library: painted, dropped on, with dialogs
// and reads. After some rounds to warm up nothing grows any more.
#include <gmock/gmock.h>

#include "tests/host/process_growth.h"
#include "tests/host/process_state.h"
#include "tests/plugin/drop_fixture.h"
#include "tests/plugin/red_bitmap.h"
#include "tests/support/fake_file_dialogs_win.h"

namespace Vantrel::Web {
namespace {

using TestSupport::FakeFileDialogs;

constexpr char kUrl[] = "http://x/red.bmp";
constexpr size_t kWarmUpRounds = 100;
constexpr size_t kRounds = 1000;
// What the browser may look at for ever: a script object and its table, each with a link to the one
// before.
constexpr size_t kKeptBlocks = 2;
constexpr size_t kKeptBytes =
    sizeof(NPClass) + sizeof(void*) + sizeof(NPObject) + 2 * sizeof(void*);

class ElementRoundsTest : public DropTest {
 protected:
  void SetUp() override {
    DropTest::SetUp();
    // The host keeps every window of a page that it has made.
    host().page.address.window = Host::Step::kFails;
  }

  template <class Round>
  void repeat(Round round) {
    const auto rounds = [&](size_t count) {
      for (size_t i = 0; i < count && !HasFailure(); ++i) {
        round();
        host().urlRequests.clear();
      }
    };
    rounds(kWarmUpRounds);
    EXPECT_EQ(Host::growthOver([&rounds] { rounds(kRounds); },
                               {.blocks = kRounds * kKeptBlocks, .bytes = kRounds * kKeptBytes}),
              "");
    EXPECT_LT(0u, Host::graphicsObjects());
  }
};

TEST_F(ElementRoundsTest, MadePaintedAndDestroyed) {
  const std::string picture = redBitmap(30, 50);
  repeat([&] {
    Instance instance(host(), {{"transparent", "yes"}, {"image", kUrl}});
    instance.script();
    setWindow(instance);
    setWindow(instance);
    sendPicture(instance, kUrl, picture);
    EXPECT_EQ(painted(true), kRed);
    instance.end();
  });
}

TEST_F(ElementRoundsTest, WithDialogsReadsAndDrops) {
  FakeFileDialogs dialogs;
  dialogs.chosen = {toWide(path("ö.txt"))};
  const Host::PageReference function = host().page.makeFunction("page");
  repeat([&] {
    Instance instance(host(), {{"drop-mode", "callback"}, {"image", kUrl}});
    setWindow(instance);
    instance.set("eventHandler", function.value());
    EXPECT_EQ(drop({"a.txt"}), S_OK);
    instance.call("runOpenFileDialog", {Value::boolean(false), Value::boolean(false)});
    EXPECT_TRUE(isApproved(instance, "a.txt"));
    EXPECT_TRUE(isApproved(instance, "ö.txt"));
    instance.call("readChunkAsArrayBuffer",
                  {text(path("a.txt")), Value::number(1), Value::number(2)});
    instance.call("runOpenFileDialogAsync",
                  {text("T"), Value::boolean(true), text(""), function.value()});
    EXPECT_TRUE(waitForCalls(function, 3));
    sendPicture(instance, kUrl, redBitmap(2, 2));
    EXPECT_EQ(painted(), kRed);
    instance.set("eventHandler", Value::null());
    instance.end();
    function->calls.clear();
    dialogs.calls.clear();
  });
}

}  // namespace
}  // namespace Vantrel::Web
