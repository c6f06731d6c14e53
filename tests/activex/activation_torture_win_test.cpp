// Lives of a control, again and again, with another call of the platform failing each time, until
// none is left. Whatever fails, no reference, window or handle is left, the library may be
// unloaded, and the next life works.
#include <gmock/gmock.h>

#include <windows.h>
#include <ole2.h>
#include <process.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/activex/control_fixture.h"
#include "tests/container/dragged_files_win.h"
#include "tests/container/drawing_win.h"
#include "tests/host/process_state.h"
#include "tests/plugin/red_bitmap.h"
#include "tests/support/fake_xml_http_win.h"
#include "tests/support/import_patch_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using TestSupport::FakeXmlHttp;
using TestSupport::ImportPatch;

// More calls than a life makes.
constexpr int kMostCalls = 20000;

// Which call of this thread is to fail, counted from now on.
struct Failure {
  DWORD thread = 0;
  int left = 0;  // 0 while nothing is to fail
  const char* failed = nullptr;
};
Failure failure;

bool fails(const char* name) {
  if (failure.left == 0 || GetCurrentThreadId() != failure.thread || --failure.left != 0) {
    return false;
  }
  failure.failed = name;
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return true;
}

// One call that fails when it is its turn: `Name` is its name, `otherwise` what a failure gives.
template <auto* Call, const char* Name, auto otherwise>
struct Failing;
template <class Result, class... Arguments, Result(WINAPI* Call)(Arguments...), const char* Name,
          auto otherwise>
struct Failing<Call, Name, otherwise> {
  static Result WINAPI call(Arguments... arguments) {
    return fails(Name) ? static_cast<Result>(otherwise) : Call(arguments...);
  }
};

class ActivationTortureTest : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
    http_.body = redBitmap(2, 2);
  }
  void TearDown() override {
    failure = {};
    patches_.clear();
    ControlTest::TearDown();
  }

  template <class Function>
  void patch(const char* name, Function* replacement) {
    patches_.push_back(std::make_unique<ImportPatch>(library().module(), name, replacement));
  }

  // All that a page does with a control, whatever each step comes to.
  void life(bool windowless) {
    Control control(container(), kControlClassId,
                    {.parameters = {{"image", "http://host/red.bmp"},
                                    {"drop-mode", "callback"},
                                    {"vantrel-launch-wait-timeout-ms", "0"}},
                     .site = {.windowless = windowless}});
    control.activate();
    Container::drawContent(control.unknown(), 4, 4, 0);
    control.set("name", text("a name"));
    control.call("queryVersion");
    control.call("initSession", {text("app"), text("")});
    DWORD connection = 0;
    const bool connected = SUCCEEDED(control.connect(*sink_, kEventInterfaceId, connection));
    ComPointer<IOleInPlaceObjectWindowless> object;
    ComPointer<IDropTarget> target;
    if (SUCCEEDED(control.query(object)) && SUCCEEDED(object->GetDropTarget(target.put()))) {
      Container::dragAndDrop(*target.get(), *files_);
    }
    container().pumpOnce();
    if (connected) control.disconnect(kEventInterfaceId, connection);
    target.reset();
    object.reset();
    control.end();
  }

  // The second time nothing is left that was not left by the first one.
  void torture(bool windowless) {
    sink_ = &container().book.make<EventSink>("sink", kEventInterfaceId);
    files_ = &container().book.make<Container::DraggedFiles>(
        "files", std::vector<std::wstring>{L"C:\\gone.txt"});
    eachFailure(windowless);
    const size_t handles = Host::handleCount();
    eachFailure(windowless);
    EXPECT_EQ(Host::handleCount(), handles);
  }

  FakeXmlHttp http_;
  EventSink* sink_ = nullptr;
  Container::DraggedFiles* files_ = nullptr;

 private:
  void eachFailure(bool windowless) {
    life(windowless);
    for (int n = 1; n <= kMostCalls && !HasFailure(); ++n) {
      failure = {GetCurrentThreadId(), n, nullptr};
      try {
        life(windowless);
      } catch (const std::runtime_error&) {
        // There was no control.
      }
      failure.left = 0;
      SCOPED_TRACE(std::to_string(n) + ": " +
                   (failure.failed != nullptr ? failure.failed : "none"));
      EXPECT_EQ(library().canUnload(), S_OK);
      EXPECT_EQ(GetWindow(container().window(), GW_CHILD), nullptr);
      EXPECT_EQ(container().book.references(), 0);
      sink_->events.clear();
      if (failure.failed != nullptr) continue;
      EXPECT_GT(n, 10);  // else nothing was proven
      return;
    }
    if (!HasFailure()) FAIL() << "it never ends";
  }

  std::vector<std::unique_ptr<ImportPatch>> patches_;
};

void* allocate(size_t size) {
  return fails("malloc") ? nullptr : std::malloc(size);
}

uintptr_t beginThread(void* security, unsigned stack, unsigned(WINAPI* start)(void*),
                      void* argument, unsigned flags, unsigned* id) {
  return fails("_beginthreadex") ? 0 : _beginthreadex(security, stack, start, argument, flags, id);
}

TEST_F(ActivationTortureTest, WithoutMemory) {
  patch("malloc", allocate);
  torture(true);
}

TEST_F(ActivationTortureTest, WithoutMemoryInAWindow) {
  patch("malloc", allocate);
  torture(false);
}

constexpr char kCreateWindow[] = "CreateWindowExW";
constexpr char kRegisterClass[] = "RegisterClassExW";
constexpr char kRegisterDragDrop[] = "RegisterDragDrop";
constexpr char kCoCreateInstance[] = "CoCreateInstance";
constexpr char kSysAllocString[] = "SysAllocString";
constexpr char kSysAllocStringLen[] = "SysAllocStringLen";
constexpr char kLoadTypeLib[] = "LoadTypeLibEx";
constexpr char kCreateDibSection[] = "CreateDIBSection";
constexpr char kCreateDc[] = "CreateCompatibleDC";

TEST_F(ActivationTortureTest, WithoutTheSystem) {
  patch(kCreateWindow, &Failing<&CreateWindowExW, kCreateWindow, nullptr>::call);
  patch(kRegisterClass, &Failing<&RegisterClassExW, kRegisterClass, 0>::call);
  patch(kRegisterDragDrop, &Failing<&RegisterDragDrop, kRegisterDragDrop, E_OUTOFMEMORY>::call);
  patch(kCoCreateInstance, &Failing<&CoCreateInstance, kCoCreateInstance, E_OUTOFMEMORY>::call);
  patch(kSysAllocString, &Failing<&SysAllocString, kSysAllocString, nullptr>::call);
  patch(kSysAllocStringLen, &Failing<&SysAllocStringLen, kSysAllocStringLen, nullptr>::call);
  patch(kLoadTypeLib, &Failing<&LoadTypeLibEx, kLoadTypeLib, E_OUTOFMEMORY>::call);
  patch(kCreateDibSection, &Failing<&CreateDIBSection, kCreateDibSection, nullptr>::call);
  patch(kCreateDc, &Failing<&CreateCompatibleDC, kCreateDc, nullptr>::call);
  patch("_beginthreadex", beginThread);
  torture(true);
  torture(false);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
