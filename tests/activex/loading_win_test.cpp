// How a control starts: the parameters of its element from a bag, a stream or a storage, the host
// of its page, and what becomes of a control that no container loads.
#include <gmock/gmock.h>

#include <ocidl.h>

#include "tests/activex/control_fixture.h"

namespace Vantrel::Web::ActiveX {
namespace {

using Container::DocumentStep;
using testing::ElementsAre;

class LoadingTest : public ControlTest {
 protected:
  static ComPointer<IStream> makeStream(const std::string& bytes = "") {
    ComPointer<IStream> stream;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()), S_OK);
    stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    rewind(stream);
    return stream;
  }
  static void rewind(const ComPointer<IStream>& stream) {
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
  }
  // A stored number as the stream has it.
  static std::string number(uint32_t value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
  }
  static std::string stored(const std::u16string& text) {
    const auto bytes = static_cast<uint32_t>(text.size() * 2);
    return number(bytes) + std::string(reinterpret_cast<const char*>(text.data()), bytes);
  }
  HRESULT loadStream(Control& control, const std::string& bytes) {
    ComPointer<IPersistStreamInit> persist;
    EXPECT_EQ(control.query(persist), S_OK);
    const ComPointer<IStream> stream = makeStream(bytes);
    return persist->Load(stream.get());
  }
  // The host that the core judges ids by, found out by an id of another host.
  static std::string hostOf(Control& control) {
    const std::string reply =
        control.call("initSession", {Variant::text("^no.such.host"), Variant::text("")})
            .value.asText();
    const std::string words = "Invalid application ID hostname: ";
    const size_t at = reply.find(words);
    if (at == std::string::npos) return "";
    const size_t host = at + words.size();
    return reply.substr(host, reply.find('"', host) - host);
  }
};

TEST_F(LoadingTest, ParametersAreAskedForInTheirOrder) {
  const auto control = makeControl();
  EXPECT_EQ(control->loaded(), S_OK);
  EXPECT_THAT(control->bag().asked(),
              ElementsAre("_version", "_extentx", "_extenty", "transfer-icon", "link-capacity",
                          "drop-upload-url", "vantrel-launch-wait-timeout-ms", "image", "drop-mode",
                          "drop-allow-directories", "drop-allow-multiple"));
}

TEST_F(LoadingTest, ALoadLogsWhatItReadsAndStarts) {
  const auto control =
      makeControl({.parameters = {{"transfer-icon", "an ic\xC3\xB6n"}, {"drop-mode", "upload"}}});
  EXPECT_TRUE(logHasInOrder(
      {"DBG COrvaneWebCtrl()", "LOG COrvaneWebCtrl::OnSetClientSite()",
       "DBG COrvaneWebCtrl::DoPropExchange()", "DBG transfer-icon = an ic\xC3\xB6n\r\n",
       "DBG link-capacity = \r\n", "DBG drop-upload-url = ",
       "DBG vantrel-launch-wait-timeout-ms = ", "DBG image = ", "DBG drop-mode = upload",
       "DBG drop-allow-directories = ", "DBG drop-allow-multiple = ",
       "DBG COrvaneWebCtrl::initPlugin()", "DBG param drop-upload-url=", "DBG param link-capacity=",
       "DBG param transfer-icon=an ic\xC3\xB6n", "DBG param vantrel-launch-wait-timeout-ms=",
       "DBG PlugIn::init() - launchTimeoutMs=20000", "LOG Hostname: "}));
  EXPECT_FALSE(logHas("param image"));
}

TEST_F(LoadingTest, TheLaunchWaitIsANumberOrTheUsualOne) {
  const auto control = makeControl({.parameters = {{"vantrel-launch-wait-timeout-ms", "250"}}});
  EXPECT_TRUE(logHas("DBG PlugIn::init() - launchTimeoutMs=250"));
}

TEST_F(LoadingTest, ASecondLoadReadsNothingAndStartsNothing) {
  const auto control = makeControl();
  EXPECT_EQ(control->load(), S_OK);
  EXPECT_EQ(logCount("DBG COrvaneWebCtrl::DoPropExchange()"), 2U);
  EXPECT_EQ(logCount("DBG COrvaneWebCtrl::initPlugin()"), 1U);
  EXPECT_EQ(control->bag().asked().size(), 14U);
}

