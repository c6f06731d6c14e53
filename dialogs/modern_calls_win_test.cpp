// The modern dialogs call by call, over dialog objects of the test's own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "dialogs/modern_dialogs_win.h"
#include "tests/support/fake_file_dialogs_win.h"
#include "tests/support/log_recorder.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::FakeFileDialogs;
using TestSupport::LogRecorder;

constexpr HRESULT kCancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);
constexpr char kTypes[] =
    R"([{"filter_name":"Text","extensions":["txt"]},{"filter_name":"Bilder","extensions":["jpg","gif"]}])";

class ModernCallsTest : public testing::Test {
 protected:
  ModernCallsTest() {
    fake_.chosen = {L"C:\\a.txt", L"C:\\größe.txt"};
    // A window with a popup: while a dialog is shown for the popup, the window is disabled.
    window_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr,
                              nullptr);
    fake_.watched = window_;
    SetActiveWindow(window_);
  }
  ~ModernCallsTest() override {
    EXPECT_TRUE(IsWindowEnabled(window_));
    DestroyWindow(window_);
  }

  static std::vector<std::string> showOpen(const std::string& title = "", bool multiple = false,
                                           const std::string& types = "", bool folders = false) {
    return WinVistaOpenFileDialogImpl(title, multiple, types, folders).doShow();
  }
  static std::vector<std::string> showSave(const std::string& title = "",
                                           const std::string& name = "",
                                           const std::string& types = "") {
    return WinVistaSaveFileDialogImpl(title, name, types).doShow();
  }
  // The arguments of a call, "absent" if it was not made.
  std::string argumentsOf(const std::string& name) const {
    for (const std::string& call : fake_.calls) {
      if (call.rfind(name + " ", 0) == 0) return call.substr(name.size() + 1);
    }
    return "absent";
  }

  FakeFileDialogs fake_;
  HWND window_;
};

TEST_F(ModernCallsTest, AnOpenDialogGoesThroughItsStepsInOrder) {
  EXPECT_THAT(showOpen("Tïtle", true, kTypes), ElementsAre("C:\\a.txt", "C:\\größe.txt"));
  EXPECT_THAT(fake_.calls,
              ElementsAre("CoCreateInstance", "SetDefaultFolder", "SetTitle Tïtle", "GetOptions",
                          "SetOptions 6664", "SetFileTypes Text|*.txt, Bilder|*.jpg;*.gif", "Show",
                          "GetResults", "GetCount", "GetItemAt 0", "GetDisplayName 2147844096",
                          "GetItemAt 1", "GetDisplayName 2147844096"));
}

TEST_F(ModernCallsTest, WhatIsEmptyIsNotSet) {
  showOpen();
  EXPECT_EQ(argumentsOf("SetTitle"), "absent");
  EXPECT_EQ(argumentsOf("SetFileTypes"), "absent");
  EXPECT_EQ(argumentsOf("SetOptions"), "6152");  // as the dialog had them
  fake_.calls.clear();
  showOpen("", false, "[]");
  EXPECT_EQ(argumentsOf("SetFileTypes"), "absent");
}

TEST_F(ModernCallsTest, AFolderDialogPicksFolders) {
  showOpen("", false, "", true);
  EXPECT_EQ(argumentsOf("SetOptions"), std::to_string(0x1808 | 0x20));
  fake_.calls.clear();
  EXPECT_THAT(showOpen("", true, "", true), ElementsAre("C:\\a.txt", "C:\\größe.txt"));
  EXPECT_EQ(argumentsOf("SetOptions"), std::to_string(0x1808 | 0x20 | 0x200));
}

TEST_F(ModernCallsTest, ACancelIsEmptyAndNoError) {
  fake_.results["Show"] = kCancelled;
  const LogRecorder log;
  EXPECT_THAT(showOpen(), IsEmpty());
  EXPECT_THAT(showSave(), IsEmpty());
  EXPECT_THAT(log.lines("ERR"), IsEmpty());
  EXPECT_EQ(argumentsOf("GetResults"), "absent");
}

TEST_F(ModernCallsTest, ASaveDialogGoesThroughItsStepsInOrder) {
  EXPECT_THAT(showSave("T", "x.jpg", kTypes), ElementsAre("C:\\a.txt"));
  EXPECT_THAT(fake_.calls,
              ElementsAre("CoCreateInstance", "SetDefaultFolder", "SetTitle T", "SetFileName x.jpg",
                          "SetFileTypes Text|*.txt, Bilder|*.jpg;*.gif", "SetFileTypeIndex 2",
                          "SetDefaultExtension", "Show", "GetResult", "GetDisplayName 2147844096"));
}

