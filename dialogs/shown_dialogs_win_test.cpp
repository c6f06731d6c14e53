// The platform's real dialogs, answered from another thread.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <shlobj.h>

#include <atomic>
#include <filesystem>

#include "dialogs/legacy_dialogs_win.h"
#include "dialogs/modern_dialogs_win.h"
#include "tests/support/dialog_driver_win.h"
#include "tests/support/log_recorder.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {
namespace {

using ov::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using TestSupport::DialogDriver;
using TestSupport::LogRecorder;

class ShownDialogsTest : public testing::Test {
 protected:
  ShownDialogsTest() {
    for (const char* const name : {"a.txt", "größe.txt", "b.lnk"}) {
      TempFolder::write(folder_.path(name), "x");
    }
    std::filesystem::create_directory(TempFolder::native(folder_.path("sub")));
    TempFolder::write(folder_.path("sub/inner.txt"), "x");
    SetCurrentDirectoryW(wide("").c_str());
    // A window of our own keeps the platform's desktop process, without which no dialog can be
    // made.
    desktop_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                               nullptr);
  }
  ~ShownDialogsTest() override {
    DestroyWindow(desktop_);
    SetCurrentDirectoryW(L"C:\\");
  }

  // A path below the folder as the platform writes it.
  std::string path(const std::string& name) const {
    std::string text = folder_.path(name);
    for (char& byte : text) byte = byte == '/' ? '\\' : byte;
    return text;
  }
  std::wstring wide(const std::string& name) const { return toWide(path(name)); }
  std::wstring quoted(std::initializer_list<const char*> names) const {
    std::wstring text;
    for (const char* const name : names) text += L"\"" + wide(name) + L"\" ";
    return text;
  }

  std::vector<std::string> legacyOpen(bool directories, bool files, bool multiple,
                                      const DialogDriver::Action& action) {
    const DialogDriver driver(action);
    return WinOpenFileDialogImpl(nullptr, "Öffnen", directories, files, multiple, "").doShow();
  }

  TempFolder folder_;
  HWND desktop_ = nullptr;
};

TEST_F(ShownDialogsTest, ModernOpenGivesTheFileThatWasTyped) {
  const DialogDriver driver(
      [this](HWND dialog) { DialogDriver::accept(dialog, wide("größe.txt")); });
  EXPECT_THAT(WinVistaOpenFileDialogImpl("Title", false, "", false).doShow(),
              ElementsAre(path("größe.txt")));
}

TEST_F(ShownDialogsTest, ModernOpenGivesSeveralFiles) {
  const DialogDriver driver([this](HWND dialog) {
    DialogDriver::accept(dialog, quoted({"a.txt", "größe.txt"}));
  });
  EXPECT_THAT(
      WinVistaOpenFileDialogImpl("", true, R"([{"filter_name":"T","extensions":["txt"]}])", false)
          .doShow(),
      UnorderedElementsAre(path("a.txt"), path("größe.txt")));
}

TEST_F(ShownDialogsTest, ModernOpenGivesAFolder) {
  const DialogDriver driver([this](HWND dialog) { DialogDriver::accept(dialog, wide("sub")); });
  EXPECT_THAT(WinVistaOpenFileDialogImpl("", false, "", true).doShow(), ElementsAre(path("sub")));
}

TEST_F(ShownDialogsTest, ModernDialogsGiveNothingForACancelAndForTheCross) {
  const LogRecorder log;
  for (const auto& end : {DialogDriver::cancel, DialogDriver::close}) {
    {
      const DialogDriver driver(end);
      EXPECT_THAT(WinVistaOpenFileDialogImpl("", false, "", false).doShow(), IsEmpty());
    }
    const DialogDriver driver(end);
    EXPECT_THAT(WinVistaSaveFileDialogImpl("", "name.txt", "").doShow(), IsEmpty());
  }
  EXPECT_THAT(log.lines("ERR"), IsEmpty());
}

