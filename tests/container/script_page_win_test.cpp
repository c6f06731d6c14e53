// The platform's script engines as pages: printing, JSON, timers, errors with their place, controls
// and functions in both directions.
#include <gmock/gmock.h>

#include "tests/container/container_fixture.h"
#include "tests/container/probe_control.h"
#include "tests/container/script_page_win.h"

namespace Vantrel::Web::Container {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ScriptPageTest : public ContainerTest {
 protected:
  void SetUp() override { open(kProbeLibrary); }
};

TEST_F(ScriptPageTest, AScriptPrintsAndKnowsJson) {
  ScriptPage page(container(), Language::kJScript);
  EXPECT_TRUE(page.run("print(JSON.stringify({a: [1, JSON.parse('\"\\u00e4\"')]}));"));
  EXPECT_THAT(page.printed, ElementsAre("{\"a\":[1,\"\xC3\xA4\"]}"));
  EXPECT_EQ(page.evaluate("1 + 2").describe(), "I4 3");
  EXPECT_EQ(page.evaluate("'a' + 'b'").describe(), "text \"ab\"");
}

TEST_F(ScriptPageTest, AnErrorIsToldWithItsPlace) {
  ScriptPage page(container(), Language::kJScript);
  EXPECT_FALSE(page.run("var a = 1;\nthrow new Error('my words');"));
  ASSERT_THAT(page.engine().errors(), SizeIs(1));
  EXPECT_EQ(page.engine().errors()[0].text, "my words");
  EXPECT_EQ(page.engine().errors()[0].line, 2U);
  EXPECT_FALSE(page.run("this is no script"));
  EXPECT_THAT(page.engine().errors(), SizeIs(2));
}

TEST_F(ScriptPageTest, TimersRunInTheMessageLoop) {
  ScriptPage page(container(), Language::kJScript);
  EXPECT_TRUE(
      page.run("var n = 0;\n"
               "setTimeout(function () { print('once'); }, 5);\n"
               "var t = setInterval(function () {\n"
               "  print('n' + ++n);\n"
               "  if (n === 3) clearInterval(t);\n"
               "}, 5);\n"
               "clearTimeout(setTimeout(function () { print('never'); }, 0));\n"));
  EXPECT_THAT(page.printed, IsEmpty());
  EXPECT_TRUE(container().pumpUntil([&page] { return page.timers() == 0; }));
  EXPECT_THAT(page.printed, testing::UnorderedElementsAre("once", "n1", "n2", "n3"));
}

TEST_F(ScriptPageTest, AnErrorOfATimerIsToldToo) {
  ScriptPage page(container(), Language::kJScript);
  EXPECT_TRUE(page.run("setTimeout(function () { throw new Error('late'); }, 0);"));
  EXPECT_TRUE(container().pumpUntil([&page] { return page.timers() == 0; }));
  ASSERT_THAT(page.engine().errors(), SizeIs(1));
  EXPECT_EQ(page.engine().errors()[0].text, "late");
}

TEST_F(ScriptPageTest, AControlAnswersAndRefuses) {
  Control control(container(), kProbeClassId);
  ScriptPage page(container(), Language::kJScript);
  page.add("plugin", control.unknown());
  EXPECT_TRUE(
      page.run("print(plugin.echo('text'));\n"
               "try { plugin.refuse(); } catch (e) { print(e.message); }\n"
               "try { plugin.none(); } catch (e) { print('none: ' + (e instanceof Error)); }\n"));
  EXPECT_THAT(page.printed, ElementsAre("text", "the probe refuses", "none: true"));
}

TEST_F(ScriptPageTest, FunctionsOfAPageAreGivenBackWithIt) {
  Control control(container(), kProbeClassId);
  {
    ScriptPage page(container(), Language::kJScript);
    page.add("plugin", control.unknown());
    auto& sink = container().book.make<EventSink>("sink", kProbeEventsId);
    DWORD connection = 0;
    ASSERT_EQ(control.connect(sink, kProbeEventsId, connection), S_OK);
    EXPECT_TRUE(page.run("plugin.later(function () {}); plugin.fire('x');"));
    EXPECT_THAT(sink.events, SizeIs(1));
  }
}

TEST_F(ScriptPageTest, VBScriptIsAPageToo) {
  Control control(container(), kProbeClassId);
  ScriptPage page(container(), Language::kVBScript);
  page.add("plugin", control.unknown());
  EXPECT_TRUE(
      page.run("print plugin.echo(\"basic\")\n"
               "On Error Resume Next\n"
               "plugin.refuse\n"
               "print Err.Description\n"));
  EXPECT_THAT(page.printed, ElementsAre("basic", "the probe refuses"));
}

TEST_F(ScriptPageTest, AnErrorInVBScriptIsTold) {
  ScriptPage page(container(), Language::kVBScript);
  EXPECT_FALSE(page.run("print 1\nErr.Raise 5, \"me\", \"my words\"\n"));
  ASSERT_THAT(page.engine().errors(), SizeIs(1));
  EXPECT_THAT(page.engine().errors()[0].text, HasSubstr("my words"));
  EXPECT_THAT(page.printed, ElementsAre("1"));
}

}  // namespace
}  // namespace Vantrel::Web::Container
