#include "dialogs/native_dialogs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <thread>

#include "dialogs/shown_dialog.h"
#include "tests/support/log_recorder.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogRecorder;

using Paths = std::vector<std::string>;

// What the next dialog does, what it was made of, and what happened to it.
std::function<Paths()> onShow;
std::string madeOf;
int shows = 0;
int cancels = 0;
int living = 0;

class FakeImpl : public IDialogImpl {
 public:
  FakeImpl() { ++living; }
  ~FakeImpl() override { --living; }
  void cancel() override { ++cancels; }
  Paths doShow() override {
    ++shows;
    return onShow();
  }
};

std::string flags(std::initializer_list<bool> values) {
  std::string text;
  for (const bool value : values) text += value ? '1' : '0';
  return text;
}

int parentMark = 0;
void* const kParent = &parentMark;

}  // namespace

std::unique_ptr<IDialogImpl> newOpenFileDialogImpl(void* parentWindow, const std::string& title,
                                                   bool allowDirectories, bool allowMultiple,
                                                   const std::string& fileTypes) {
  madeOf = "open " + flags({parentWindow == kParent, allowDirectories, allowMultiple}) + " " +
           title + " " + fileTypes;
  return std::make_unique<FakeImpl>();
}

std::unique_ptr<IDialogImpl> newOpenFolderDialogImpl(void* parentWindow, const std::string& title,
                                                     bool allowMultiple) {
  madeOf = "folder " + flags({parentWindow == kParent, allowMultiple}) + " " + title;
  return std::make_unique<FakeImpl>();
}

std::unique_ptr<IDialogImpl> newSaveFileDialogImpl(void* parentWindow, const std::string& title,
                                                   const std::string& suggestedName,
                                                   const std::string& fileTypes) {
  madeOf = "save " + flags({parentWindow == kParent}) + " " + title + " " + suggestedName + " " +
           fileTypes;
  return std::make_unique<FakeImpl>();
}

namespace {

class NativeDialogsTest : public testing::Test {
 protected:
  NativeDialogsTest() {
    onShow = [] { return Paths{"C:\\a.txt", "C:\\b c.txt"}; };
    shows = cancels = 0;
  }
  ~NativeDialogsTest() override { EXPECT_EQ(living, 0); }

  OpenFileDialog openFile(bool extendedInfo = false) {
    return {kParent, "Title", true, false, "types", extendedInfo};
  }
};

TEST_F(NativeDialogsTest, EachKindMakesItsPlatformDialogOfWhatWasAsked) {
  OpenFileDialog open = openFile();
  open.createDialogImpl();
  EXPECT_EQ(madeOf, "open 110 Title types");
  OpenFolderDialog folder(kParent, "T", true, false);
  folder.createDialogImpl();
  EXPECT_EQ(madeOf, "folder 11 T");
  SaveFileDialog save(nullptr, "T", "name.txt", "types");
  save.createDialogImpl();
  EXPECT_EQ(madeOf, "save 0 T name.txt types");
}

TEST_F(NativeDialogsTest, ConstructorsTellWhatWasAsked) {
  const LogRecorder log;
  openFile();
  const OpenFolderDialog folder(nullptr, "T", true, false);
  const SaveFileDialog save(nullptr, "T", "name.txt", "types");
  EXPECT_THAT(log.lines(),
              ElementsAre("LOG OpenFileDialog() - title=Title, allowDirectories=1, "
                          "allowMultiple=0, fileTypes=types",
                          "DBG SaveFileDialog::SaveFileDialog() - suggestedName=name.txt"));
}

TEST_F(NativeDialogsTest, WithoutAPlatformDialogNothingIsChosen) {
  OpenFileDialog dialog = openFile();
  EXPECT_THAT(dialog.show(), IsEmpty());
  EXPECT_EQ(dialog.result(), 0);
  EXPECT_EQ(dialog.resultText(), "");
  dialog.stop();
  EXPECT_TRUE(dialog.stopped());
}

TEST_F(NativeDialogsTest, AnOpenedListIsAnArrayWithDoubledBackslashes) {
  OpenFileDialog dialog = openFile();
  dialog.createDialogImpl();
  EXPECT_THAT(dialog.show(), ElementsAre("C:\\a.txt", "C:\\b c.txt"));
  EXPECT_EQ(dialog.resultText(), R"(["C:\\a.txt","C:\\b c.txt"])");
  EXPECT_EQ(dialog.result(), 4);
}

TEST_F(NativeDialogsTest, ExtendedInfoIsTheDataTransferDocument) {
  onShow = [] { return Paths{}; };
  OpenFileDialog files = openFile(true);
  files.createDialogImpl();
  files.show();
  EXPECT_EQ(files.resultText(), R"({"dataTransfer":{"files":[]}})");
  OpenFolderDialog folders(nullptr, "", true, true);
  folders.createDialogImpl();
  folders.show();
  EXPECT_EQ(folders.resultText(), R"({"dataTransfer":{"files":[]}})");
}

TEST_F(NativeDialogsTest, NothingChosenIsAnEmptyArrayOrNull) {
  onShow = [] { return Paths{}; };
  OpenFileDialog file = openFile();
  file.createDialogImpl();
  file.run();
  EXPECT_EQ(file.resultText(), "[]");
  OpenFolderDialog folder(nullptr, "", false, false);
  folder.createDialogImpl();
  folder.run();
  EXPECT_EQ(folder.resultText(), "[]");
  SaveFileDialog save(nullptr, "", "", "");
  save.createDialogImpl();
  save.run();
  EXPECT_EQ(save.resultText(), "null");
}

TEST_F(NativeDialogsTest, ASavePathIsQuoted) {
  SaveFileDialog save(nullptr, "", "", "");
  save.createDialogImpl();
  save.run();
  EXPECT_EQ(save.resultText(), R"("C:\\a.txt")");
  EXPECT_THAT(save.chosenPaths(), ElementsAre("C:\\a.txt", "C:\\b c.txt"));
}

TEST_F(NativeDialogsTest, AnEarlierOutcomeIsForgottenByAFailingShow) {
  OpenFileDialog dialog = openFile();
  dialog.createDialogImpl();
  dialog.show();
  onShow = []() -> Paths { throw std::runtime_error("no dialog"); };
  EXPECT_THROW(dialog.show(), std::runtime_error);
  EXPECT_THAT(dialog.chosenPaths(), IsEmpty());
  EXPECT_EQ(dialog.resultText(), "");
}

template <class Dialog>
std::string failedText(Dialog dialog) {
  const LogRecorder log;
  dialog.createDialogImpl();
  dialog.run();
  EXPECT_THAT(dialog.chosenPaths(), IsEmpty());
  EXPECT_EQ(log.lines("ERR").size(), 1u);
  return log.lines("ERR").at(0) + "|" + dialog.resultText();
}

TEST_F(NativeDialogsTest, WhatAnAsynchronousDialogThrowsIsLoggedAndItsAnswer) {
  onShow = []() -> Paths { throw std::runtime_error("100%s \"x\""); };
  const auto expected = [](const std::string& text) {
    return text + ": 100%s \"x\"|" +
           R"({"error":{"code":-1,"internal_message":"Invalid request","user_message":")" + text +
           ": 100%s \"x\"\"}}";
  };
  EXPECT_EQ(failedText<OpenFileDialog>({nullptr, "", false, false, "", false}),
            expected("Error displaying open file dialog"));
  EXPECT_EQ(failedText<OpenFolderDialog>({nullptr, "", false, false}),
            expected("Error displaying open folder dialog"));
  EXPECT_EQ(failedText<SaveFileDialog>({nullptr, "", "", ""}),
            expected("Error displaying save file dialog"));
}

