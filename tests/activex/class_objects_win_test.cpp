// The entries that COM calls: class objects, and when the library may go.
#include "tests/activex/activex_fixture_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

class ClassObjectsTest : public ActiveXTest {
 protected:
  void SetUp() override {
    ActiveXTest::SetUp();
    ASSERT_EQ(getClassObject(kControlClassId, IID_IClassFactory, factory_.putVoid()), S_OK);
  }
  void TearDown() override {
    factory_.reset();
    ActiveXTest::TearDown();
  }

  ComPointer<IClassFactory> factory_;
};

TEST_F(ClassObjectsTest, AnUnknownClassIsNotServed) {
  void* object = this;
  EXPECT_EQ(getClassObject(kTypeLibraryId, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ClassObjectsTest, AnUnknownInterfaceOfAClassObjectIsRefused) {
  void* object = this;
  EXPECT_EQ(getClassObject(kControlClassId, IID_IOleObject, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(getClassObject(kControlClassId, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(ClassObjectsTest, AClassObjectKeepsTheLibrary) {
  EXPECT_EQ(canUnloadNow(), S_FALSE);
  factory_.reset();
  EXPECT_EQ(canUnloadNow(), S_OK);
}

TEST_F(ClassObjectsTest, ALockKeepsTheLibrary) {
  factory_->LockServer(TRUE);
  ComPointer<IClassFactory> second;
  factory_.reset();
  EXPECT_EQ(canUnloadNow(), S_FALSE);
  ASSERT_EQ(getClassObject(kControlClassId, IID_IClassFactory, second.putVoid()), S_OK);
  second->LockServer(FALSE);
  second->LockServer(FALSE);  // once too often
  EXPECT_EQ(canUnloadNow(), S_FALSE);
  second.reset();
  EXPECT_EQ(canUnloadNow(), S_OK);
}

TEST_F(ClassObjectsTest, AControlKeepsTheLibraryAndGoesWithItsLastReference) {
  ComPointer<IUnknown> control;
  createControl(control);
  factory_.reset();
  EXPECT_EQ(canUnloadNow(), S_FALSE);
  EXPECT_EQ(logCount("~COrvaneWebCtrl()"), 0U);
  control.reset();
  EXPECT_EQ(logCount("~COrvaneWebCtrl()"), 1U);
  EXPECT_EQ(canUnloadNow(), S_OK);
}

TEST_F(ClassObjectsTest, AnAggregateTakesNothingButTheControlsOwnUnknown) {
  void* object = this;
  EXPECT_EQ(factory_->CreateInstance(factory_.get(), IID_IDispatch, &object),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
}

TEST_F(ClassObjectsTest, TheFaceStartsWithItsFirstObjectAndEndsWithItsLast) {
  EXPECT_EQ(logCount("Initializing Orvane Web ActiveX plugin"), 1U);
  EXPECT_EQ(logCount("Shutting down Orvane Web ActiveX plugin"), 0U);
  factory_.reset();
  EXPECT_EQ(logCount("Shutting down Orvane Web ActiveX plugin"), 1U);
  const std::string log = profile_.log();
  EXPECT_LT(log.find("RunnableScheduler::cleanup()"), log.find("Shutting down"));
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
