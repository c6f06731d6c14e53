// The element's window: what is painted in it, which drops it takes, and what is left of us in it
// at the end.
#include <gmock/gmock.h>

#include <windows.h>
#include <ole2.h>
#include <shlobj.h>

#include <cstring>
#include <filesystem>
#include <optional>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"

// The platform's interfaces have no virtual destructor.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace Vantrel::Web {
namespace {

using ov::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBehind = RGB(0, 128, 0);
constexpr int kSize = 40;

// A picture of 2 by 2 red points, 24 bits each.
std::string redPicture() {
  std::string rows;
  for (int row = 0; row < 2; ++row) rows += std::string("\0\0\xFF\0\0\xFF\0\0", 8);
  BITMAPFILEHEADER file = {};
  BITMAPINFOHEADER info = {};
  file.bfType = 0x4D42;
  file.bfOffBits = sizeof file + sizeof info;
  file.bfSize = static_cast<DWORD>(file.bfOffBits + rows.size());
  info.biSize = sizeof info;
  info.biWidth = info.biHeight = 2;
  info.biPlanes = 1;
  info.biBitCount = 24;
  std::string text(file.bfOffBits, '\0');
  std::memcpy(text.data(), &file, sizeof file);
  std::memcpy(text.data() + sizeof file, &info, sizeof info);
  return text + rows;
}

LRESULT CALLBACK greenProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_ERASEBKGND && message != WM_PAINT) {
    return DefWindowProcW(window, message, wParam, lParam);
  }
  const HDC dc = GetDC(window);
  RECT rect = {};
  GetClientRect(window, &rect);
  const HBRUSH brush = CreateSolidBrush(kBehind);
  FillRect(dc, &rect, brush);
  DeleteObject(brush);
  ReleaseDC(window, dc);
  ValidateRect(window, nullptr);
  return 1;
}

class NoTarget : public IDropTarget {
 public:
  virtual ~NoTarget() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE DragEnter(IDataObject*, DWORD, POINTL, DWORD*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL, DWORD*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Drop(IDataObject*, DWORD, POINTL, DWORD*) override { return S_OK; }
};

// The first target of a process makes the platform start a thread that stays, so there is one
// before the host counts.
void registerOne() {
  static NoTarget target;
  ASSERT_GE(OleInitialize(nullptr), 0);
  const HWND window =
      CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(RegisterDragDrop(window, &target), S_OK);
  EXPECT_EQ(RevokeDragDrop(window), S_OK);
  DestroyWindow(window);
  OleUninitialize();
}

class ViewTest : public PluginTest {
 protected:
  void SetUp() override {
    registerOne();
    PluginTest::SetUp();
    WNDCLASSW green = {};
    green.lpfnWndProc = greenProc;
    green.lpszClassName = L"ViewTestWindow";
    green.hInstance = GetModuleHandleW(nullptr);
    RegisterClassW(&green);
    top_ = CreateWindowExW(0, L"ViewTestWindow", L"", WS_POPUP | WS_VISIBLE, 0, 0, 200, 200,
                           nullptr, nullptr, nullptr, nullptr);
    child_ = CreateWindowExW(0, L"ViewTestWindow", L"", WS_CHILD | WS_VISIBLE, 10, 10, kSize, kSize,
                             top_, nullptr, nullptr, nullptr);
    UpdateWindow(top_);
    UpdateWindow(child_);
  }
  void TearDown() override {
    DestroyWindow(top_);
    PluginTest::TearDown();
  }