TEST_F(ModernCallsTest, ASaveDialogMakesItsFiltersOfTheSuggestedName) {
  const std::pair<const char*, const char*> rows[] = {
      {"a.b.tar", "tar files|*.tar, All files|*.*"},
      {"report.jpeg2", "All files|*.*"},
      {"file.txt et al", "All files|*.*"},
      {"", "All files|*.*"},
  };
  for (const auto& [name, filters] : rows) {
    for (const char* const types : {"", "[]"}) {
      fake_.calls.clear();
      showSave("", name, types);
      EXPECT_EQ(argumentsOf("SetFileTypes"), filters) << name;
      EXPECT_EQ(argumentsOf("SetFileTypeIndex"), "1") << name;
    }
  }
  EXPECT_EQ(argumentsOf("SetFileName"), "absent");
  EXPECT_EQ(argumentsOf("SetTitle"), "absent");
}

TEST_F(ModernCallsTest, ASaveDialogBeginsWithTheFirstFilterForAnotherSpelling) {
  showSave("", "x.JPG", kTypes);
  EXPECT_EQ(argumentsOf("SetFileTypeIndex"), "1");
}

using Show = std::function<std::vector<std::string>()>;

// The text that `show` throws; "none" if it does not.
std::string thrownBy(const Show& show) {
  try {
    show();
  } catch (const SystemException& exception) {
    return exception.what();
  }
  return "none";
}

TEST_F(ModernCallsTest, EveryFatalFailureIsThrownWithItsDigitsAndLeavesNothing) {
  const Show open = [] { return showOpen("T", true, kTypes); };
  const Show save = [] { return showSave("T", "x.txt", kTypes); };
  const struct {
    const char* call;
    const char* openWords;
    const char* saveWords;
  } rows[] = {
      {"CoCreateInstance", "Failed to create FileOpenDialog", "Failed to create FileSaveDialog"},
      {"SetTitle", "SetTitle failed", "SetTitle failed"},
      {"SetFileName", nullptr, "SetFileName failed"},
      {"SetFileTypes", "SetFileTypes failed", "SetFileTypes failed"},
      {"SetFileTypeIndex", nullptr, "SetFileTypeIndex failed"},
      {"Show", "Show failed", "Show failed"},
      {"GetResults", "GetResults failed", nullptr},
      {"GetResult", nullptr, "GetResult failed"},
      {"GetCount", "GetCount failed", nullptr},
      {"GetItemAt", "GetItemAt failed", nullptr},
      {"GetDisplayName", "GetDisplayName failed", "GetDisplayName failed"},
  };
  for (const auto& row : rows) {
    fake_.results = {{row.call, static_cast<HRESULT>(0x80070005)}};
    const int before = fake_.living;
    const std::string digits = ": 0x80070005";
    EXPECT_EQ(thrownBy(open), row.openWords == nullptr ? "none" : row.openWords + digits);
    EXPECT_EQ(thrownBy(save), row.saveWords == nullptr ? "none" : row.saveWords + digits);
    EXPECT_EQ(fake_.living, before) << row.call;
    EXPECT_TRUE(IsWindowEnabled(window_)) << row.call;
  }
}

TEST_F(ModernCallsTest, WhatCostsOnlyComfortIsLoggedAndPassedOver) {
  const std::pair<const char*, const char*> rows[] = {
      {"SetDefaultFolder", "SetDefaultFolder failed: 80070005"},
      {"GetOptions", "GetOptions failed: 80070005"},
      {"SetOptions", "SetOptions failed: 80070005"},
  };
  for (const auto& [call, line] : rows) {
    fake_.results = {{call, static_cast<HRESULT>(0x80070005)}};
    fake_.calls.clear();
    const LogRecorder log;
    EXPECT_EQ(showOpen().size(), 2u);
    EXPECT_THAT(log.lines("ERR"), ElementsAre(line));
    EXPECT_EQ(argumentsOf("SetOptions") == "absent", call == std::string("GetOptions"));
  }
  fake_.results = {{"SetDefaultExtension", static_cast<HRESULT>(0x80070005)}};
  const LogRecorder log;
  EXPECT_EQ(showSave().size(), 1u);
  EXPECT_THAT(log.lines("ERR"), ElementsAre("SetDefaultExtension failed: 80070005"));
}

TEST_F(ModernCallsTest, FileTypesThatDoNotParseAreThrownBeforeTheDialogShows) {
  EXPECT_THROW(showOpen("", false, "{}"), std::runtime_error);
  EXPECT_THROW(showSave("", "", "{}"), std::runtime_error);
  EXPECT_EQ(std::count(fake_.calls.begin(), fake_.calls.end(), "Show"), 0);
}

TEST_F(ModernCallsTest, TheWindowBelowThePopupIsDisabledWhileTheDialogIsShown) {
  const HWND popup = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 5, 5, window_,
                                     nullptr, nullptr, nullptr);
  ShowWindow(window_, SW_SHOW);
  SetActiveWindow(popup);
  SetActiveWindow(window_);
  showOpen();
  const HWND owner = fake_.owner;
  EXPECT_EQ(owner, GetLastActivePopup(window_));
  EXPECT_EQ(fake_.watchedEnabled, owner == window_);
  EXPECT_TRUE(IsWindowEnabled(window_));
  DestroyWindow(popup);
}

}  // namespace
}  // namespace Vantrel::Web
