// Base of the test cases that let a page ask for dialogs: a file and a folder to choose, the calls
// by which a page finds out what it may do with them, and what the platform's own dialogs need.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/dialog_driver_win.h"
#include "tests/support/fake_file_dialogs_win.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"

namespace Vantrel::Web {

using ov::TempFolder;
using TestSupport::DialogDriver;
using TestSupport::FakeFileDialogs;
using TestSupport::PageTask;

inline constexpr HRESULT kCancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);
inline constexpr char kHello[] = "data:text/plain;base64,SGVsbG8=";

class DialogsTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    file_ = path("höllo.txt");
    TempFolder::write(file_, "Hello");
    folder_ = path("a folder");
    std::filesystem::create_directory(TempFolder::native(folder_));
  }

  // A path as the platform writes it.
  std::string path(const std::string& name) const {
    std::string text = temp_.path(name);
    for (char& byte : text) byte = byte == '/' ? '\\' : byte;
    return text;
  }
  // The forms in which a page gets a path.
  static std::string doubled(std::string text) {
    for (size_t at = 0; (at = text.find('\\', at)) != std::string::npos; at += 2) {
      text.insert(at, 1, '\\');
    }
    return text;
  }
  static std::string escaped(std::string text) {
    text = doubled(text);
    for (size_t at = 0; (at = text.find(':', at)) != std::string::npos; at += 2) {
      text.insert(at, 1, '\\');
    }
    return text;
  }

  Value read(Instance& instance, const std::string& name) {
    return instance.call("readAsArrayBuffer", {text(name)}).value;
  }
  bool isRefused(Instance& instance, const std::string& name) {
    return read(instance, name) ==
           text(errorReply("Unable to read file context. Only files selected via standard file "
                           "dialog or drag and drop accepted: " +
                           name));
  }
  // Whether a download may go there; the question uses the consent up.
  bool mayDownloadTo(Instance& instance, const std::string& name) {
    const size_t before = logCount("LOG Accepted download to ");
    instance.call("startDownloadToPath", {text("http://x/y"), text(name)});
    return logCount("LOG Accepted download to ") > before;
  }
  // A dialog that outlives its instance keeps the library until the browser takes messages again.
  void waitForRelease() {
    EXPECT_TRUE(host().pumpUntil([this] { return host().pluginThreads() == 0; }));
  }
  Host::CallResult openAsync(Instance& instance, const Host::PageReference& function,
                             const std::string& types = "") {
    return instance.call("runOpenFileDialogAsync",
                         {text("Title"), Value::boolean(true), text(types), function.value()});
  }

  TempFolder temp_;
  std::string file_;
  std::string folder_;
};

// With the platform's own dialogs. The first one in a process makes the platform start a thread
// that stays, so one is shown before the host counts.
class RealDialogsTest : public DialogsTest {
 protected:
  void SetUp() override {
    showOne();
    DialogsTest::SetUp();
    window_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                              nullptr, nullptr, nullptr);
  }
  // Whatever became of the dialogs, the browser's window takes input again.
  void TearDown() override {
    EXPECT_NE(IsWindowEnabled(window_), FALSE);
    DestroyWindow(window_);
    DialogsTest::TearDown();
  }
  static void showOne() {
    ASSERT_GE(CoInitialize(nullptr), 0);
    IFileOpenDialog* dialog = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_ALL, IID_IFileOpenDialog,
                               reinterpret_cast<void**>(&dialog)),
              S_OK);
    {
      const DialogDriver driver(DialogDriver::cancel);
      EXPECT_EQ(dialog->Show(nullptr), kCancelled);
    }
    dialog->Release();
    CoUninitialize();
  }

  HWND window_ = nullptr;  // stands for the browser's
};

}  // namespace Vantrel::Web