  NPWindow window() const {
    NPWindow window = {};
    window.window = child_;
    window.x = window.y = 10;
    window.width = window.height = kSize;
    return window;
  }
  void setWindow(Instance& instance) {
    NPWindow shown = window();
    EXPECT_EQ(host().plugin().setwindow(instance.npp(), &shown), NPERR_NO_ERROR);
  }
  void sendPicture(Instance& instance, const char* url, std::string data) {
    NPStream stream = {};
    stream.url = url;
    char type[] = "image/bmp";
    uint16_t kind = 0;
    host().plugin().newstream(instance.npp(), type, &stream, 0, &kind);
    host().plugin().write(instance.npp(), &stream, 0, static_cast<int32_t>(data.size()),
                          data.data());
    host().plugin().destroystream(instance.npp(), &stream, NPRES_DONE);
  }
  // The colour in the middle once everything that waits is painted.
  COLORREF painted(bool erase = false) {
    InvalidateRect(child_, nullptr, erase ? TRUE : FALSE);
    UpdateWindow(child_);
    const HDC dc = GetDC(child_);
    const COLORREF colour = GetPixel(dc, kSize / 2, kSize / 2);
    ReleaseDC(child_, dc);
    return colour;
  }

  HWND top_ = nullptr;
  HWND child_ = nullptr;
};

TEST_F(ViewTest, AnElementWithoutAPictureIsWhite) {
  Instance instance(host());
  setWindow(instance);
  EXPECT_EQ(painted(), kWhite);
}

TEST_F(ViewTest, APictureFillsTheElement) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/other.bmp", redPicture());
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/red.bmp", redPicture());
  EXPECT_EQ(painted(), kRed);
}

TEST_F(ViewTest, AnEmptyPictureChangesNothingAndABrokenOnePaintsNothing) {
  Instance instance(host(), {{"image", "http://x/red.bmp"}});
  setWindow(instance);
  sendPicture(instance, "http://x/red.bmp", "");
  EXPECT_EQ(painted(), kWhite);
  sendPicture(instance, "http://x/red.bmp", redPicture());
  EXPECT_EQ(painted(), kRed);
  sendPicture(instance, "http://x/red.bmp", "no picture at all");
  EXPECT_EQ(painted(), kRed);  // as it was left
}

TEST_F(ViewTest, ATransparentElementShowsWhatLiesBehindOnceItWasTaken) {
  Instance instance(host(), {{"transparent", "yes"}});
  setWindow(instance);
  NPWindow shown = window();
  shown.x = shown.y = 100;  // a place of the page where nothing of ours is
  EXPECT_EQ(host().plugin().setwindow(instance.npp(), &shown), NPERR_NO_ERROR);
  EXPECT_EQ(painted(true), kBehind);
}

TEST_F(ViewTest, TheWindowIsAsItWasWhenTheInstanceIsGone) {
  const LONG_PTR before = GetWindowLongPtrW(child_, GWLP_WNDPROC);
  for (int round = 0; round < 2; ++round) {
    Instance instance(host());
    setWindow(instance);
    EXPECT_NE(GetWindowLongPtrW(child_, GWLP_WNDPROC), before);
    EXPECT_NE(GetWindowLongPtrW(child_, GWLP_USERDATA), 0);
    EXPECT_NE(GetPropW(child_, L"OleDropTargetInterface"), nullptr);
    EXPECT_FALSE(logHas("RegisterDragDrop failed"));
    instance.end();
    EXPECT_EQ(GetWindowLongPtrW(child_, GWLP_WNDPROC), before);
    EXPECT_EQ(GetWindowLongPtrW(child_, GWLP_USERDATA), 0);
    EXPECT_EQ(GetPropW(child_, L"OleDropTargetInterface"), nullptr);
  }
}

TEST_F(ViewTest, AWindowMayGoBeforeItsInstance) {
  Instance instance(host(), {{"transparent", "yes"}, {"image", "http://x/red.bmp"}});
  setWindow(instance);
  DestroyWindow(child_);
  sendPicture(instance, "http://x/red.bmp", redPicture());
  setWindow(instance);
  EXPECT_TRUE(instance.call("initSession", {text("app"), text("")}).accepted);
}

