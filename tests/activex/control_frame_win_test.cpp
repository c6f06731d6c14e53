// The control's properties in the system's frame, asked for as a container does, and a page that
// ends the control while it is shown.
#include <windows.h>
#include <olectl.h>

#include "tests/activex/control_fixture.h"
#include "tests/support/dialog_driver_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using TestSupport::DialogDriver;
using TestSupport::PageTask;

// The system finds the page through the class object, as it would through the registry.
class ControlFrameTest : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
    ComPointer<IClassFactory> factory;
    ASSERT_EQ(library().classObject(kPropertyPageClassId, IID_IClassFactory, factory.putVoid()),
              S_OK);
    ASSERT_EQ(CoRegisterClassObject(kPropertyPageClassId, factory.get(), CLSCTX_INPROC_SERVER,
                                    REGCLS_MULTIPLEUSE, &cookie_),
              S_OK);
  }
  void TearDown() override {
    CoRevokeClassObject(cookie_);
    ControlTest::TearDown();
  }
  HRESULT showProperties(Control& control) {
    ComPointer<IOleObject> object;
    const HRESULT offered = control.query(object);
    if (FAILED(offered)) return offered;
    IOleObject* const held = object.get();
    object.reset();  // the call's own hold is what keeps the control
    return held->DoVerb(OLEIVERB_PROPERTIES, nullptr, &control.site(), 0, container().window(),
                        nullptr);
  }

  DWORD cookie_ = 0;
};

TEST_F(ControlFrameTest, ItShowsUntilTheUserHasDone) {
  const auto control = makeControl();
  const DialogDriver driver([](HWND dialog) { DialogDriver::accept(dialog); });
  EXPECT_EQ(showProperties(*control), S_OK);
}

TEST_F(ControlFrameTest, APageMayEndTheControlMeanwhile) {
  auto control = makeControl();
  const PageTask task([&] {
    ComPointer<IOleObject> object;
    ASSERT_EQ(control->query(object), S_OK);
    object->Close(OLECLOSE_NOSAVE);
    object->SetClientSite(nullptr);
    object.reset();
    // The call and the frame hold it still.
    IUnknown* const unknown = control->unknown();
    unknown->AddRef();
    const ULONG left = unknown->Release();
    control->release(static_cast<int>(left) - 1);
    EXPECT_FALSE(logHas("~COrvaneWebCtrl()"));
  });
  {
    const DialogDriver driver([&task](HWND dialog) {
      task.run();
      DialogDriver::cancel(dialog);
    });
    EXPECT_EQ(showProperties(*control), S_OK);
  }
  EXPECT_TRUE(logHas("~COrvaneWebCtrl()"));
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
