// The control's view without a window, as containers ask for it: drawing, sizes, hits, and the sink
// that hears of a change.
#include <gmock/gmock.h>

#include <windows.h>
#include <ocidl.h>

#include <vector>

#include "tests/activex/control_fixture.h"
#include "tests/plugin/red_bitmap.h"
#include "tests/support/fake_xml_http_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using TestSupport::FakeXmlHttp;

constexpr LONG kWhole = -1;
constexpr RECTL kBounds = {0, 0, 20, 10};

// What a container leaves to hear of changes.
class AdviseSink : public Container::Counted<IAdviseSink> {
 public:
  using Counted::Counted;
  STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override {}
  STDMETHODIMP_(void) OnViewChange(DWORD aspect, LONG index) override {
    EXPECT_EQ(aspect, static_cast<DWORD>(DVASPECT_CONTENT));
    EXPECT_EQ(index, kWhole);
    ++changes;
    if (onChange) onChange();
  }
  STDMETHODIMP_(void) OnRename(IMoniker*) override {}
  STDMETHODIMP_(void) OnSave() override {}
  STDMETHODIMP_(void) OnClose() override {}

  int changes = 0;
  std::function<void()> onChange;
};

WINBOOL CALLBACK goOn(ULONG_PTR cookie) {
  return cookie != 0 ? TRUE : FALSE;
}

class ControlViewTest : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
    http_.body = redBitmap(2, 2);
    control_ =
        makeControl({.parameters = {{"image", "http://host/red.bmp"}, {"drop-mode", "callback"}},
                     .load = false});
    ASSERT_EQ(control_->query(view_), S_OK);
    dc_ = CreateCompatibleDC(nullptr);
  }
  void TearDown() override {
    DeleteDC(dc_);
    view_.reset();
    control_.reset();
    ControlTest::TearDown();
  }

  HRESULT draw(DWORD aspect, LONG index, const RECTL* bounds, ULONG_PTR cookie = 1) {
    return view_->Draw(aspect, index, nullptr, nullptr, nullptr, dc_, bounds, nullptr, goOn,
                       cookie);
  }
  AdviseSink& sink() { return container().book.make<AdviseSink>("advise sink"); }

  FakeXmlHttp http_;
  std::unique_ptr<Control> control_;
  ComPointer<IViewObjectEx> view_;
  HDC dc_ = nullptr;
};

TEST_F(ControlViewTest, OnlyTheWholeContentIsDrawn) {
  EXPECT_EQ(draw(DVASPECT_CONTENT, kWhole, &kBounds), S_OK);
  EXPECT_EQ(draw(DVASPECT_ICON, kWhole, &kBounds), DV_E_DVASPECT);
  EXPECT_EQ(draw(DVASPECT_CONTENT, 0, &kBounds), DV_E_LINDEX);
  EXPECT_EQ(draw(DVASPECT_CONTENT, kWhole, nullptr), E_INVALIDARG);
  EXPECT_EQ(draw(DVASPECT_CONTENT, kWhole, &kBounds, 0), E_ABORT);
  EXPECT_EQ(view_->Draw(DVASPECT_CONTENT, kWhole, nullptr, nullptr, nullptr, nullptr, &kBounds,
                        nullptr, nullptr, 0),
            E_INVALIDARG);
}

TEST_F(ControlViewTest, WithoutBoundsItDrawsWhereItStandsWithoutAWindow) {
  EXPECT_EQ(control_->load(), S_OK);
  ASSERT_EQ(control_->activate(), S_OK);
  EXPECT_EQ(draw(DVASPECT_CONTENT, kWhole, nullptr), S_OK);
  EXPECT_EQ(control_->deactivate(), S_OK);
  EXPECT_EQ(draw(DVASPECT_CONTENT, kWhole, nullptr), E_INVALIDARG);
}

TEST_F(ControlViewTest, DrawingLeavesTheContextAsItWas) {
  EXPECT_EQ(control_->load(), S_OK);
  SetStretchBltMode(dc_, BLACKONWHITE);
  EXPECT_EQ(draw(DVASPECT_CONTENT, kWhole, &kBounds), S_OK);
  EXPECT_EQ(GetStretchBltMode(dc_), BLACKONWHITE);
}

