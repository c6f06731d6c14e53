#include "tools/user/file_drag_win.h"

#include <shlobj.h>

#include <cstring>
#include <utility>

// The platform's interfaces have no virtual destructor.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace Vantrel::StandIn {

namespace {

constexpr DWORD kPause = 10;      // milliseconds between two movements or looks
constexpr int kMostSteps = 1000;  // of these, where nothing comes of them
constexpr int kLooks = 3;         // of the drag at a place before the hand moves on

void sendMouse(DWORD flags, LONG x = 0, LONG y = 0) {
  INPUT input = {};
  input.type = INPUT_MOUSE;
  input.mi.dx = x;
  input.mi.dy = y;
  input.mi.dwFlags = flags;
  SendInput(1, &input, sizeof input);
}

void moveTo(POINT place) {
  constexpr LONG kWhole = 65536;  // a screen's side, in the units of the call
  const auto scaled = [](LONG at, int side) { return (at * kWhole + kWhole / 2) / side; };
  sendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, scaled(place.x, GetSystemMetrics(SM_CXSCREEN)),
            scaled(place.y, GetSystemMetrics(SM_CYSCREEN)));
}

// Until this thread has heard of it.
void pressButton(POINT place) {
  moveTo(place);
  sendMouse(MOUSEEVENTF_LEFTDOWN);
  for (int step = 0; step < kMostSteps && GetKeyState(VK_LBUTTON) >= 0; ++step) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
    Sleep(kPause);
  }
}

// Where the drag comes from. It ends when the button is up.
class DragSource : public IDropSource {
 public:
  virtual ~DragSource() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = id == IID_IUnknown || id == IID_IDropSource;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL escape, DWORD keys) override {
    if (escape != FALSE) return DRAGDROP_S_CANCEL;
    return (keys & MK_LBUTTON) == 0 ? DRAGDROP_S_DROP : S_OK;
  }
  HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD) override {
    ++looks;
    return DRAGDROP_S_USEDEFAULTCURSORS;
  }

  std::atomic<int> looks = 0;  // of the drag at the window below the mouse
};

// The hand that moves the mouse, a thread of its own.
class Hand {
 public:
  Hand(const DragSource& source, std::vector<POINT> through)
      : source_(source),
        through_(std::move(through)),
        thread_(CreateThread(nullptr, 0, run, this, 0, nullptr)) {}
  ~Hand() { finish(); }
  Hand(const Hand&) = delete;
  Hand& operator=(const Hand&) = delete;

  // Waits for its end; whether it was seen at every place.
  bool finish() {
    if (thread_ != nullptr) {
      WaitForSingleObject(thread_, INFINITE);
      CloseHandle(std::exchange(thread_, nullptr));
    }
    return seen_;
  }

 private:
  static DWORD WINAPI run(void* self) {
    static_cast<Hand*>(self)->work();
    return 0;
  }
  void work() {
    seen_ = true;
    for (const POINT& place : through_) {
      const int wanted = source_.looks + kLooks;
      for (int step = 0; step < kMostSteps && source_.looks < wanted; ++step) {
        moveTo({place.x + step % 2, place.y});  // the system tells of movements only
        Sleep(kPause);
      }
      if (source_.looks < wanted) seen_ = false;
    }
    sendMouse(MOUSEEVENTF_LEFTUP);
  }

  const DragSource& source_;
  const std::vector<POINT> through_;
  bool seen_ = false;  // the thread's until its end
  HANDLE thread_;
};

}  // namespace

FileList::FileList(std::vector<wchar_t> paths) : names_(std::move(paths)) {
  names_.push_back(L'\0');
}

HRESULT STDMETHODCALLTYPE FileList::QueryInterface(REFIID id, void** object) {
  const bool known = id == IID_IUnknown || id == IID_IDataObject;
  *object = known ? this : nullptr;
  return known ? S_OK : E_NOINTERFACE;
}

HRESULT STDMETHODCALLTYPE FileList::QueryGetData(FORMATETC* format) {
  return format->cfFormat == CF_HDROP && names_.size() > 1 ? S_OK : DV_E_FORMATETC;
}

HRESULT STDMETHODCALLTYPE FileList::GetData(FORMATETC* format, STGMEDIUM* medium) {
  ++asked_;
  if (QueryGetData(format) != S_OK) return DV_E_FORMATETC;
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

HRESULT dragWithMouse(FileList& data, POINT from, std::vector<POINT> through) {
  pressButton(from);
  DragSource source;
  Hand hand(source, std::move(through));
  DWORD effect = 0;
  const HRESULT result = DoDragDrop(&data, &source, DROPEFFECT_COPY, &effect);
  return hand.finish() ? result : E_FAIL;
}

}  // namespace Vantrel::StandIn
