// A thousand controls within one life of the library, each with a picture, a window or none, drops
// and the property page. After some rounds to warm up nothing grows any more.
#include <gmock/gmock.h>

#include <windows.h>
#include <ocidl.h>

#include <string>
#include <vector>

#include "tests/activex/control_fixture.h"
#include "tests/activex/registered_keys_win.h"
#include "tests/container/dragged_files_win.h"
#include "tests/container/drawing_win.h"
#include "tests/host/process_growth.h"
#include "tests/plugin/red_bitmap.h"
#include "tests/support/fake_xml_http_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using Container::ControlLibrary;
using Container::CountingContainer;
using TestSupport::FakeXmlHttp;

constexpr int kWarmUpRounds = 100;
constexpr int kRounds = 1000;
constexpr uint32_t kRedPixel = 0x00FF0000;

void dropOn(Control& control, CountingContainer& container) {
  auto& files = container.book.make<Container::DraggedFiles>(
      "files", std::vector<std::wstring>{L"C:\\gone.txt"});
  ComPointer<IOleInPlaceObjectWindowless> object;
  ASSERT_EQ(control.query(object), S_OK);
  ComPointer<IDropTarget> target;
  ASSERT_EQ(object->GetDropTarget(target.put()), S_OK);
  EXPECT_EQ(Container::dragAndDrop(*target.get(), files), S_OK);
  container.pumpOnce();
}

void showPage(ControlLibrary& library, HWND parent) {
  ComPointer<IPropertyPage> page;
  ASSERT_EQ(library.create(kPropertyPageClassId, nullptr, IID_IPropertyPage, page.putVoid()), S_OK);
  constexpr RECT kPlace = {0, 0, 50, 50};
  EXPECT_EQ(page->Activate(parent, &kPlace, FALSE), S_OK);
  EXPECT_EQ(page->Show(SW_SHOW), S_OK);
  EXPECT_EQ(page->Deactivate(), S_OK);
}

class ViewRoundsTest : public testing::Test {
 protected:
  void round(bool windowless) {
    CountingContainer container(*library_);
    auto& handler = container.book.make<PageFunction>("handler");
    {
      Control control(container, kControlClassId,
                      {.parameters = {{"image", "http://host/red.bmp"}, {"drop-mode", "callback"}},
                       .site = {.windowless = windowless}});
      control.set("eventHandler", Variant::of(&handler));
      EXPECT_EQ(control.activate(), S_OK);
      EXPECT_EQ(Container::drawContent(control.unknown(), 4, 4, 0).at(2, 2), kRedPixel);
      dropOn(control, container);
      EXPECT_EQ(handler.calls.size(), 2U);
      showPage(*library_, container.window());
    }
    for (const std::string& fault : container.finish()) ADD_FAILURE() << fault;
    http_.calls.clear();
  }

  void rounds(int count) {
    for (int i = 0; i < count && !HasFailure(); ++i) round(i % 2 == 0);
  }

  const Host::ScratchProfile profile_;
  FakeXmlHttp http_;
  std::unique_ptr<ControlLibrary> library_ =
      std::make_unique<ControlLibrary>(TestSupport::libraryPath());
};

TEST_F(ViewRoundsTest, AThousandControlsLeaveNothing) {
  http_.body = redBitmap(2, 2);
  // The face stays started, as in a browser with another control.
  ComPointer<IClassFactory> factory;
  ASSERT_EQ(library_->classObject(kControlClassId, IID_IClassFactory, factory.putVoid()), S_OK);
  rounds(kWarmUpRounds);
  EXPECT_EQ(Host::growthOver([this] { rounds(kRounds); }, {}), "");
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