TEST_F(ShownDialogsTest, ModernSaveGivesANewName) {
  const DialogDriver driver([this](HWND dialog) { DialogDriver::accept(dialog, wide("ñew.txt")); });
  EXPECT_THAT(WinVistaSaveFileDialogImpl("T", "x.txt", "").doShow(), ElementsAre(path("ñew.txt")));
}

TEST_F(ShownDialogsTest, ModernSaveAsksBeforeItGivesANameThatIsTaken) {
  const DialogDriver driver([this](HWND dialog) {
    DialogDriver::accept(dialog, wide("a.txt"));
    DialogDriver::answer(dialog, IDYES);
  });
  EXPECT_THAT(WinVistaSaveFileDialogImpl("", "", "").doShow(), ElementsAre(path("a.txt")));
}

TEST_F(ShownDialogsTest, ModernSaveGoesOnWhenATakenNameIsRefused) {
  const DialogDriver driver([this](HWND dialog) {
    DialogDriver::accept(dialog, wide("a.txt"));
    DialogDriver::answer(dialog, IDNO);
    DialogDriver::cancel(dialog);
  });
  EXPECT_THAT(WinVistaSaveFileDialogImpl("", "", "").doShow(), IsEmpty());
}

TEST_F(ShownDialogsTest, LegacySaveGivesANewName) {
  const DialogDriver driver([this](HWND dialog) { DialogDriver::accept(dialog, wide("ñew.txt")); });
  EXPECT_THAT(WinSaveFileDialogImpl(nullptr, "T", "x.txt", "").doShow(),
              ElementsAre(path("ñew.txt")));
}

TEST_F(ShownDialogsTest, LegacySaveBeginsWithTheSuggestedName) {
  const DialogDriver driver(static_cast<void (*)(HWND)>(DialogDriver::accept));
  EXPECT_THAT(WinSaveFileDialogImpl(nullptr, "", path("sübject.txt"), "").doShow(),
              ElementsAre(path("sübject.txt")));
}

TEST_F(ShownDialogsTest, LegacyDialogsGiveNothingForACancel) {
  {
    const DialogDriver driver(DialogDriver::cancel);
    EXPECT_THAT(WinSaveFileDialogImpl(nullptr, "", "", "").doShow(), IsEmpty());
  }
  {
    const DialogDriver driver(DialogDriver::cancel);
    EXPECT_THAT(WinBrowseFolderDialogImpl().doShow(), IsEmpty());
  }
  EXPECT_THAT(legacyOpen(true, true, true, DialogDriver::cancel), IsEmpty());
}

TEST_F(ShownDialogsTest, LegacyFolderDialogGivesTheFolder) {
  const DialogDriver driver([this](HWND dialog) {
    const std::wstring text = wide("sub");
    // The tree opens in its own time; the name below it tells when the folder is selected.
    for (int i = 0; i < 100 && DialogDriver::typed(dialog) != L"sub"; ++i) {
      SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
      Sleep(50);
    }
    DialogDriver::accept(dialog);
  });
  EXPECT_THAT(WinBrowseFolderDialogImpl().doShow(), ElementsAre(path("sub")));
}

// The list shows a shortcut without its ending.
TEST_F(ShownDialogsTest, LegacyOpenGivesFilesAndFoldersTogetherButNoShortcut) {
  EXPECT_THAT(legacyOpen(true, true, true,
                         [](HWND dialog) {
                           // Wine tells no selection of folders alone while the name is empty.
                           DialogDriver::type(dialog, L"x");
                           EXPECT_EQ(DialogDriver::select(dialog, L"a.txt") +
                                         DialogDriver::select(dialog, L"sub") +
                                         DialogDriver::select(dialog, L"b"),
                                     3);
                           DialogDriver::accept(dialog);
                         }),
              UnorderedElementsAre(path("a.txt"), path("sub")));
}

