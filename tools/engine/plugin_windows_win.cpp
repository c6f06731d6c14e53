#include "plugin_windows.h"

#include <windows.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

#include "bridge.h"
#include "fault_guard.h"
#include "tools/user/file_drag_win.h"
#include "windows_text.h"

namespace engine {
namespace {

constexpr wchar_t kWindowClass[] = L"BrowserWindow";
constexpr UINT kServeMessage = WM_APP;

// The engine's thread is unknown to Wine and cannot post a message, so it rings here and a Wine
// thread that waits for the bell posts the message in its place.
class Bell {
 public:
  void ring() {
    {
      const std::lock_guard lock(mutex_);
      rung_ = true;
    }
    changed_.notify_one();
  }
  void wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return rung_; });
    rung_ = false;
  }

 private:
  std::mutex mutex_;  // guards rung_
  std::condition_variable changed_;
  bool rung_ = false;
};

Bell bell;
std::map<NPP, HWND> children;  // touched by the plug-in's thread only

DWORD WINAPI postServeMessages(void* window) {
  for (;;) {
    bell.wait();
    PostMessageW(static_cast<HWND>(window), kServeMessage, 0, 0);
  }
}

void pumpMessages() {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == kServeMessage) {
    bridge().serve(Bridge::Side::kPlugin);
    return 0;
  }
  return DefWindowProcW(window, message, wparam, lparam);
}

}  // namespace

bool PluginWindows::create() {
  WNDCLASSW description{};
  description.lpfnWndProc = windowProcedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
  description.lpszClassName = kWindowClass;
  if (!RegisterClassW(&description)) return false;
  HWND window = CreateWindowExW(0, kWindowClass, L"Browser", WS_POPUP | WS_CLIPCHILDREN, 0, 0, 1024,
                                768, nullptr, nullptr, description.hInstance, nullptr);
  if (!window) return false;
  top_ = window;
  // The children of a hidden window are never painted.
  ShowWindow(window, SW_SHOWNOACTIVATE);
  bridge().attach(
      Bridge::Side::kPlugin, [] { bell.ring(); }, runGuarded);
  HANDLE thread = CreateThread(nullptr, 0, postServeMessages, window, 0, nullptr);
  if (!thread) return false;
  CloseHandle(thread);
  return true;
}

void* PluginWindows::place(NPP instance, int32_t x, int32_t y, uint32_t width, uint32_t height) {
  HWND& child = children[instance];
  if (!child) {
    child =
        CreateWindowExW(0, kWindowClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 1, 1,
                        static_cast<HWND>(top_), nullptr, GetModuleHandleW(nullptr), nullptr);
  }
  SetWindowPos(child, nullptr, x, y, static_cast<int>(width), static_cast<int>(height),
               SWP_NOZORDER | SWP_NOACTIVATE);
  return child;
}

void PluginWindows::remove(NPP instance) {
  const auto found = children.find(instance);
  if (found == children.end()) return;
  DestroyWindow(found->second);
  children.erase(found);
}

PluginWindows::Picture PluginWindows::picture(NPP instance) {
  const auto found = children.find(instance);
  RECT area{};
  if (found == children.end() || !GetClientRect(found->second, &area)) return {};
  UpdateWindow(found->second);
  Picture result{area.right, area.bottom, {}};
  BITMAPINFO format{};
  format.bmiHeader.biSize = sizeof format.bmiHeader;
  format.bmiHeader.biWidth = result.width;
  format.bmiHeader.biHeight = -result.height;  // rows from the top
  format.bmiHeader.biPlanes = 1;
  format.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (!bitmap) return {};
  HDC memory = CreateCompatibleDC(nullptr);
  HGDIOBJ before = SelectObject(memory, bitmap);
  HDC window = GetDC(found->second);
  BitBlt(memory, 0, 0, result.width, result.height, window, 0, 0, SRCCOPY);
  GdiFlush();
  const auto* first = static_cast<const uint32_t*>(bits);
  result.pixels.assign(
      first, first + static_cast<size_t>(result.width) * static_cast<size_t>(result.height));
  ReleaseDC(found->second, window);
  SelectObject(memory, before);
  DeleteDC(memory);
  DeleteObject(bitmap);
  return result;
}

// COM is up on this thread as long as the library is started.
bool PluginWindows::drop(int x, int y, const std::vector<std::string>& paths) {
  std::vector<wchar_t> names;
  for (const std::string& path : paths) {
    const WideText name = windowsPath(path);
    names.insert(names.end(), name.begin(), name.end());
  }
  Vantrel::StandIn::FileList files(std::move(names));
  RECT area{};
  GetWindowRect(static_cast<HWND>(top_), &area);
  const POINT corner{area.right - 2, area.bottom - 2};
  const POINT place{area.left + x, area.top + y};
  return Vantrel::StandIn::dragWithMouse(files, corner, {place}) == DRAGDROP_S_DROP;
}

void PluginWindows::run() {
  runGuarded(pumpMessages);
}

void PluginWindows::quit() {
  PostQuitMessage(0);
}

}  // namespace engine