TEST_F(LoadingTest, AnOddBagStopsNothing) {
  ControlStart start;
  start.load = false;
  const auto control = makeControl(start);
  control->bag().set("link-capacity", Variant::integer(7));
  control->bag().set("drop-mode", Variant::null());
  control->bag().set("image", Variant::nullText());
  control->bag().set("transfer-icon", Variant::wideText(std::wstring(1, L'\xD800')));
  control->bag().fail("drop-upload-url", E_FAIL);
  EXPECT_EQ(control->load(), S_OK);
  EXPECT_TRUE(logHas("DBG link-capacity = 7"));
  EXPECT_TRUE(logHas("DBG COrvaneWebCtrl::initPlugin()"));
}

TEST_F(LoadingTest, ANewControlIsReset) {
  ControlStart start;
  start.load = false;
  const auto control = makeControl(start);
  ComPointer<IPersistStreamInit> persist;
  ASSERT_EQ(control->query(persist), S_OK);
  EXPECT_EQ(persist->InitNew(), S_OK);
  EXPECT_TRUE(
      logHasInOrder({"LOG COrvaneWebCtrl::OnResetState()", "DBG COrvaneWebCtrl::DoPropExchange()",
                     "DBG COrvaneWebCtrl::initPlugin()"}));
}

TEST_F(LoadingTest, AScriptsCallStartsAControlThatNobodyHasLoaded) {
  ControlStart start;
  start.load = false;
  start.giveSite = false;
  const auto control = makeControl(start);
  auto& handler = makeFunction("handler");
  control->set("eventHandler", Variant::of(&handler));
  EXPECT_FALSE(logHas("initPlugin()"));
  EXPECT_EQ(control->call("queryVersion").result, S_OK);
  EXPECT_EQ(logCount("DBG COrvaneWebCtrl::initPlugin()"), 1U);
  control->call("queryVersion");
  EXPECT_EQ(logCount("DBG COrvaneWebCtrl::initPlugin()"), 1U);
}

TEST_F(LoadingTest, PropertiesGoThroughAStream) {
  ControlStart unloaded;
  unloaded.load = false;
  const auto control = makeControl(unloaded);
  EXPECT_EQ(loadStream(*control, number(0x10000) + number(100) + number(200) + stored(u"icon") +
                                     stored(u"") + stored(u"") + stored(u"77") + stored(u"") +
                                     stored(u"callback") + stored(u"true") + stored(u"")),
            S_OK);
  EXPECT_TRUE(logHas("DBG transfer-icon = icon"));
  EXPECT_TRUE(logHas("launchTimeoutMs=77"));
  EXPECT_TRUE(logHas("DBG drop-mode = callback"));
  ComPointer<IOleObject> object;
  ASSERT_EQ(control->query(object), S_OK);
  SIZEL size = {};
  EXPECT_EQ(object->GetExtent(DVASPECT_CONTENT, &size), S_OK);
  EXPECT_EQ(size.cx, 100);
  EXPECT_EQ(size.cy, 200);
}

TEST_F(LoadingTest, WhatIsSavedCanBeLoaded) {
  const auto first = makeControl();
  ComPointer<IPersistStreamInit> persist;
  ASSERT_EQ(first->query(persist), S_OK);
  first->set("name", text("x"));
  EXPECT_EQ(persist->IsDirty(), S_OK);
  const ComPointer<IStream> stream = makeStream();
  EXPECT_EQ(persist->Save(stream.get(), TRUE), S_OK);
  EXPECT_EQ(persist->IsDirty(), S_FALSE);
  rewind(stream);
  ControlStart unloaded;
  unloaded.load = false;
  const auto second = makeControl(unloaded);
  ASSERT_EQ(second->query(persist), S_OK);
  EXPECT_EQ(persist->Load(stream.get()), S_OK);
  persist.reset();
  EXPECT_EQ(logCount("DBG COrvaneWebCtrl::initPlugin()"), 2U);
}

TEST_F(LoadingTest, AStreamThatIsNoneOfOursIsRefusedAndStartsNothing) {
  ControlStart unloaded;
  unloaded.load = false;
  const auto control = makeControl(unloaded);
  for (const uint32_t length : {0xFFFFFFFFU, (1U << 20) + 2, 3U}) {
    EXPECT_EQ(loadStream(*control, number(1) + number(1) + number(1) + number(length)), E_FAIL);
  }
  EXPECT_FALSE(logHas("initPlugin()"));
  // It can be loaded still.
  EXPECT_EQ(loadStream(*control, ""), S_OK);
  EXPECT_TRUE(logHas("initPlugin()"));
}