TEST_F(ControlViewTest, ItsSizeIsTheContainers) {
  ComPointer<IOleObject> object;
  ASSERT_EQ(control_->query(object), S_OK);
  SIZEL wanted = {5000, 3000};
  ASSERT_EQ(object->SetExtent(DVASPECT_CONTENT, &wanted), S_OK);
  SIZEL size = {};
  EXPECT_EQ(view_->GetExtent(DVASPECT_CONTENT, kWhole, nullptr, &size), S_OK);
  EXPECT_EQ(size.cx, 5000);
  EXPECT_EQ(size.cy, 3000);
  RECTL rect = {};
  EXPECT_EQ(view_->GetRect(DVASPECT_CONTENT, &rect), S_OK);
  EXPECT_EQ(rect.right, 5000);
  EXPECT_EQ(rect.bottom, 3000);
  EXPECT_EQ(view_->GetExtent(DVASPECT_ICON, kWhole, nullptr, &size), DV_E_DVASPECT);
  EXPECT_EQ(view_->GetExtent(DVASPECT_CONTENT, kWhole, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(view_->GetRect(DVASPECT_ICON, &rect), DV_E_DVASPECT);
  EXPECT_EQ(view_->GetNaturalExtent(DVASPECT_CONTENT, kWhole, nullptr, nullptr, nullptr, &size),
            E_NOTIMPL);
}

TEST_F(ControlViewTest, PointsAndRectanglesHitItInItsBounds) {
  const RECT bounds = {10, 10, 30, 20};
  DWORD hit = ~DWORD{0};
  EXPECT_EQ(view_->QueryHitPoint(DVASPECT_CONTENT, &bounds, {10, 19}, 5, &hit), S_OK);
  EXPECT_EQ(hit, static_cast<DWORD>(HITRESULT_HIT));
  EXPECT_EQ(view_->QueryHitPoint(DVASPECT_CONTENT, &bounds, {30, 19}, 5, &hit), S_OK);
  EXPECT_EQ(hit, static_cast<DWORD>(HITRESULT_OUTSIDE));
  const RECT overlapping = {0, 0, 11, 11};
  const RECT beside = {0, 0, 10, 10};
  EXPECT_EQ(view_->QueryHitRect(DVASPECT_CONTENT, &bounds, &overlapping, 0, &hit), S_OK);
  EXPECT_EQ(hit, static_cast<DWORD>(HITRESULT_HIT));
  EXPECT_EQ(view_->QueryHitRect(DVASPECT_CONTENT, &bounds, &beside, 0, &hit), S_OK);
  EXPECT_EQ(hit, static_cast<DWORD>(HITRESULT_OUTSIDE));
  EXPECT_EQ(view_->QueryHitPoint(DVASPECT_ICON, &bounds, {10, 19}, 5, &hit), DV_E_DVASPECT);
  EXPECT_EQ(view_->QueryHitRect(DVASPECT_CONTENT, nullptr, &beside, 0, &hit), E_POINTER);
}

TEST_F(ControlViewTest, ItPromisesNeitherColoursNorAGround) {
  DWORD status = ~DWORD{0};
  EXPECT_EQ(view_->GetViewStatus(&status), S_OK);
  EXPECT_EQ(status, 0U);
  auto* colors = reinterpret_cast<LOGPALETTE*>(this);
  EXPECT_EQ(view_->GetColorSet(DVASPECT_CONTENT, kWhole, nullptr, nullptr, nullptr, &colors),
            S_FALSE);
  EXPECT_EQ(colors, nullptr);
  DWORD cookie = 0;
  EXPECT_EQ(view_->Freeze(DVASPECT_CONTENT, kWhole, nullptr, &cookie), E_NOTIMPL);
  EXPECT_EQ(view_->Unfreeze(0), E_NOTIMPL);
}

TEST_F(ControlViewTest, ASinkHearsOfThePicture) {
  AdviseSink& told = sink();
  ASSERT_EQ(view_->SetAdvise(DVASPECT_CONTENT, 0, &told), S_OK);
  EXPECT_EQ(told.changes, 0);
  EXPECT_EQ(control_->load(), S_OK);
  EXPECT_EQ(told.changes, 1);
  DWORD aspects = 0;
  DWORD flags = ~DWORD{0};
  ComPointer<IAdviseSink> kept;
  EXPECT_EQ(view_->GetAdvise(&aspects, &flags, kept.put()), S_OK);
  EXPECT_EQ(kept.get(), &told);
  EXPECT_EQ(aspects, static_cast<DWORD>(DVASPECT_CONTENT));
  EXPECT_EQ(flags, 0U);
  EXPECT_EQ(view_->SetAdvise(0, 0, nullptr), S_OK);
  EXPECT_EQ(view_->GetAdvise(nullptr, nullptr, kept.put()), S_OK);
  EXPECT_EQ(kept.get(), nullptr);
}

TEST_F(ControlViewTest, ASinkMayWantToHearAtOnceOrOnceOnly) {
  AdviseSink& told = sink();
  ASSERT_EQ(view_->SetAdvise(DVASPECT_CONTENT, ADVF_PRIMEFIRST | ADVF_ONLYONCE, &told), S_OK);
  EXPECT_EQ(told.changes, 1);
  EXPECT_EQ(told.references(), 0);
  EXPECT_EQ(control_->load(), S_OK);
  EXPECT_EQ(told.changes, 1);
}

TEST_F(ControlViewTest, ASinkForAnotherAspectHearsNothing) {
  AdviseSink& told = sink();
  ASSERT_EQ(view_->SetAdvise(DVASPECT_ICON, ADVF_PRIMEFIRST, &told), S_OK);
  EXPECT_EQ(control_->load(), S_OK);
  EXPECT_EQ(told.changes, 0);
}

TEST_F(ControlViewTest, ASinkMayEndTheControl) {
  AdviseSink& told = sink();
  ASSERT_EQ(view_->SetAdvise(DVASPECT_CONTENT, 0, &told), S_OK);
  view_.reset();
  told.onChange = [this] {
    // The call of the load under way, and what it called through.
    if (!control_->ended()) control_->end(2);
  };
  EXPECT_EQ(control_->load(), S_OK);
  EXPECT_EQ(told.changes, 1);
  EXPECT_TRUE(control_->ended());
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
