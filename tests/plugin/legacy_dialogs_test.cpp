// The dialogs of systems before 6.0 through the library, in a process whose platform says 5.2. Wine
// says so to a program of this name once its settings do; the program writes them and starts itself
// again.
#include <gmock/gmock.h>

#include <windows.h>
#include <commdlg.h>
#include <shlobj.h>

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "tests/plugin/dialogs_fixture.h"
#include "tests/support/failing_imports_win.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;

// The first dialogs in a process make the platform start threads that stay, so some are shown
// before the host counts.
void showSome() {
  ASSERT_GE(OleInitialize(nullptr), 0);
  {
    wchar_t path[MAX_PATH] = L"";
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.lpstrFile = path;
    dialog.nMaxFile = MAX_PATH;
    dialog.Flags = OFN_EXPLORER;
    const DialogDriver driver(DialogDriver::cancel);
    EXPECT_EQ(GetOpenFileNameW(&dialog), FALSE);
  }
  {
    BROWSEINFOW info = {};
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_EDITBOX | BIF_NEWDIALOGSTYLE;
    const DialogDriver driver(DialogDriver::cancel);
    EXPECT_EQ(SHBrowseForFolderW(&info), nullptr);
  }
  OleUninitialize();
}

class LegacyDialogsTest : public DialogsTest {
 protected:
  void SetUp() override {
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    GetVersionExW(&version);
    ASSERT_EQ(version.dwMajorVersion, 5u);
    ASSERT_EQ(version.dwMinorVersion, 2u);
    showSome();
    DialogsTest::SetUp();
    window_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr,
                              nullptr, nullptr, nullptr);
    host().topWindow = window_;
    instance_.emplace(host());
    // Where a dialog begins; the instance has gone to the user's home.
    SetCurrentDirectoryW(toWide(path("")).c_str());
  }
  void TearDown() override {
    EXPECT_NE(IsWindowEnabled(window_), FALSE);
    SetCurrentDirectoryW(L"C:\\");
    instance_.reset();
    DestroyWindow(window_);
    DialogsTest::TearDown();
  }

  // Accepts the rows of these names. Wine tells no selection of folders alone while the name is
  // empty.
  static DialogDriver::Action choose(std::initializer_list<const wchar_t*> names) {
    return [names = std::vector<const wchar_t*>(names)](HWND dialog) {
      DialogDriver::type(dialog, L"x");
      for (const wchar_t* const name : names) EXPECT_EQ(DialogDriver::select(dialog, name), 1);
      DialogDriver::accept(dialog);
    };
  }
  HMODULE library() { return static_cast<HMODULE>(const_cast<void*>(host().module())); }
  Value call(const char* method, const std::vector<Value>& arguments) {
    return instance_->call(method, arguments).value;
  }

  HWND window_ = nullptr;
  std::optional<Instance> instance_;
};

TEST_F(LegacyDialogsTest, AnOpenGivesFilesAndFoldersTogether) {
  const DialogDriver driver(choose({L"höllo.txt", L"a folder"}));
  const std::string answer =
      call("runOpenFileDialog", {Value::boolean(true), Value::boolean(true)}).text;
  EXPECT_TRUE(answer == escaped(folder_) + ":" + escaped(file_) ||
              answer == escaped(file_) + ":" + escaped(folder_))
      << answer;
  EXPECT_EQ(read(*instance_, file_), text(kHello));
  EXPECT_EQ(read(*instance_, folder_), text(errorReply("Invalid file type: " + folder_)));
}

TEST_F(LegacyDialogsTest, AnAsynchronousOpenGivesFilesOnly) {
  const Host::PageReference function = host().page.makeFunction("callback");
  const DialogDriver driver(choose({L"höllo.txt", L"a folder"}));
  openAsync(*instance_, function);
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function->calls[0].arguments, ElementsAre(text("[\"" + doubled(file_) + "\"]")));
  EXPECT_EQ(read(*instance_, file_), text(kHello));
}

TEST_F(LegacyDialogsTest, AFolderIsChosenInATree) {
  const DialogDriver driver([this](HWND dialog) {
    const std::wstring text = toWide(folder_);
    // The tree opens in its own time; the name below it tells when the folder is selected.
    for (int i = 0; i < 100 && DialogDriver::typed(dialog) != L"a folder"; ++i) {
      SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
      Sleep(50);
    }
    DialogDriver::accept(dialog);
  });
  EXPECT_EQ(call("runOpenFolderDialog", {Value::boolean(false)}), text(escaped(folder_)));
  EXPECT_TRUE(mayDownloadTo(*instance_, folder_));
}

TEST_F(LegacyDialogsTest, SeveralFoldersAreChosenInAList) {
  std::filesystem::create_directory(TempFolder::native(path("other")));
  const DialogDriver driver(choose({L"a folder", L"other"}));
  const std::string answer = call("runOpenFolderDialog", {Value::boolean(true)}).text;
  EXPECT_TRUE(answer == escaped(folder_) + ":" + escaped(path("other")) ||
              answer == escaped(path("other")) + ":" + escaped(folder_))
      << answer;
}