TEST_F(LoadingTest, PropertiesGoThroughAStorage) {
  const auto first = makeControl();
  ComPointer<IStorage> storage;
  ComPointer<ILockBytes> bytes;
  ASSERT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.put()), S_OK);
  ASSERT_EQ(StgCreateDocfileOnILockBytes(
                bytes.get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, storage.put()),
            S_OK);
  ComPointer<IPersistStorage> persist;
  ASSERT_EQ(first->query(persist), S_OK);
  EXPECT_EQ(persist->Save(storage.get(), FALSE), S_OK);
  EXPECT_EQ(persist->SaveCompleted(nullptr), S_OK);
  ControlStart unloaded;
  unloaded.load = false;
  const auto second = makeControl(unloaded);
  ASSERT_EQ(second->query(persist), S_OK);
  EXPECT_EQ(persist->Load(storage.get()), S_OK);
  persist.reset();
  EXPECT_EQ(logCount("DBG COrvaneWebCtrl::initPlugin()"), 2U);
}

TEST_F(LoadingTest, ABagGetsTheSizeAndTheVersion) {
  const auto control = makeControl();
  ComPointer<IPersistPropertyBag> persist;
  ASSERT_EQ(control->query(persist), S_OK);
  EXPECT_EQ(persist->Save(&control->bag(), TRUE, TRUE), S_OK);
  EXPECT_EQ(control->bag().written().at("_version").describe(), "I4 65536");
  EXPECT_EQ(control->bag().written().size(), 3U);
  CLSID id = {};
  EXPECT_EQ(persist->GetClassID(&id), S_OK);
  EXPECT_EQ(id, kControlClassId);
}

TEST_F(LoadingTest, TheHostIsThePages) {
  const auto control = makeControl({.address = {.host = L"some.h\u00F6st"}});
  EXPECT_EQ(hostOf(*control), "some.h\xC3\xB6st");
  EXPECT_TRUE(logHas("LOG Hostname: some.h\xC3\xB6st"));
}

TEST_F(LoadingTest, AHostThatIsKnownStays) {
  const auto control = makeControl();
  control->site().document().address.host = L"other.host";
  EXPECT_EQ(control->load(), S_OK);
  EXPECT_EQ(hostOf(*control), "some.host");
}

TEST_F(LoadingTest, APageWithoutAHostIsOfThisMachine) {
  const auto control = makeControl({.address = {.host = L""}});
  EXPECT_EQ(hostOf(*control), "localhost");
  EXPECT_TRUE(
      logHasInOrder({"LOG Empty hostname. Assuming localhost.", "LOG Hostname: localhost"}));
}

TEST_F(LoadingTest, WithoutASiteThereIsNoHost) {
  ControlStart start;
  start.giveSite = false;
  const auto control = makeControl(start);
  EXPECT_EQ(hostOf(*control), "");
  EXPECT_TRUE(logHas("ERR Failed to get client site"));
}

TEST_F(LoadingTest, EachStepToTheHostMayFail) {
  const struct {
    Container::PageAddress address;
    const char* log;
  } cases[] = {
      {{.container = DocumentStep::kFails}, "Failed to get OLE container: 80004002"},
      {{.container = DocumentStep::kNull}, "Failed to get OLE container: 0"},
      {{.document = DocumentStep::kFails}, "Failed to get location from IHTMLDocument2: "},
      {{.document = DocumentStep::kNull}, "Failed to get location from IHTMLDocument2: 0"},
      {{.location = DocumentStep::kFails}, "Failed to get location from IHTMLDocument2: "},
      {{.location = DocumentStep::kNull}, "Failed to get location from IHTMLDocument2: 0"},
      {{.hostname = DocumentStep::kFails}, "Failed to get hostname from IHTMLLocation: "},
  };
  for (const auto& one : cases) {
    const size_t before = logCount(one.log);
    ControlStart start;
    start.address = one.address;
    const auto control = makeControl(start);
    EXPECT_EQ(hostOf(*control), "") << one.log;
    EXPECT_EQ(logCount(one.log), before + 1) << one.log;
  }
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
