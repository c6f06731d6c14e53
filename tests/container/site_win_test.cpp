// What a site answers a control: its document with each step broken, its ambient properties,
// whether a control may be without a window.
#include <gtest/gtest.h>
#include <olectl.h>

#include "tests/container/container_fixture.h"
#include "tests/container/probe_control.h"

namespace Vantrel::Web::Container {
namespace {

constexpr IID kDocumentInterface = {
    0x332C4425, 0x26CB, 0x11D0, {0xB4, 0x83, 0x00, 0xC0, 0x4F, 0xD9, 0x01, 0x19}};

// A member of a table laid out as the platform's interfaces are.
template <typename Result>
HRESULT member(void* object, size_t place, Result* result) {
  using Function = HRESULT(STDMETHODCALLTYPE*)(void*, Result*);
  return (*static_cast<Function**>(object))[place](object, result);
}

class SiteTest : public ContainerTest {
 protected:
  void SetUp() override { open(kProbeLibrary); }
  Site& makeSite(const SiteSettings& settings = {}) {
    return container().book.make<Site>("site", container().window(), settings);
  }
};

TEST_F(SiteTest, TheDocumentTellsItsHost) {
  Site& site = makeSite();
  site.document().address.host = L"a.host";
  ComPointer<IOleContainer> page;
  ASSERT_EQ(site.GetContainer(page.put()), S_OK);
  ComPointer<IUnknown> document;
  ASSERT_EQ(page->QueryInterface(kDocumentInterface, document.putVoid()), S_OK);
  ComPointer<IUnknown> location;
  ASSERT_EQ(member(document.get(), 37, location.put()), S_OK);
  BSTR host = nullptr;
  ASSERT_EQ(member(location.get(), 14, &host), S_OK);
  EXPECT_EQ(utf8Of(host), "a.host");
  SysFreeString(host);
}

TEST_F(SiteTest, EachStepCanBeBroken) {
  Site& site = makeSite();
  PageAddress& address = site.document().address;
  ComPointer<IOleContainer> page;
  ASSERT_EQ(site.GetContainer(page.put()), S_OK);
  ComPointer<IUnknown> document;
  ASSERT_EQ(page->QueryInterface(kDocumentInterface, document.putVoid()), S_OK);
  ComPointer<IUnknown> location;
  ASSERT_EQ(member(document.get(), 37, location.put()), S_OK);

  address.hostname = DocumentStep::kFails;
  BSTR host = nullptr;
  EXPECT_EQ(member(location.get(), 14, &host), E_ACCESSDENIED);
  address.location = DocumentStep::kNull;
  ComPointer<IUnknown> none;
  EXPECT_EQ(member(document.get(), 37, none.put()), S_OK);
  EXPECT_EQ(none.get(), nullptr);
  address.document = DocumentStep::kFails;
  EXPECT_EQ(page->QueryInterface(kDocumentInterface, none.putVoid()), E_NOINTERFACE);
  address.container = DocumentStep::kFails;
  ComPointer<IOleContainer> noPage;
  EXPECT_EQ(site.GetContainer(noPage.put()), E_NOINTERFACE);
}

TEST_F(SiteTest, AmbientPropertiesAreThoseThatWereSet) {
  Site& site = makeSite();
  site.setAmbient(DISPID_AMBIENT_USERMODE, Variant::boolean(true));
  Variant value;
  DISPPARAMS none{};
  EXPECT_EQ(site.Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                        value.put(), nullptr, nullptr),
            S_OK);
  EXPECT_EQ(value.describe(), "true");
  EXPECT_EQ(site.Invoke(DISPID_AMBIENT_LOCALEID, IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                        value.put(), nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(site.askedAmbients[DISPID_AMBIENT_LOCALEID], 1);
}

TEST_F(SiteTest, ASiteWithoutWindowlessControlsDoesNotOfferThem) {
  ComPointer<IOleInPlaceSiteWindowless> windowless;
  EXPECT_EQ(makeSite({.windowless = false})
                .QueryInterface(IID_IOleInPlaceSiteWindowless, windowless.putVoid()),
            E_NOINTERFACE);
  EXPECT_EQ(makeSite().QueryInterface(IID_IOleInPlaceSiteWindowless, windowless.putVoid()), S_OK);
  ComPointer<IOleInPlaceSite> inPlace;
  EXPECT_EQ(makeSite({.inPlace = false}).QueryInterface(IID_IOleInPlaceSite, inPlace.putVoid()),
            E_NOINTERFACE);
}

}  // namespace
}  // namespace Vantrel::Web::Container