TEST_F(LegacyDialogsTest, ASaveGivesTheNameThatWasTyped) {
  {
    const DialogDriver driver(
        [this](HWND dialog) { DialogDriver::accept(dialog, toWide(path("ñew.txt"))); });
    EXPECT_EQ(call("runSaveFileDialog", {text("x.txt")}), text(path("ñew.txt")));
  }
  EXPECT_TRUE(mayDownloadTo(*instance_, path("ñew.txt")));
  const DialogDriver driver([this](HWND dialog) {
    DialogDriver::accept(dialog, toWide(file_));
    DialogDriver::answer(dialog, IDYES);
  });
  EXPECT_EQ(call("runSaveFileDialog", {text("")}), text(file_));
}

TEST_F(LegacyDialogsTest, ACancelIsAnEmptyText) {
  const size_t errors = logCount("ERR ");
  const auto cancelled = [this](const char* method, const std::vector<Value>& arguments) {
    const DialogDriver driver(DialogDriver::cancel);
    EXPECT_EQ(call(method, arguments), text("")) << method;
    EXPECT_NE(IsWindowEnabled(window_), FALSE) << method;
  };
  cancelled("runOpenFileDialog", {Value::boolean(true), Value::boolean(true)});
  cancelled("runOpenFolderDialog", {Value::boolean(false)});
  cancelled("runOpenFolderDialog", {Value::boolean(true)});
  cancelled("runSaveFileDialog", {text("x.txt")});
  EXPECT_EQ(logCount("ERR "), errors);
}

// The dialog's hook and its subclass are the library's code.
TEST_F(LegacyDialogsTest, ADialogKeepsTheLibraryThatWasUnloadedUnderIt) {
  const Host::PageReference function = host().page.makeFunction("callback");
  bool left = false;
  {
    const PageTask leave([&] {
      EXPECT_EQ(instance_->destroy(), NPERR_NO_ERROR);
      instance_->settle({.objects = {{function.get(), 1}}});
      host().unload();
      left = true;
    });
    const DialogDriver driver([&leave](HWND dialog) {
      leave.run();
      choose({L"höllo.txt"})(dialog);
    });
    openAsync(*instance_, function);
    EXPECT_TRUE(host().pumpUntil([&] { return left && !host().mapped(); }));
  }
  EXPECT_TRUE(function->calls.empty());
}

TEST_F(LegacyDialogsTest, WithoutTheDialogsLibraryThePageSeesACancel) {
  TestSupport::FailingImports imports(library());
  OV_FAILING_IMPORT(imports, LoadLibraryW, nullptr);
  for (const char* const method : {"runOpenFileDialog", "runSaveFileDialog"}) {
    const bool save = std::string_view(method) == "runSaveFileDialog";
    const std::vector<Value> arguments =
        save ? std::vector<Value>{text("x")}
             : std::vector<Value>{Value::boolean(true), Value::boolean(true)};
    const char* const failed =
        imports.runWithFailing(1, [&] { EXPECT_EQ(call(method, arguments), text("")) << method; });
    EXPECT_STREQ(failed, "LoadLibraryW");
  }
  EXPECT_TRUE(logHas("ERR Error displaying open file dialog: Failed to find the common dialogs: "));
  EXPECT_TRUE(logHas("ERR Error displaying save file dialog: Failed to find the common dialogs: "));
}

TEST_F(LegacyDialogsTest, ADialogThatCannotBeSubclassedGivesItsFiles) {
  TestSupport::FailingImports imports(library());
  OV_FAILING_IMPORT(imports, SetPropW, FALSE);
  const DialogDriver driver([](HWND dialog) {
    EXPECT_EQ(DialogDriver::select(dialog, L"höllo.txt"), 1);
    DialogDriver::accept(dialog);
  });
  const char* const failed = imports.runWithFailing(1, [&] {
    EXPECT_EQ(call("runOpenFileDialog", {Value::boolean(false), Value::boolean(false)}),
              text(escaped(file_)));
  });
  EXPECT_STREQ(failed, "SetPropW");
}

constexpr wchar_t kAgain[] = L"OV_LEGACY_DIALOGS_AGAIN";

// Runs this program once more as one of an old system, and gives its exit code.
int runAgain() {
  const HKEY root = HKEY_CURRENT_USER;
  constexpr wchar_t kKey[] = L"Software\\Wine\\AppDefaults\\plugin_legacy_dialogs_test.exe";
  constexpr wchar_t kVersion[] = L"winxp64";
  if (RegSetKeyValueW(root, kKey, L"Version", REG_SZ, kVersion, sizeof kVersion) != 0) return 1;
  SetEnvironmentVariableW(kAgain, L"1");
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  PROCESS_INFORMATION process = {};
  if (CreateProcessW(nullptr, GetCommandLineW(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                     &start, &process) == FALSE) {
    return 1;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

}  // namespace
}  // namespace Vantrel::Web

int main(int argc, char* argv[]) {
  using namespace Vantrel::Web;
  if (GetEnvironmentVariableW(kAgain, nullptr, 0) == 0) return runAgain();
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
