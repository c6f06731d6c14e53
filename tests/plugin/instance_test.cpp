// Life of an instance: its parameters, the page's host, the user agent, the functions that the
// browser calls on it.
#include <windows.h>

#include <gmock/gmock.h>

#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using Host::Address;
using Host::Parameter;
using Host::Step;
using testing::HasSubstr;

class LibraryInstanceTest : public PluginTest {
 protected:
  // The log line on the launch wait of an instance with this parameter.
  bool waitIs(const std::optional<std::string>& value, const std::string& milliseconds) {
    std::vector<Parameter> parameters;
    if (value) parameters.push_back({"vantrel-launch-wait-timeout-ms", value});
    const std::string line = "PlugIn::init() - launchTimeoutMs=" + milliseconds + "\r\n";
    const size_t before = logCount(line);
    { Instance instance(host(), parameters); }
    return logCount(line) == before + 1;
  }

  // The host that an instance takes the page to be from, as it tells one that lies about it.
  std::string hostSeen() {
    Instance instance(host());
    return instance.call("initSession", {text("^no such host"), text("")}).value.text;
  }
};

std::string wrongHost(const std::string& expected) {
  return errorReply("Invalid application ID hostname: " + expected);
}

TEST_F(LibraryInstanceTest, ComesAndGoes) {
  Instance instance(host());
  EXPECT_EQ(instance.error(), NPERR_NO_ERROR);
  EXPECT_NE(instance.npp()->pdata, nullptr);
  EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR);
  EXPECT_EQ(instance.npp()->pdata, nullptr);
  instance.settle();
  EXPECT_TRUE(logHas("NPP_New() - done"));
  EXPECT_TRUE(logHas("NPP_Destroy() - done"));
  EXPECT_TRUE(logHas("~ovOrvaneWebPlugin() - done"));
}

TEST_F(LibraryInstanceTest, TheLaunchWaitIsTheDefaultUnlessTold) {
  EXPECT_TRUE(waitIs(std::nullopt, "20000"));
  EXPECT_TRUE(waitIs("", "20000"));
  EXPECT_TRUE(waitIs("abc", "20000"));
  EXPECT_TRUE(waitIs("00", "20000"));
  EXPECT_TRUE(waitIs("0", "0"));
  EXPECT_TRUE(waitIs(" 7", "7"));
  EXPECT_TRUE(waitIs("150", "150"));
  EXPECT_TRUE(waitIs("250x", "250"));
  EXPECT_TRUE(waitIs("-5", "-5"));
}

TEST_F(LibraryInstanceTest, ALaterParameterOfANameWins) {
  const std::string name = "vantrel-launch-wait-timeout-ms";
  { Instance instance(host(), {{name, "100"}, {name, "200"}}); }
  EXPECT_TRUE(logHas("launchTimeoutMs=200"));
  EXPECT_FALSE(logHas("launchTimeoutMs=100"));
}

TEST_F(LibraryInstanceTest, NamesOfParametersAreCaseSensitive) {
  { Instance instance(host(), {{"Vantrel-Launch-Wait-Timeout-Ms", "100"}}); }
  EXPECT_TRUE(logHas("launchTimeoutMs=20000"));
}

TEST_F(LibraryInstanceTest, ParametersWithoutANameOrAValueAreSkipped) {
  { Instance instance(host(), {{std::nullopt, "a"}, {"b", std::nullopt}, {"c", "d"}}); }
  EXPECT_TRUE(logHas("  c = d\r\n"));
  EXPECT_FALSE(logHas("  b = "));
}

TEST_F(LibraryInstanceTest, ACountOfZeroOrLessMeansNone) {
  for (const int16_t count : {int16_t{0}, int16_t{-1}, int16_t{-32768}}) {
    Instance instance(host(), {{"c", "d"}}, count);
    EXPECT_EQ(instance.error(), NPERR_NO_ERROR);
  }
  EXPECT_FALSE(logHas("  c = d"));
  EXPECT_EQ(logCount("launchTimeoutMs=20000"), 3U);
}

TEST_F(LibraryInstanceTest, ParametersAreNeverFormats) {
  { Instance instance(host(), {{"%s%s%n", "%n%s%p"}, {"image", "%s%n"}}); }
  EXPECT_TRUE(logHas("  %s%s%n = %n%s%p\r\n"));
}

TEST_F(LibraryInstanceTest, ThePagesHostIsThatOfItsLocation) {
  EXPECT_EQ(hostSeen(), wrongHost("some.host"));
  EXPECT_TRUE(logHas("Hostname: some.host\r\n"));
}