TEST_F(ViewTest, ManyRoundsLeaveNoObjectOfTheGraphicsSystem) {
  const auto round = [this] {
    Instance instance(host(), {{"transparent", "yes"}, {"image", "http://x/red.bmp"}});
    setWindow(instance);
    setWindow(instance);
    sendPicture(instance, "http://x/red.bmp", redPicture());
    EXPECT_EQ(painted(true), kRed);
  };
  const auto objects = [] { return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); };
  for (int i = 0; i < 3; ++i) round();
  const DWORD before = objects();
  for (int i = 0; i < 50; ++i) round();
  EXPECT_EQ(objects(), before);
}

// The data of a drag: a list of files.
class FileList : public IDataObject {
 public:
  explicit FileList(const std::vector<std::wstring>& paths) {
    for (const std::wstring& path : paths) names_ += path + L'\0';
    names_ += L'\0';
  }
  virtual ~FileList() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override {
    ++asked;
    if (names_.size() == 1) return DV_E_FORMATETC;
    EXPECT_EQ(format->cfFormat, CF_HDROP);
    const size_t bytes = names_.size() * sizeof(wchar_t);
    medium->tymed = TYMED_HGLOBAL;
    medium->hGlobal = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
    medium->pUnkForRelease = nullptr;
    auto* const files = static_cast<DROPFILES*>(GlobalLock(medium->hGlobal));
    files->pFiles = sizeof(DROPFILES);
    files->fWide = TRUE;
    std::memcpy(files + 1, names_.data(), bytes);
    GlobalUnlock(medium->hGlobal);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC*) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }

  int asked = 0;

 private:
  std::wstring names_;
};

class DropTest : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    for (const char* const name : {"a.txt", "ö.txt"})
      TempFolder::write(folder_.path(name), "Hello");
    std::filesystem::create_directory(TempFolder::native(folder_.path("sub")));
  }

  std::string path(const std::string& name) const {
    std::string text = folder_.path(name);
    for (char& byte : text) byte = byte == '/' ? '\\' : byte;
    return text;
  }
  static std::string doubled(std::string text) {
    for (size_t at = 0; (at = text.find('\\', at)) != std::string::npos; at += 2) {
      text.insert(at, 1, '\\');
    }
    return text;
  }
  IDropTarget& target() const {
    return *static_cast<IDropTarget*>(GetPropW(child_, L"OleDropTargetInterface"));
  }
  HRESULT drop(std::initializer_list<const char*> names) {
    std::vector<std::wstring> paths;
    for (const char* const name : names) paths.push_back(toWide(path(name)));
    FileList list(paths);
    DWORD effect = DROPEFFECT_COPY;
    const HRESULT result = target().Drop(&list, 0, {}, &effect);
    asked_ = list.asked;
    return result;
  }
  bool isApproved(Instance& instance, const std::string& name) {
    return instance.call("readAsArrayBuffer", {text(path(name))}).value.text.rfind("data:", 0) == 0;
  }

  TempFolder folder_;
  int asked_ = 0;
};

TEST_F(DropTest, WithoutADropModeNothingIsTakenOrAskedFor) {
  Instance instance(host(), {{"drop-allow-multiple", "true"}});
  setWindow(instance);
  EXPECT_EQ(drop({"a.txt"}), S_OK);
  EXPECT_EQ(asked_, 0);
  EXPECT_FALSE(isApproved(instance, "a.txt"));
}

TEST_F(DropTest, ACallbackDropTellsTheHandlerAndApproves) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  const Host::PageReference handler = host().page.makeFunction("handler");
  instance.set("eventHandler", handler.value());
  EXPECT_EQ(drop({"ö.txt"}), S_OK);
  ASSERT_EQ(handler->calls.size(), 2u);
  EXPECT_THAT(handler->calls[0].arguments,
              ElementsAre(text("drop"), text("[\"" + doubled(path("ö.txt")) + "\"]")));
  EXPECT_EQ(handler->calls[1].arguments.at(0), text("dropex"));
  EXPECT_THAT(handler->calls[1].arguments.at(1).text,
              testing::HasSubstr("\"name\":\"" + doubled(path("ö.txt")) +
                                 R"(","size":5,"type":"text/plain"}]}})"));
  EXPECT_TRUE(isApproved(instance, "ö.txt"));
  target().DragOver(0, {}, nullptr);
  target().DragLeave();
  ASSERT_EQ(handler->calls.size(), 4u);
  EXPECT_THAT(handler->calls[2].arguments, ElementsAre(text("dragover"), text("")));
  EXPECT_THAT(handler->calls[3].arguments, ElementsAre(text("dragleave"), text("")));
  instance.set("eventHandler", Value::null());
}