// Shown from the message loop of the one before, until one is refused.
TEST_F(NativeDialogsTest, AThreadShowsOnlySoManyOneInsideTheOther) {
  const LogRecorder log;
  std::vector<std::string> answers;  // the innermost first
  onShow = [&] {
    if (shows == kMostShownDialogs) {
      OpenFileDialog now = openFile();
      now.createDialogImpl();
      EXPECT_THROW(now.show(), std::runtime_error);
      EXPECT_TRUE(ShownDialog::mostAreShown());
      // Another thread has a stack of its own.
      std::thread([] { EXPECT_FALSE(ShownDialog::mostAreShown()); }).join();
    }
    OpenFileDialog next = openFile();
    next.createDialogImpl();
    next.run();
    answers.push_back(next.resultText());
    return Paths{"C:/a"};
  };
  OpenFileDialog first = openFile();
  first.createDialogImpl();
  first.run();
  EXPECT_EQ(shows, kMostShownDialogs);
  ASSERT_EQ(answers.size(), static_cast<size_t>(kMostShownDialogs));
  EXPECT_EQ(answers.front(), jsonErrorReply(kErrorDialogOpen));
  EXPECT_EQ(answers.back(), R"(["C:/a"])");
  EXPECT_THAT(log.lines("ERR"), ElementsAre(kErrorDialogOpen));
  EXPECT_FALSE(ShownDialog::mostAreShown());
}

TEST_F(NativeDialogsTest, ADialogThatFailsIsShownNoMore) {
  onShow = []() -> Paths { throw std::runtime_error("no dialog"); };
  for (int i = 0; i < 2 * kMostShownDialogs; ++i) {
    OpenFileDialog dialog = openFile();
    dialog.createDialogImpl();
    EXPECT_THROW(dialog.show(), std::runtime_error);
  }
  EXPECT_EQ(shows, 2 * kMostShownDialogs);
}

TEST_F(NativeDialogsTest, StoppedBeforeItsTurnItNeverShows) {
  OpenFileDialog dialog = openFile();
  dialog.createDialogImpl();
  dialog.stop();
  EXPECT_TRUE(dialog.stopped());
  EXPECT_EQ(cancels, 1);
  dialog.run();
  EXPECT_EQ(shows, 0);
  EXPECT_EQ(dialog.resultText(), "");
}

TEST_F(NativeDialogsTest, StoppedWhileShownItsOutcomeIsStillItsOwn) {
  OpenFileDialog dialog = openFile();
  dialog.createDialogImpl();
  onShow = [&dialog] {
    dialog.stop();
    return Paths{"C:/late"};
  };
  dialog.run();
  EXPECT_TRUE(dialog.stopped());
  EXPECT_THAT(dialog.chosenPaths(), ElementsAre("C:/late"));
}

}  // namespace
}  // namespace Vantrel::Web
