// The control in pages of both script languages of the platform: values as each language hands them
// over, errors with their texts, callbacks in the page's message loop.
#include <gmock/gmock.h>

#include <optional>

#include "tests/activex/control_fixture.h"
#include "tests/container/script_page_win.h"
#include "tests/support/fake_file_dialogs_win.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"

namespace Vantrel::Web::ActiveX {
namespace {

using Container::Language;
using Container::ScriptPage;
using testing::ElementsAre;
using testing::IsEmpty;

class ScriptPagesTest : public ServedControlTest {
 protected:
  void SetUp() override {
    ServedControlTest::SetUp();
    file_ = folder_.path("a.txt");
    ov::TempFolder::write(file_, "Hello");
    dialogs_.emplace();
    dialogs_->chosen = {toWide(file_)};
    control_ = makeControl();
  }
  void TearDown() override {
    page_.reset();
    control_.reset();
    dialogs_.reset();
    ServedControlTest::TearDown();
  }

  void open(Language language) {
    page_.emplace(container(), language);
    page_->add("plugin", control_->unknown());
    page_->addFunction("chosenFile", [this](const Variants&, Variant& result) {
      result = Variant::text(file_);
      return S_OK;
    });
  }

  ov::TempFolder folder_;
  std::string file_;
  std::optional<TestSupport::FakeFileDialogs> dialogs_;
  std::unique_ptr<Control> control_;
  std::optional<ScriptPage> page_;
};

TEST_F(ScriptPagesTest, VBScriptHandsItsVariablesOverByReference) {
  open(Language::kVBScript);
  EXPECT_TRUE(
      page_->run("Dim id, from, size, path\n"
                 "id = \"my app\" : from = 1 : size = CLng(2) : path = chosenFile()\n"
                 "print plugin.initSession(id, id)\n"
                 "plugin.name = id\n"
                 "print plugin.name\n"
                 "plugin.runOpenFileDialog False, True\n"
                 "print plugin.readAsArrayBuffer(path)\n"
                 "print plugin.readChunkAsArrayBuffer(path, from, size)\n"
                 "print plugin.readChunkAsArrayBuffer(path, CByte(0), CInt(1))\n"));
  EXPECT_THAT(page_->printed,
              ElementsAre("{\"app_id\":\"my app\"}", "my app", "data:text/plain;base64,SGVsbG8=",
                          "data:text/plain;base64,ZWw=", "data:text/plain;base64,SA=="));
}

TEST_F(ScriptPagesTest, VBScriptHearsWhyACallFailed) {
  server_.always("/windows/about/", TestSupport::Script());
  open(Language::kVBScript);
  EXPECT_TRUE(
      page_->run("On Error Resume Next\n"
                 "plugin.displayAboutWindow\n"
                 "print Err.Description\n"
                 "Err.Clear\n"
                 "plugin.startDownload\n"
                 "print CStr(Err.Number <> 0)\n"));
  EXPECT_THAT(page_->printed, ElementsAre(kContactError, "True"));
}

TEST_F(ScriptPagesTest, AnErrorThatNoScriptCatchesEndsIt) {
  server_.always("/windows/about/", TestSupport::Script());
  open(Language::kJScript);
  EXPECT_FALSE(page_->run("print('before');\nplugin.displayAboutWindow();\nprint('behind');"));
  EXPECT_THAT(page_->printed, ElementsAre("before"));
  ASSERT_EQ(page_->engine().errors().size(), 1U);
  EXPECT_EQ(page_->engine().errors()[0].text, kContactError);
  EXPECT_EQ(page_->engine().errors()[0].line, 2U);
}

TEST_F(ScriptPagesTest, ACallbackThatThrowsIsToldAndTheNextComes) {
  open(Language::kJScript);
  EXPECT_TRUE(
      page_->run("function send(f) { plugin.vantrelHttpRequestAsync('GET', '/a', '{}', f); }\n"
                 "send(function () { throw new Error('mine'); });\n"
                 "send(function (reply) { print(reply); });"));
  EXPECT_TRUE(container().pumpUntil([this] { return !page_->printed.empty(); }));
  EXPECT_THAT(page_->printed, ElementsAre("{}"));
  ASSERT_EQ(page_->engine().errors().size(), 1U);
  EXPECT_EQ(page_->engine().errors()[0].text, "mine");
}

TEST_F(ScriptPagesTest, AClosedPagesFunctionsAreNotCalled) {
  open(Language::kJScript);
  EXPECT_TRUE(page_->run(
      "plugin.vantrelHttpRequestAsync('GET', '/a', '{}', function (reply) { print(reply); });"));
  EXPECT_TRUE(server_.waitForRequests("/a", 1));
  page_->engine().close();
  container().pumpFor(300);
  EXPECT_THAT(page_->printed, IsEmpty());
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