TEST_F(LibraryInstanceTest, AnEmptyHostIsLocalhost) {
  host().page.address.host = "";
  EXPECT_EQ(hostSeen(), wrongHost("localhost"));
}

TEST_F(LibraryInstanceTest, EveryBrokenStepToTheHostIsLocalhost) {
  std::vector<Address> broken;
  for (const Step step : {Step::kFails, Step::kFailsButWrites, Step::kUntouched, Step::kNull}) {
    broken.push_back({.window = step});
  }
  for (const Step step : {Step::kFails, Step::kFailsButWrites, Step::kUntouched, Step::kNull,
                          Step::kNumber, Step::kText}) {
    broken.push_back({.location = step});
  }
  for (const Step step :
       {Step::kFails, Step::kFailsButWrites, Step::kUntouched, Step::kNull, Step::kNumber}) {
    broken.push_back({.hostname = step});
  }
  for (const Address& address : broken) {
    host().page.address = address;
    EXPECT_EQ(hostSeen(), wrongHost("localhost"))
        << static_cast<int>(address.window) << static_cast<int>(address.location)
        << static_cast<int>(address.hostname);
  }
}

TEST_F(LibraryInstanceTest, TheHostIsCopiedByItsLength) {
  host().page.address.host = std::string("a\0b", 3);
  Instance instance(host());
  EXPECT_EQ(instance.call("initSession", {text("^a"), text("")}).value.text,
            wrongHost(std::string("a\0b", 3)));
}

TEST_F(LibraryInstanceTest, TheUserAgentNamesTheBrowser) {
  const std::pair<const char*, const char*> agents[] = {
      {"Mozilla/5.0 Gecko/20100101 Firefox/52.0", "firefox"},
      {"Mozilla/5.0 Chrome/44.0 Safari/537.36", "chrome"},
      {"Mozilla/5.0 Version/5.1 Safari/534.57", "safari"},
      {"Some OTHER Browser", "some other browser"},
      {"CHROME", "chrome"},
      {"", ""},
      {"%s%n \xC4\xD6", "%s%n \xC4\xD6"},
  };
  for (const auto& [agent, browser] : agents) {
    host().userAgent = agent;
    { Instance instance(host()); }
    EXPECT_TRUE(logHas("Browser host: " + std::string(browser) + "\r\n")) << agent;
  }
}

TEST_F(LibraryInstanceTest, ABrowserWithoutAUserAgentIsAnEmptyOne) {
  host().userAgent.reset();
  Instance instance(host());
  EXPECT_EQ(instance.error(), NPERR_NO_ERROR);
  EXPECT_TRUE(logHas("Browser host: \r\n"));
}

TEST_F(LibraryInstanceTest, OnlyTheScriptObjectCanBeAskedFor) {
  Instance instance(host());
  const auto getValue = host().plugin().getvalue;
  for (const int variable : {0, 1, 2, 3, 4, 14, 16, 1000, -1}) {
    void* value = this;
    EXPECT_EQ(getValue(instance.npp(), static_cast<NPPVariable>(variable), &value), 0);
    EXPECT_EQ(value, this) << variable;
  }
  NPP_t empty{};
  void* value = this;
  EXPECT_EQ(getValue(nullptr, NPPVpluginScriptableNPObject, &value), 2);
  EXPECT_EQ(getValue(&empty, NPPVpluginScriptableNPObject, &value), 2);
  EXPECT_EQ(value, this);
}

TEST_F(LibraryInstanceTest, EachAskingForTheScriptObjectGivesAReference) {
  Instance instance(host());
  NPObject* const object = instance.script();
  for (int i = 0; i < 3; ++i) {
    NPObject* again = nullptr;
    host().plugin().getvalue(instance.npp(), NPPVpluginScriptableNPObject,
                             static_cast<void*>(&again));
    EXPECT_EQ(again, object);
    EXPECT_EQ(host().objects.pluginReferences(object), 2);
    host().objects.takeOver(again);
    host().objects.release(again);
  }
}