TEST_F(DropTest, ASecondItemThatIsNotAllowedMakesTheWholeDropNothing) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  EXPECT_EQ(drop({"a.txt", "ö.txt"}), S_OK);
  EXPECT_FALSE(isApproved(instance, "a.txt"));
  EXPECT_FALSE(isApproved(instance, "ö.txt"));
}

TEST_F(DropTest, ADirectoryThatIsNotAllowedIsLeftOut) {
  Instance instance(host(), {{"drop-mode", "callback"}, {"drop-allow-multiple", "true"}});
  setWindow(instance);
  const Host::PageReference handler = host().page.makeFunction("handler");
  instance.set("eventHandler", handler.value());
  EXPECT_EQ(drop({"sub", "gone.txt", "a.txt"}), S_OK);
  ASSERT_EQ(handler->calls.size(), 2u);
  EXPECT_EQ(handler->calls[0].arguments.at(1), text("[\"" + doubled(path("a.txt")) + "\"]"));
  EXPECT_TRUE(logHas("ERR stat failed for file " + path("gone.txt") + "\r\n"));
  EXPECT_EQ(drop({"sub"}), S_OK);
  EXPECT_EQ(handler->calls.size(), 2u);
  instance.set("eventHandler", Value::null());
}

TEST_F(DropTest, AnAllowedDirectoryIsTold) {
  Instance instance(host(), {{"drop-mode", "callback"}, {"drop-allow-directories", "true"}});
  setWindow(instance);
  const Host::PageReference handler = host().page.makeFunction("handler");
  instance.set("eventHandler", handler.value());
  EXPECT_EQ(drop({"sub"}), S_OK);
  ASSERT_EQ(handler->calls.size(), 2u);
  EXPECT_THAT(handler->calls[1].arguments.at(1).text,
              testing::HasSubstr(R"("size":0,"type":"text/directory")"));
  instance.set("eventHandler", Value::null());
}

TEST_F(DropTest, WhatIsNoFilesOrNoDropIsInvalid) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  DWORD effect = 0;
  FileList nothing({});
  EXPECT_EQ(target().Drop(nullptr, 0, {}, &effect), E_INVALIDARG);
  EXPECT_EQ(target().Drop(&nothing, 0, {}, nullptr), E_INVALIDARG);
  EXPECT_EQ(target().Drop(&nothing, 0, {}, &effect), E_INVALIDARG);
}

TEST_F(DropTest, ATargetThatOutlivesItsViewAnswersAndDoesNothing) {
  std::optional<Instance> instance(std::in_place, host(),
                                   std::vector<Host::Parameter>{{"drop-mode", "callback"}});
  setWindow(*instance);
  IDropTarget* const kept = &target();
  void* same = nullptr;
  ASSERT_EQ(kept->QueryInterface(IID_IDropTarget, &same), S_OK);
  EXPECT_EQ(same, kept);
  EXPECT_EQ(kept->QueryInterface(IID_IDataObject, &same), E_NOINTERFACE);
  EXPECT_EQ(same, nullptr);
  EXPECT_EQ(kept->QueryInterface(IID_IDropTarget, nullptr), E_POINTER);
  instance.reset();
  FileList list({toWide(path("a.txt"))});
  DWORD effect = 0;
  EXPECT_EQ(kept->Drop(&list, 0, {}, &effect), S_OK);
  EXPECT_EQ(kept->DragOver(0, {}, &effect), S_OK);
  EXPECT_EQ(list.asked, 0);
  kept->Release();
}

}  // namespace
}  // namespace Vantrel::Web
