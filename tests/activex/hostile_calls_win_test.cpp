// A page that calls everything with everything: each member by its number and by numbers that are
// none, with every type of value in every place, in every way of calling. Nothing breaks, no
// reference is left, and every refusal is one that the platform knows.
#include <gmock/gmock.h>

#include <limits>
#include <optional>

#include "tests/activex/control_fixture.h"
#include "tests/support/fake_file_dialogs_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

constexpr DISPID kFirst = -6;
constexpr DISPID kLast = 40;
constexpr size_t kMostArguments = 6;

class HostileCallsTest : public ServedControlTest {
 protected:
  void SetUp() override {
    ServedControlTest::SetUp();
    // Every dialog is answered with a cancel at once.
    dialogs_.emplace();
    dialogs_->results["Show"] = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    control_ = makeControl();
    function_ = &makeFunction("a function of the page");
    ASSERT_EQ(control_->query(dispatch_), S_OK);
  }
  void TearDown() override {
    container().pumpFor(200);
    dispatch_.reset();
    control_.reset();
    dialogs_.reset();
    values_.clear();
    ServedControlTest::TearDown();
  }

  // A value of every type that a script, or another language, may hand over.
  const Variants& values() {
    if (!values_.empty()) return values_;
    values_ = {Variant(),
               Variant::null(),
               Variant::missing(),
               Variant::boolean(true),
               Variant::integer(0),
               Variant::integer(std::numeric_limits<int32_t>::min()),
               Variant::real(1.9),
               Variant::real(-1e300),
               Variant::real(std::numeric_limits<double>::quiet_NaN()),
               Variant::real(std::numeric_limits<double>::infinity()),
               Variant::text(""),
               Variant::nullText(),
               Variant::text("text %s%n"),
               Variant::text(std::string("a\0b", 3)),
               Variant::text(std::string(100000, 'x')),
               Variant::wideText(L"\xD800 alone \xDC00"),
               Variant::of(nullptr),
               Variant::of(function_),
               Variant::ofUnknown(nullptr),
               Variant::ofUnknown(function_)};
    values_.push_back(array());
    for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT,
                               VT_R4, VT_CY, VT_DATE, VT_ERROR, VT_DECIMAL}) {
      Variant value = Variant::integer(-1);
      value.raw().vt = static_cast<VARTYPE>(type);
      values_.push_back(value);
    }
    return values_;
  }

  // One call, whatever it answers; fails the test for an answer that no caller could know.
  void call(DISPID id, WORD flags, const Variants& arguments) {
    const HRESULT result = control_->invoke(id, flags, arguments).result;
    const bool known =
        result == S_OK || (result >= DISP_E_UNKNOWNINTERFACE && result <= DISP_E_PARAMNOTOPTIONAL);
    EXPECT_TRUE(known) << "member " << id << ", flags " << flags << ": " << std::hex << result;
  }

  std::optional<TestSupport::FakeFileDialogs> dialogs_;
  std::unique_ptr<Control> control_;
  ComPointer<IDispatch> dispatch_;
  PageFunction* function_ = nullptr;

 private:
  static Variant array() {
    Variant value;
    value.raw().vt = VT_ARRAY | VT_VARIANT;
    value.raw().parray = SafeArrayCreateVector(VT_VARIANT, 0, 3);
    return value;
  }

  Variants values_;
};

TEST_F(HostileCallsTest, EachValueInEachNumberOfArguments) {
  for (DISPID id = kFirst; id <= kLast; ++id) {
    for (const Variant& value : values()) {
      for (size_t count = 0; count <= kMostArguments; ++count)
        call(id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, Variants(count, value));
    }
    container().pumpOnce();
  }
}

TEST_F(HostileCallsTest, EachValueInEachPlaceAmongGoodOnes) {
  for (DISPID id = 1; id <= kLast; ++id) {
    for (size_t count = 1; count <= 4; ++count) {
      for (size_t place = 0; place < count; ++place) {
        for (const Variant& value : values()) {
          Variants arguments(count, Variant::text("GET"));
          if (count == 4) arguments[3] = Variant::of(function_);
          arguments[place] = value;
          call(id, DISPATCH_METHOD, arguments);
        }
      }
    }
    container().pumpOnce();
  }
}

TEST_F(HostileCallsTest, EachWayOfCalling) {
  for (DISPID id = kFirst; id <= kLast; ++id) {
    for (const int bits : {0, 1, 2, 3, 4, 8, 12, 15, 0x4000, 0xFFFF}) {
      const auto flags = static_cast<WORD>(bits);
      call(id, flags, {});
      call(id, flags, {Variant::text("text")});
      call(id, flags, {Variant::of(function_)});
    }
  }
}

TEST_F(HostileCallsTest, ValuesByReferenceAreRead) {
  for (DISPID id = 1; id <= kLast; ++id) {
    for (const Variant& value : values()) {
      Variant held = value;
      VARIANT reference{};
      reference.vt = VT_BYREF | VT_VARIANT;
      reference.pvarVal = &held.raw();
      VARIANT list[3] = {reference, reference, reference};
      for (UINT count = 1; count <= 3; ++count) {
        DISPPARAMS parameters{list, nullptr, count, 0};
        Variant result;
        dispatch_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, result.put(), nullptr,
                          nullptr);
      }
    }
    container().pumpOnce();
  }
}

TEST_F(HostileCallsTest, CallersThatLeaveThingsOut) {
  DISPPARAMS none{};
  for (DISPID id = kFirst; id <= kLast; ++id) {
    EXPECT_TRUE(FAILED(
        dispatch_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr)));
    // Without a place for a result, an exception or a wrong argument's number.
    dispatch_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
    // Of an interface that is none.
    Variant result;
    EXPECT_EQ(dispatch_->Invoke(id, IID_IUnknown, 0, DISPATCH_METHOD, &none, result.put(), nullptr,
                                nullptr),
              DISP_E_UNKNOWNINTERFACE);
  }
}

TEST_F(HostileCallsTest, NamedArgumentsOfEveryKind) {
  VARIANT value = Variant::text("text").take();
  for (DISPID id = 1; id <= kLast; ++id) {
    for (const int number : {0, 1, 7, DISPID_PROPERTYPUT, -1}) {
      DISPID name = number;
      DISPPARAMS parameters{&value, &name, 1, 1};
      Variant result;
      const HRESULT ended = dispatch_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters,
                                              result.put(), nullptr, nullptr);
      EXPECT_TRUE(ended == S_OK || FAILED(ended)) << id;
    }
    // More names than arguments.
    DISPID names[3] = {0, 1, 2};
    DISPPARAMS parameters{&value, names, 1, 3};
    EXPECT_TRUE(FAILED(dispatch_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr,
                                         nullptr, nullptr)))
        << id;
  }
  VariantClear(&value);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
