// Both faces of the library in one process: what they share starts with the first and ends with the
// last of them, whichever that is.
#include <windows.h>
#include <ocidl.h>
#include <ole2.h>

#include "browsers/activex/identifiers.h"
#include "dialogs/dialog_com_win.h"
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

class BothFacesTest : public PluginTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(OleInitialize(nullptr), S_OK);
    open(kPluginLibrary);
  }
  void TearDown() override {
    PluginTest::TearDown();
    OleUninitialize();
  }

  ComPointer<IPersistStreamInit> makeControl() {
    using Entry = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const auto entry = reinterpret_cast<Entry>(host().symbol("DllGetClassObject"));
    ComPointer<IClassFactory> factory;
    ComPointer<IPersistStreamInit> control;
    EXPECT_EQ(entry(kControlClassId, IID_IClassFactory, factory.putVoid()), S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPersistStreamInit, control.putVoid()), S_OK);
    return control;
  }
};

TEST_F(BothFacesTest, AControlGoesOnWhenTheOtherFaceHasEnded) {
  host().initialize();
  ComPointer<IPersistStreamInit> control = makeControl();
  host().shutdown();
  EXPECT_TRUE(logHas("Shutting down Orvane Web Gecko plugin"));
  EXPECT_FALSE(logHas("Shutting down Orvane Web ActiveX plugin"));
  EXPECT_FALSE(logHas("RunnableScheduler::cleanup()"));
  EXPECT_EQ(control->InitNew(), S_OK);
  EXPECT_TRUE(logHas("COrvaneWebCtrl::initPlugin()"));
  control.reset();
  EXPECT_EQ(logCount("RunnableScheduler::cleanup()"), 1U);
  EXPECT_TRUE(logHas("Shutting down Orvane Web ActiveX plugin"));
}

TEST_F(BothFacesTest, AnInstanceGoesOnWhenTheLastControlHasGone) {
  ComPointer<IPersistStreamInit> control = makeControl();
  host().initialize();
  host().getEntryPoints();
  EXPECT_EQ(logCount("Initializing Orvane Web ActiveX plugin"), 1U);
  // The module's start is one, and the face asks once more.
  EXPECT_EQ(logCount("RunnableScheduler::init()"), 2U);
  Instance instance(host());
  control.reset();
  EXPECT_FALSE(logHas("Shutting down Orvane Web ActiveX plugin"));
  EXPECT_FALSE(logHas("RunnableScheduler::cleanup()"));
  EXPECT_TRUE(instance.call("queryVersion", {}).accepted);
  EXPECT_TRUE(logHas("queryVersion(): argCount=0"));
  instance.end();
  host().shutdown();
  EXPECT_EQ(logCount("RunnableScheduler::cleanup()"), 1U);
  EXPECT_EQ(logCount("Shutting down Orvane Web ActiveX plugin"), 1U);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