TEST_F(ShownDialogsTest, LegacyOpenGivesAFolderInsteadOfOpeningIt) {
  for (const bool files : {false, true}) {
    EXPECT_THAT(legacyOpen(true, files, true,
                           [](HWND dialog) {
                             DialogDriver::type(dialog, L"x");  // as above
                             EXPECT_EQ(DialogDriver::select(dialog, L"sub"), 1);
                             DialogDriver::accept(dialog);
                           }),
                ElementsAre(path("sub")));
  }
}

TEST_F(ShownDialogsTest, LegacyOpenStaysOpenOverAShortcut) {
  EXPECT_THAT(legacyOpen(true, true, true,
                         [](HWND dialog) {
                           EXPECT_EQ(DialogDriver::select(dialog, L"b"), 1);
                           DialogDriver::acceptInVain(dialog);
                         }),
              IsEmpty());
}

TEST_F(ShownDialogsTest, LegacyOpenTakesTheButtonsPressAndNoOtherNoticeOfIt) {
  EXPECT_THAT(legacyOpen(true, true, true,
                         [](HWND dialog) {
                           EXPECT_EQ(DialogDriver::select(dialog, L"sub"), 1);
                           // Wine's own dialog takes any notice of the button for a press; it opens
                           // the folder of this name then.
                           DialogDriver::type(dialog, L"sub");
                           SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_SETFOCUS),
                                        reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
                           EXPECT_NE(IsWindowVisible(dialog), FALSE);
                           DialogDriver::cancel(dialog);
                         }),
              IsEmpty());
}

// The platform goes on behind a fault in a window's procedure, so it is counted.
std::atomic<int> faults = 0;

LONG CALLBACK countFault(EXCEPTION_POINTERS* fault) {
  if (fault->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION) ++faults;
  return EXCEPTION_CONTINUE_SEARCH;
}

// Any window below the dialog may send its notices there; they have nothing behind their header.
void sendForeignNotice(HWND dialog) {
  const HWND child = FindWindowExW(dialog, nullptr, L"#32770", nullptr);
  EXPECT_NE(child, nullptr);
  OFNOTIFYW notice = {};
  notice.hdr.code = NM_CLICK;
  notice.lpOFN = reinterpret_cast<OPENFILENAMEW*>(16);
  EXPECT_EQ(SendMessageW(child, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notice)), 0);
}

TEST_F(ShownDialogsTest, LegacyOpenReadsNoMoreOfAForeignNoticeThanItsHeader) {
  void* const handler = AddVectoredExceptionHandler(1, countFault);
  EXPECT_THAT(legacyOpen(true, true, true,
                         [](HWND dialog) {
                           sendForeignNotice(dialog);
                           DialogDriver::cancel(dialog);
                         }),
              IsEmpty());
  RemoveVectoredExceptionHandler(handler);
  EXPECT_EQ(faults, 0);
}

// A dialog that shows a folder without a path, such as the computer itself, says so.
LRESULT CALLBACK withoutPath(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == CDM_GETFOLDERPATH) {
    *reinterpret_cast<wchar_t*>(lParam) = L'\0';
    return 1;
  }
  const auto former = reinterpret_cast<WNDPROC>(GetPropW(dialog, L"FormerProcOfTest"));
  return CallWindowProcW(former, dialog, message, wParam, lParam);
}

TEST_F(ShownDialogsTest, LegacyOpenTakesNothingFromAFolderWithoutAPath) {
  EXPECT_THAT(legacyOpen(true, true, true,
                         [](HWND dialog) {
                           EXPECT_EQ(DialogDriver::select(dialog, L"a.txt"), 1);
                           const LONG_PTR former = GetWindowLongPtrW(dialog, GWLP_WNDPROC);
                           SetPropW(dialog, L"FormerProcOfTest", reinterpret_cast<HANDLE>(former));
                           SetWindowLongPtrW(dialog, GWLP_WNDPROC,
                                             reinterpret_cast<LONG_PTR>(withoutPath));
                           DialogDriver::acceptInVain(dialog);
                         }),
              IsEmpty());
}

