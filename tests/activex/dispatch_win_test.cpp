// The dispatch interface as scripts call it: names and numbers, arguments of every form, results
// and errors.
#include <set>

#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

class DispatchTest : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
    control_ = makeControl();
    ASSERT_EQ(control_->query(dispatch_), S_OK);
  }
  void TearDown() override {
    dispatch_.reset();
    control_.reset();
    ControlTest::TearDown();
  }

  HRESULT idsOf(std::vector<std::wstring> names, std::vector<DISPID>& ids) {
    std::vector<LPOLESTR> texts;
    for (std::wstring& name : names) texts.push_back(name.data());
    ids.assign(names.size(), 0);
    return dispatch_->GetIDsOfNames(IID_NULL, texts.data(), static_cast<UINT>(texts.size()), 0,
                                    ids.data());
  }

  std::unique_ptr<Control> control_;
  ComPointer<IDispatch> dispatch_;
};

TEST_F(DispatchTest, EveryMemberOfTheTypeLibraryIsKnownByItsNameAndParameters) {
  UINT infos = 0;
  ASSERT_EQ(dispatch_->GetTypeInfoCount(&infos), S_OK);
  ASSERT_EQ(infos, 1U);
  ComPointer<ITypeInfo> info;
  ASSERT_EQ(dispatch_->GetTypeInfo(0, 0, info.put()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  std::set<DISPID> methods;
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
    // The seven members of the interface itself come first.
    if (function->memid < 0x60000000) {
      BSTR names[6] = {};
      UINT count = 0;
      info->GetNames(function->memid, names, 6, &count);
      std::vector<std::wstring> texts(names, names + count);
      std::vector<DISPID> ids;
      EXPECT_EQ(idsOf(texts, ids), S_OK) << Container::utf8Of(names[0]);
      EXPECT_EQ(ids[0], function->memid);
      EXPECT_EQ(count, static_cast<UINT>(function->cParams) + 1);
      for (UINT n = 1; n < count; ++n) EXPECT_EQ(ids[n], static_cast<DISPID>(n - 1));
      for (BSTR name : names) SysFreeString(name);
      methods.insert(function->memid);
    }
    info->ReleaseFuncDesc(function);
  }
  EXPECT_EQ(attributes->cVars, 2);
  info->ReleaseTypeAttr(attributes);
  EXPECT_EQ(methods.size(), 30U);
}

TEST_F(DispatchTest, PropertiesAndMethodsHaveTheirNumbers) {
  EXPECT_EQ(control_->idOf("name"), 1);
  EXPECT_EQ(control_->idOf("eventHandler"), 28);
  EXPECT_EQ(control_->idOf("startDownload"), 2);
  EXPECT_EQ(control_->idOf("httpRequestImplementation"), 33);
  EXPECT_EQ(control_->invoke(20, DISPATCH_METHOD, {}).result, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(control_->invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {}).result, DISP_E_MEMBERNOTFOUND);
}

TEST_F(DispatchTest, NamesAreFoundWithoutRegardToCase) {
  EXPECT_EQ(control_->idOf("RUNOPENFILEDIALOG"), 5);
  EXPECT_EQ(control_->idOf("EVENTHANDLER"), 28);
}

TEST_F(DispatchTest, UnknownNamesAreToldOneByOne) {
  std::vector<DISPID> ids;
  EXPECT_EQ(idsOf({L"dropObserver"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[0], DISPID_UNKNOWN);
  EXPECT_EQ(idsOf({L"initSession", L"domain", L"colour", L"appId"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids, (std::vector<DISPID>{26, 1, DISPID_UNKNOWN, 0}));
}

TEST_F(DispatchTest, NothingButTheNullIdIsTakenForAnInterface) {
  LPOLESTR name = nullptr;
  DISPID id = 0;
  EXPECT_EQ(dispatch_->GetIDsOfNames(IID_IDispatch, &name, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
  DISPPARAMS none = {};
  EXPECT_EQ(
      dispatch_->Invoke(16, IID_IDispatch, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
      DISP_E_UNKNOWNINTERFACE);
  ComPointer<ITypeInfo> info;
  EXPECT_EQ(dispatch_->GetTypeInfo(1, 0, info.put()), DISP_E_BADINDEX);
}

TEST_F(DispatchTest, TextsComeBack) {
  EXPECT_EQ(control_->call("queryBrowserEngine").value.describe(), "text \"MSHTML\"");
  EXPECT_TRUE(control_->call("queryVersion").value.isText());
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::QueryBrowserEngine()"));
}

TEST_F(DispatchTest, AMethodWithoutAResultLeavesItEmpty) {
  const CallResult result = control_->call("clearDownloadList");
  EXPECT_EQ(result.result, S_OK);
  EXPECT_EQ(result.value.type(), VT_EMPTY);
}

TEST_F(DispatchTest, TheCallerNeedNotWantTheResult) {
  DISPPARAMS none = {};
  EXPECT_EQ(dispatch_->Invoke(16, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            S_OK);
}

TEST_F(DispatchTest, TooManyAndTooFewArgumentsAreRefused) {
  EXPECT_EQ(control_->call("queryVersion", {text("x")}).result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(control_->call("addToDownloadList").result, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(control_->call("handleDrop").result, S_OK);
  EXPECT_EQ(control_->call("handleDrop", {Variant::integer(1)}).result, S_OK);
  EXPECT_EQ(control_->call("handleDrop", {Variant::integer(1), Variant()}).result,
            DISP_E_BADPARAMCOUNT);
}

TEST_F(DispatchTest, AnArgumentThatWasLeftOutIsToldByItsPlace) {
  const CallResult result = control_->call("initSession", {Variant::missing(), text("b")});
  EXPECT_EQ(result.result, DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(result.wrong, 1U);  // counted from the last
}

TEST_F(DispatchTest, ArgumentsChangeTheirTypesByThePlatformsRules) {
  control_->set("name", Variant::integer(7));
  EXPECT_EQ(control_->get("name").value.describe(), "text \"7\"");
  control_->set("name", Variant());
  EXPECT_EQ(control_->get("name").value.describe(), "text \"\"");
  const CallResult result = control_->call("initSession", {text("a"), Variant::null()});
  EXPECT_EQ(result.result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result.wrong, 0U);
}

TEST_F(DispatchTest, ATruthValueIsWhateverThePlatformTakesForOne) {
  auto& function = makeFunction("callback");
  const Variants good = {text(""), text("perhaps"), text(""), Variant::of(&function)};
  const CallResult result = control_->call("runOpenFileDialogAsync", good);
  EXPECT_EQ(result.result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result.wrong, 2U);
}

TEST_F(DispatchTest, AFunctionIsNothingButAnObject) {
  const Variants page = {text("GET"), text("/"), text(""), text("cbk")};
  const CallResult result = control_->call("vantrelHttpRequestAsync", page);
  EXPECT_EQ(result.result, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result.wrong, 0U);
}

TEST_F(DispatchTest, AnUnknownThatIsNoScriptObjectIsNoFunction) {
  const Variants page = {text("GET"), text("/"), text(""),
                         Variant::ofUnknown(&control_->site().document())};
  EXPECT_EQ(control_->call("vantrelHttpRequestAsync", page).result, DISP_E_TYPEMISMATCH);
}

TEST_F(DispatchTest, ArgumentsBehindReferencesAreRead) {
  Variant inner = text("by reference");
  VARIANT outer = {};
  outer.vt = VT_BYREF | VT_VARIANT;
  outer.pvarVal = &inner.raw();
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS params = {&outer, &put, 1, 1};
  EXPECT_EQ(
      dispatch_->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr, nullptr),
      S_OK);
  EXPECT_EQ(control_->get("name").value.asText(), "by reference");
  BSTR bstr = Container::newText(L"a text");
  outer.vt = VT_BYREF | VT_BSTR;
  outer.pbstrVal = &bstr;
  EXPECT_EQ(
      dispatch_->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr, nullptr),
      S_OK);
  EXPECT_EQ(control_->get("name").value.asText(), "a text");
  SysFreeString(bstr);
}

TEST_F(DispatchTest, ArgumentsMayBeNamed) {
  Variants values = {text("a.domain"), text("an.app")};
  VARIANT given[] = {values[0].get(), values[1].get()};
  DISPID names[] = {1, 0};  // domain, appId
  DISPPARAMS params = {given, names, 2, 2};
  Variant reply;
  EXPECT_EQ(
      dispatch_->Invoke(26, IID_NULL, 0, DISPATCH_METHOD, &params, reply.put(), nullptr, nullptr),
      S_OK);
  EXPECT_TRUE(logHas("initSession\n  appId: an.app\n  domain: a.domain"));
}

TEST_F(DispatchTest, ANameThatNoParameterHasIsToldByItsPlace) {
  Variants values = {text("x"), text("y")};
  VARIANT given[] = {values[0].get(), values[1].get()};
  UINT wrong = 7;
  for (const DISPID unknown : {DISPID{2}, DISPID{-5}}) {
    DISPID names[] = {0, unknown};
    DISPPARAMS params = {given, names, 2, 2};
    EXPECT_EQ(
        dispatch_->Invoke(26, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, &wrong),
        DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(wrong, 1U);
  }
  DISPID twice[] = {0};  // the positional one has that place already
  DISPPARAMS params = {given, twice, 2, 1};
  EXPECT_EQ(dispatch_->Invoke(26, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, &wrong),
            DISP_E_PARAMNOTFOUND);
}

TEST_F(DispatchTest, ABrokenCallIsRefused) {
  DISPPARAMS params = {nullptr, nullptr, 2, 0};
  EXPECT_EQ(dispatch_->Invoke(26, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr),
            E_INVALIDARG);
  EXPECT_EQ(dispatch_->Invoke(26, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
            E_INVALIDARG);
}

TEST_F(DispatchTest, ATextThatIsNoneIsAScriptErrorOfATransfer) {
  const CallResult result =
      control_->call("addToDownloadList", {Variant::wideText(std::wstring(1, L'\xD800'))});
  EXPECT_EQ(result.result, DISP_E_EXCEPTION);
  EXPECT_EQ(result.code, 16U);
  EXPECT_EQ(result.error.find("Failed to add to download list: Error converting string encoding"),
            0U)
      << result.error;
  EXPECT_TRUE(logHas("ERR Failed to add to download list: Error converting string encoding"));
}

TEST_F(DispatchTest, AClientThatIsNotThereIsAScriptError) {
  const struct {
    const char* method;
    Variants arguments;
  } calls[] = {{"startDownload", {text("http://x")}},
               {"displayAboutWindow", {}},
               {"displayPreferencesWindow", {}},
               {"displayTransferManager", {}}};
  for (const auto& call : calls) {
    const CallResult result = control_->call(call.method, call.arguments);
    EXPECT_EQ(result.result, DISP_E_EXCEPTION) << call.method;
    EXPECT_EQ(result.code, 16U);
    EXPECT_EQ(result.error, kContactError);
  }
}

TEST_F(DispatchTest, WhatASilentMethodThrowsIsLogged) {
  const Variant illFormed = Variant::wideText(std::wstring(1, L'\xD800'));
  auto& function = makeFunction("callback");
  EXPECT_EQ(control_
                ->call("httpRequestImplementation",
                       {illFormed, text("/"), text(""), Variant::of(&function)})
                .result,
            S_OK);
  EXPECT_FALSE(logHas("ERR Error converting"));
  const CallResult session = control_->call("initSession", {illFormed, text("")});
  EXPECT_EQ(session.value.asText().find(
                "{\"error\":{\"code\":-1,\"internal_message\":\"Invalid request\",\"user_message\":"
                "\"Error initializing session: Error converting string encoding"),
            0U)
      << session.value.asText();
}

TEST_F(DispatchTest, NumbersOfAChunkAreWholeOnes) {
  const CallResult fraction = control_->call(
      "readChunkAsArrayBuffer", {text("C:\\x"), Variant::real(1.0), Variant::integer(1)});
  EXPECT_EQ(fraction.result, S_OK);
  EXPECT_EQ(fraction.value.type(), VT_BSTR);
  EXPECT_EQ(fraction.value.get().bstrVal, nullptr);
  EXPECT_TRUE(logHas("ERR readChunkAsArrayBuffer() - offset value invalid"));
  control_->call("readChunkAsArrayBuffer", {text("C:\\x"), Variant::integer(1), text("1")});
  EXPECT_TRUE(logHas("ERR readChunkAsArrayBuffer() - chunk size invalid"));
}

TEST_F(DispatchTest, AReadOfNoPathIsAnErrorReply) {
  EXPECT_EQ(control_->call("readAsArrayBuffer", {text("")}).value.asText(),
            errorReply("invalid string position"));
}

TEST_F(DispatchTest, TheEventHandlerIsNeverGivenBack) {
  auto& handler = makeFunction("handler");
  EXPECT_EQ(control_->set("eventHandler", Variant::of(&handler)).result, S_OK);
  EXPECT_EQ(handler.references(), 1);
  const CallResult got = control_->get("eventHandler");
  EXPECT_EQ(got.value.type(), VT_DISPATCH);
  EXPECT_EQ(got.value.asDispatch(), nullptr);
  EXPECT_TRUE(logHasInOrder({"DBG COrvaneWebCtrl::SetEventHandler", "LOG Event handler set",
                             "DBG COrvaneWebCtrl::GetEventHandler()"}));
}

TEST_F(DispatchTest, NullTakesTheEventHandlerAway) {
  auto& handler = makeFunction("handler");
  for (const Variant& nothing : {Variant::null(), Variant(), Variant::of(nullptr)}) {
    control_->set("eventHandler", Variant::of(&handler));
    EXPECT_EQ(handler.references(), 1);
    EXPECT_EQ(control_->set("eventHandler", nothing).result, S_OK);
    EXPECT_EQ(handler.references(), 0);
  }
  EXPECT_EQ(logCount("LOG Event handler removed"), 3U);
  EXPECT_EQ(control_->set("eventHandler", text("x")).result, DISP_E_TYPEMISMATCH);
}

TEST_F(DispatchTest, TheSameHandlerMayBeSetAgain) {
  auto& handler = makeFunction("handler");
  control_->set("eventHandler", Variant::of(&handler));
  EXPECT_EQ(control_->invoke(28, DISPATCH_PROPERTYPUTREF, {Variant::of(&handler)}).result, S_OK);
  EXPECT_EQ(handler.references(), 1);
  EXPECT_EQ(logCount("LOG Event handler removed"), 1U);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