TEST_F(LibraryInstanceTest, NullInstancesAreRefused) {
  NPPluginFuncs& plugin = host().plugin();
  NPStream stream{};
  char type[] = "image/png";
  uint16_t streamType = 99;
  EXPECT_EQ(plugin.destroy(nullptr, nullptr), 2);
  EXPECT_EQ(plugin.setwindow(nullptr, nullptr), 2);
  EXPECT_EQ(plugin.newstream(nullptr, type, &stream, 0, &streamType), 2);
  EXPECT_EQ(streamType, 99);
  EXPECT_EQ(plugin.destroystream(nullptr, &stream, NPRES_DONE), 2);
  plugin.asfile(nullptr, &stream, "name");
  EXPECT_EQ(plugin.writeready(nullptr, &stream), 0x0FFFFFFF);
  EXPECT_EQ(plugin.write(nullptr, &stream, 0, 0, nullptr), 2);
  plugin.print(nullptr, nullptr);
  EXPECT_EQ(plugin.event(nullptr, &stream), 2);
  plugin.urlnotify(nullptr, "url", NPRES_DONE, nullptr);
  EXPECT_EQ(plugin.setvalue(nullptr, NPNVnetscapeWindow, nullptr), 0);
  EXPECT_TRUE(logHas("ERR NPP_Destroy() - Null instance\r\n"));
  for (const char* name : {"NPP_SetWindow()", "NPP_NewStream()", "NPP_DestroyStream()",
                           "NPP_StreamAsFile()", "NPP_WriteReady()", "NPP_Write()", "NPP_Print()",
                           "NPP_HandleEvent()", "NPP_URLNotify()", "NPP_SetValue()"}) {
    EXPECT_TRUE(logHas(std::string("DBG ") + name + "\r\n")) << name;
  }
}

TEST_F(LibraryInstanceTest, AnInstanceThatIsGoneIsDestroyedInPeace) {
  NPP_t empty{};
  EXPECT_EQ(host().plugin().destroy(&empty, nullptr), NPERR_NO_ERROR);
}

TEST_F(LibraryInstanceTest, EventsOfTheWindowSystemAreNotTaken) {
  Instance instance(host());
  int event = 1;
  EXPECT_EQ(host().plugin().event(instance.npp(), nullptr), 0);
  EXPECT_EQ(host().plugin().event(instance.npp(), &event), 0);
}

TEST_F(LibraryInstanceTest, ANullWindowMakesNoView) {
  Instance instance(host());
  EXPECT_EQ(host().plugin().setwindow(instance.npp(), nullptr), NPERR_NO_ERROR);
  EXPECT_FALSE(instance.call("handleDrop").accepted);
}

TEST_F(LibraryInstanceTest, AnImageThatIsAScriptIsNotRequested) {
  for (const char* const url :
       {"javascript:alert(1)", "JavaScript:", " \t\r\n\x01javascript:x", "java\nscr\tipt\r:x"}) {
    Instance instance(host(), {{"image", url}});
    NPWindow window{};
    EXPECT_EQ(host().plugin().setwindow(instance.npp(), &window), NPERR_NO_ERROR);
    EXPECT_TRUE(host().urlRequests.empty()) << url;
  }
  EXPECT_EQ(logCount("LOG WARNING: Unable to load image from URL: "), 4U);
}

TEST_F(LibraryInstanceTest, AnyOtherImageIsRequestedAsItStands) {
  for (const char* const url : {"javascript", "xjavascript:", "javascript%3A", "/javascript:x",
                                " http://some.host/a.png"}) {
    Instance instance(host(), {{"image", url}});
    NPWindow window{};
    EXPECT_EQ(host().plugin().setwindow(instance.npp(), &window), NPERR_NO_ERROR);
    ASSERT_FALSE(host().urlRequests.empty()) << url;
    EXPECT_EQ(host().urlRequests.back().url, url);
  }
  EXPECT_EQ(host().urlRequests.size(), 5U);
  EXPECT_FALSE(logHas("WARNING: Unable to load image"));
}

TEST_F(LibraryInstanceTest, ABrowserThatFetchesNothingIsWarnedOf) {
  Host::TableShape shape;
  shape.edit = [](NPNetscapeFuncs& table) { table.geturlnotify = nullptr; };
  EXPECT_EQ(host().initialize(shape), NPERR_NO_ERROR);
  Instance instance(host(), {{"image", "http://some.host/a.png"}});
  NPWindow window{};
  EXPECT_EQ(host().plugin().setwindow(instance.npp(), &window), NPERR_NO_ERROR);
  EXPECT_TRUE(logHas("LOG WARNING: Unable to load image from URL: http://some.host/a.png\r\n"));
}

// Each of these may be missing from a browser's table, and the library goes on without.
TEST_F(LibraryInstanceTest, ABrowserWithoutAFunctionThatIsCalledIsSurvived) {
  void (*const edits[])(NPNetscapeFuncs&) = {
      [](NPNetscapeFuncs& table) { table.uagent = nullptr; },
      [](NPNetscapeFuncs& table) { table.hasmethod = nullptr; },
      [](NPNetscapeFuncs& table) { table.invoke = nullptr; },
      [](NPNetscapeFuncs& table) { table.invokeDefault = nullptr; },
      [](NPNetscapeFuncs& table) { table.releasevariantvalue = nullptr; },
      [](NPNetscapeFuncs& table) { table.pluginthreadasynccall = nullptr; },
  };
  for (const auto edit : edits) {
    Host::TableShape shape;
    shape.edit = edit;
    EXPECT_EQ(host().initialize(shape), NPERR_NO_ERROR);
    Instance instance(host());
    EXPECT_EQ(instance.call("queryVersion").value, text("3.7"));
  }
}

