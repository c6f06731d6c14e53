// A page function removes the element and lets the library go while the library waits for its
// return, as it may by a dialog of the browser's, whose message loop does the rest.
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

class PageUnloadTest : public ServedTest {
 protected:
  // What the page's function and the browser do in its only call.
  void leaveInCall(Host::PageReference& function, Instance& instance, const Kept& kept) {
    function->onCall = [this, &instance, kept](const Host::PageCall&) {
      EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR);
      instance.settle(kept);
      host().unload();
      EXPECT_TRUE(host().mapped());
    };
  }
  // The call has returned through the library's code, which is there until the browser takes
  // messages again.
  void expectRelease(const Host::PageReference& function) {
    EXPECT_TRUE(waitForCalls(function, 1));
    EXPECT_TRUE(host().pumpUntil([this] { return !host().mapped(); }));
  }
};

TEST_F(PageUnloadTest, AnAnswerKeepsTheLibraryToItsReturn) {
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  leaveInCall(function, instance, {});
  instance.call("vantrelHttpRequestAsync",
                {text("POST"), text("/some/path"), text("{}"), function.value()});
  expectRelease(function);
}

TEST_F(PageUnloadTest, AnEventKeepsTheLibraryToItsReturn) {
  Host::PageReference function = host().page.makeFunction("handler");
  Instance instance(host());
  leaveInCall(function, instance, {.objects = {{function.get(), 1}}, .running = function.get()});
  instance.set("eventHandler", function.value());
  instance.call("initSession", {text("an id"), text("")});
  expectRelease(function);
}

}  // namespace
}  // namespace Vantrel::Web
