// The examples of the page reference against both faces: each runs without a script error and shows
// what its comments say.
#include <gmock/gmock.h>
#include <shobjidl.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/faces/faces_fixture.h"
#include "tests/faces/reference_examples.h"
#include "text/text.h"
#include "text/wide_text.h"

namespace Vantrel::Web::Faces {
namespace {

using Container::Variant;
using Container::Variants;
using testing::Contains;
using testing::ElementsAreArray;
using testing::HasSubstr;

// Where the user's files are in the text of the examples.
constexpr char kChosen[] = "C:\\chosen";

std::string referenceText() {
  std::ifstream file(OV_PAGE_REFERENCE, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A path as it stands in a literal of the script, and in the lists of the dialogs that wait.
std::string doubled(const std::string& path) {
  return replaceAll(path, "\\", "\\\\");
}
std::string escaped(const std::string& path) {
  return replaceAll(doubled(path), ":", "\\:");
}

// Whether the dialog that these calls have made is one for folders.
bool asksForFolders(const std::vector<std::string>& calls) {
  constexpr std::string_view kCall = "SetOptions ";
  bool folders = false;
  for (const std::string& call : calls) {
    if (call.rfind(kCall, 0) != 0) continue;
    folders = (std::stoul(call.substr(kCall.size())) & FOS_PICKFOLDERS) != 0;
  }
  return folders;
}

class PageReferenceTest : public FacesTest {
 protected:
  void SetUp() override {
    chosen_ = file_.substr(0, file_.rfind('\\'));
    ov::TempFolder::write(chosen_ + "\\report.txt", "Hello");
    std::filesystem::create_directory(ov::TempFolder::native(chosen_ + "\\data"));
    dialogs_->results.erase("Show");
  }

  void runAll(Kind kind) {
    const std::vector<Example> examples = readExamples(referenceText());
    EXPECT_GT(examples.size(), 20U);
    for (const Example& example : examples) {
      const bool other = kind == Kind::kNetscape ? example.activeXOnly : example.netscapeOnly;
      if (!other) runOne(kind, example);
    }
  }

 private:
  // The user chooses in the next dialog.
  void expectDialog() {
    dialogs_->calls.clear();
    dialogs_->onShow = [this] {
      const bool folders = asksForFolders(dialogs_->calls);
      dialogs_->chosen = {toWide(chosen_ + (folders ? "\\data" : "\\report.txt"))};
    };
  }

  void runOne(Kind kind, const Example& example) {
    SCOPED_TRACE(example.heading + ", line " + std::to_string(example.line));
    const std::vector<std::string>& expected =
        kind == Kind::kNetscape ? example.netscape : example.activeX;
    ASSERT_FALSE(expected.empty());
    expectDialog();
    server_.always("/any/path", TestSupport::Script::reply("{\"a\":1}"));
    open(kind, true, {{"drop-mode", "callback"}});
    std::vector<std::string> shown;
    page().addFunction("shown", [&](const Variants& arguments, Variant&) {
      shown.push_back(asWritten(arguments.at(0).asText()));
      return S_OK;
    });
    run("function show(value) { shown(render(value)); }");
    run(replaceAll(example.script, doubled(kChosen), doubled(chosen_)));
    if (example.drop) {
      EXPECT_EQ(face().drop({toWide(chosen_ + "\\report.txt")}), S_OK);
    }
    face().pumpUntil([&] { return shown.size() >= expected.size(); });
    EXPECT_THAT(shown, ElementsAreArray(expected));
    close();
  }

  // What was shown with the user's folder as the text has it.
  std::string asWritten(std::string shown) const {
    shown = replaceAll(shown, escaped(chosen_), escaped(kChosen));
    shown = replaceAll(shown, doubled(chosen_), doubled(kChosen));
    return replaceAll(shown, chosen_, kChosen);
  }

  std::string chosen_;
};

TEST_F(PageReferenceTest, ItsExamplesAreTrueOfTheNetscapeFace) {
  runAll(Kind::kNetscape);
}

TEST_F(PageReferenceTest, ItsExamplesAreTrueOfTheActiveXFace) {
  runAll(Kind::kActiveX);
}

TEST(PageReferenceTextTest, EachMemberHasAnExample) {
  const std::string text = referenceText();
  std::vector<std::string> withExample;
  for (const Example& example : readExamples(text)) withExample.push_back(example.heading);
  for (const std::string& heading : memberHeadings(text))
    EXPECT_THAT(withExample, Contains(heading));
}

TEST(PageReferenceTextTest, EachMethodAndPropertyIsThere) {
  const std::string text = referenceText();
  for (const char* const name : {"name",
                                 "eventHandler",
                                 "dropObserver",
                                 "startDownload(",
                                 "startDownloadToPath(",
                                 "startUploadToURL(",
                                 "runOpenFileDialog(",
                                 "runSaveFileDialog(",
                                 "addToDownloadList(",
                                 "addToUploadList(",
                                 "clearDownloadList(",
                                 "clearUploadList(",
                                 "startListDownloadToPath(",
                                 "startListUploadToURL(",
                                 "displayTransferManager(",
                                 "displayAboutWindow(",
                                 "displayPreferencesWindow(",
                                 "queryVersion(",
                                 "queryBrowserEngine(",
                                 "queryBuildVersion(",
                                 "runOpenFolderDialog(",
                                 "vantrelHttpRequest(",
                                 "vantrelHttpRequestAsync(",
                                 "runOpenFileDialogAsync(",
                                 "runSaveFileDialogAsync(",
                                 "runOpenFolderDialogAsync(",
                                 "initSession(",
                                 "queryPluginVersion(",
                                 "handleDrop(",
                                 "queryVantrelVersion(",
                                 "readAsArrayBuffer(",
                                 "readChunkAsArrayBuffer(",
                                 "httpRequestImplementation("}) {
    bool found = false;
    for (const std::string& heading : memberHeadings(text))
      found = found || heading.find("`" + std::string(name)) != std::string::npos;
    EXPECT_TRUE(found) << name;
  }
}

}  // namespace
}  // namespace Vantrel::Web::Faces