TEST_F(LibraryInstanceTest, ABrowserWithoutMemoryGetsTextsWithoutCharacters) {
  Host::TableShape shape;
  shape.edit = [](NPNetscapeFuncs& table) { table.memalloc = nullptr; };
  EXPECT_EQ(host().initialize(shape), NPERR_NO_ERROR);
  Instance instance(host());
  EXPECT_EQ(instance.call("queryVersion").value, Value::nullString());
}

TEST_F(LibraryInstanceTest, TheHiddenWindowGoesWithItsInstanceAndSoDoesItsClass) {
  constexpr wchar_t kName[] = L"OWEventWindow0";
  auto* const module = static_cast<HINSTANCE>(const_cast<void*>(host().module()));
  WNDCLASSEXW found = {};
  found.cbSize = sizeof found;
  Instance instance(host());
  EXPECT_NE(FindWindowExW(HWND_MESSAGE, nullptr, kName, L"OrvaneWebEventWindow0"), nullptr);
  EXPECT_NE(GetClassInfoExW(module, kName, &found), FALSE);
  instance.end();
  EXPECT_EQ(FindWindowExW(HWND_MESSAGE, nullptr, kName, nullptr), nullptr);
  EXPECT_EQ(GetClassInfoExW(module, kName, &found), FALSE);
}

TEST_F(LibraryInstanceTest, WhatAPostedFunctionThrowsStaysInTheLibrary) {
  struct Pair {
    void (*function)(void*);
    void* argument;
  };
  constexpr UINT kCallbackMessage = 1151;
  Instance instance(host());
  const HWND window = FindWindowExW(HWND_MESSAGE, nullptr, L"OWEventWindow0", nullptr);
  // The library frees it, with the platform's free.
  auto* const pair = new Pair{[](void*) { throw std::runtime_error("100% broken"); }, nullptr};
  SendMessageW(window, kCallbackMessage, 0, reinterpret_cast<LPARAM>(pair));
  EXPECT_EQ(logCount("ERR 100% broken\r\n"), 1U);
}

TEST_F(LibraryInstanceTest, FileNamesOfStreamsAreNeverFormats) {
  Instance instance(host());
  NPStream stream{};
  host().plugin().asfile(instance.npp(), &stream, "C:\\%s%n%d.png");
  EXPECT_TRUE(logHas("LOG C:\\%s%n%d.png\r\n"));
}

TEST_F(LibraryInstanceTest, AStreamOfAnotherUrlIsNotTaken) {
  Instance instance(host(), {{"image", "http://some.host/a.png"}});
  NPStream stream{};
  stream.url = "http://some.host/b.png";
  char type[] = "image/png";
  uint16_t streamType = 99;
  char data[] = "data";
  EXPECT_EQ(host().plugin().newstream(instance.npp(), type, &stream, 0, &streamType), 0);
  EXPECT_EQ(streamType, 99);
  EXPECT_EQ(host().plugin().write(instance.npp(), &stream, 0, 4, data), -1);
  EXPECT_EQ(host().plugin().destroystream(instance.npp(), &stream, NPRES_DONE), 0);
}

TEST_F(LibraryInstanceTest, NothingIsInitialisedTwiceByASecondInstance) {
  Instance first(host());
  Instance second(host());
  EXPECT_NE(first.npp()->pdata, second.npp()->pdata);
  EXPECT_NE(first.script(), second.script());
  first.end();
  EXPECT_EQ(second.call("queryVersion").value, text("3.7"));
}

TEST_F(LibraryInstanceTest, AFailureToMakeTheScriptObjectFailsTheInstance) {
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  Host::TableShape shape;
  shape.edit = [](NPNetscapeFuncs& table) {
    table.createobject = [](NPP, NPClass*) -> NPObject* { return nullptr; };
  };
  EXPECT_EQ(host().initialize(shape), NPERR_NO_ERROR);
  Instance instance(host());
  EXPECT_EQ(instance.error(), NPERR_GENERIC_ERROR);
  EXPECT_EQ(instance.npp()->pdata, nullptr);
  EXPECT_TRUE(logHas("ERR Failed to initialize plugin: "));
  instance.end({.scriptObject = 0});
}

}  // namespace
}  // namespace Vantrel::Web