constexpr size_t kRoom = 260;  // of a path in the save dialog, with the terminator

TEST_F(ShownDialogsTest, LegacySaveCutsASuggestionWithoutRoom) {
  const DialogDriver driver([](HWND dialog) {
    EXPECT_EQ(DialogDriver::typed(dialog), std::wstring(kRoom - 1, L'n'));
    DialogDriver::cancel(dialog);
  });
  EXPECT_THAT(WinSaveFileDialogImpl(nullptr, "", std::string(kRoom, 'n'), "").doShow(), IsEmpty());
}

TEST_F(ShownDialogsTest, LegacySaveFailsForAPathWithoutRoom) {
  const std::string name(kRoom - path("").size(), 'n');
  const LogRecorder log;
  const DialogDriver driver([&](HWND dialog) { DialogDriver::accept(dialog, wide(name)); });
  try {
    WinSaveFileDialogImpl(nullptr, "", "", "").doShow();
    ADD_FAILURE() << "a path was given";
  } catch (const SystemException& exception) {
    EXPECT_STREQ(exception.what(), "Save file dialog failed (12291)");  // FNERR_BUFFERTOOSMALL
  }
  EXPECT_THAT(log.lines("ERR"), ElementsAre("Save file dialog failed (12291)"));
}

TEST_F(ShownDialogsTest, LegacyOpenWithoutLeaveForFilesStaysOpenOverAFile) {
  EXPECT_THAT(legacyOpen(true, false, true,
                         [](HWND dialog) {
                           EXPECT_EQ(DialogDriver::select(dialog, L"a.txt"), 1);
                           DialogDriver::acceptInVain(dialog);
                         }),
              IsEmpty());
}

TEST_F(ShownDialogsTest, LegacyOpenBeginsWhereTheLastChoiceWasMade) {
  const auto choose = [](const wchar_t* name) {
    return [name](HWND dialog) {
      EXPECT_EQ(DialogDriver::select(dialog, name), 1);
      DialogDriver::accept(dialog);
    };
  };
  EXPECT_THAT(legacyOpen(false, true, false, choose(L"a.txt")), ElementsAre(path("a.txt")));
  SetCurrentDirectoryW(wide("sub").c_str());
  EXPECT_THAT(legacyOpen(false, true, false, choose(L"größe.txt")), ElementsAre(path("größe.txt")));
  EXPECT_THAT(legacyOpen(false, true, false, DialogDriver::cancel), IsEmpty());
  EXPECT_THAT(legacyOpen(false, true, false, choose(L"a.txt")), ElementsAre(path("a.txt")));
}

TEST_F(ShownDialogsTest, DialogsThatNeverShowLeaveNoHandleBehind) {
  // Wine does not tell the number of handles; each is asked for its own flags.
  const auto handles = [] {
    constexpr uintptr_t kLast = 20000;
    size_t count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (uintptr_t value = 4; value < kLast; value += 4) {
      DWORD flags = 0;
      if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
    }
    return count;
  };
  const auto round = [] {
    EXPECT_THROW(WinVistaOpenFileDialogImpl("T", true, "{}", false).doShow(), std::runtime_error);
    EXPECT_THROW(WinSaveFileDialogImpl(nullptr, "T", "n", "{}").doShow(), std::runtime_error);
    EXPECT_THROW(WinOpenFileDialogImpl(nullptr, "T", true, true, true, "{}").doShow(),
                 std::runtime_error);
  };
  for (int i = 0; i < 20; ++i) round();
  const size_t before = handles();
  for (int i = 0; i < 300; ++i) round();
  EXPECT_LE(handles(), before + 2);
}

}  // namespace
}  // namespace Vantrel::Web
