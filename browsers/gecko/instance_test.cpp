// An instance as the browser makes, uses and ends it, beside a scripted desktop client.
#include <gtest/gtest.h>

#include <optional>

#include "browsers/gecko/async_call.h"
#include "browsers/gecko/instance_functions.h"
#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/script_object.h"
#include "core/approved_files.h"
#include "tests/support/fake_browser.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_server.h"
#include "tests/support/service_files.h"
#include "text/error_reply.h"
#include "threads/runnable_scheduler.h"

namespace Vantrel::Web::Gecko {
namespace {

using Calls = std::vector<std::vector<std::string>>;
using Parameters = std::vector<std::pair<std::string, std::string>>;

class InstanceTest : public testing::Test {
 protected:
  InstanceTest() {
    RunnableScheduler::init();
    EXPECT_EQ(OW_PopulatePluginFunctionTable(&functions_), NPERR_NO_ERROR);
    files_.writeUrl(server_.url() + "\nkey");
    browser_.location = browser_.object();
    browser_.hostname = browser_.text("some.host");
  }
  ~InstanceTest() override {
    destroy();
    freeUndeliveredCalls(&browser_.instance);
    RunnableScheduler::cleanup();
  }

  NPError create(const Parameters& parameters = {}) {
    std::vector<char*> names;
    std::vector<char*> values;
    for (const auto& [name, value] : parameters) {
      names.push_back(const_cast<char*>(name.c_str()));
      values.push_back(const_cast<char*>(value.c_str()));
    }
    return functions_.newp(nullptr, &browser_.instance, 0, static_cast<int16_t>(names.size()),
                           names.data(), values.data(), nullptr);
  }
  void destroy() {
    if (browser_.instance.pdata != nullptr) functions_.destroy(&browser_.instance, nullptr);
  }
  ovOrvaneWebPlugin& plugin() { return *static_cast<ovOrvaneWebPlugin*>(browser_.instance.pdata); }

  // The text that a method returns; none if it returns false.
  std::optional<std::string> call(const std::string& method,
                                  const std::vector<NPVariant>& args = {}) {
    NPObject* const object = browser_.scriptObject();
    NPVariant result = {NPVariantType_Void, {}};
    if (!object->_class->invoke(object, browser_.identifier(method), args.data(),
                                static_cast<uint32_t>(args.size()), &result)) {
      return {};
    }
    return take(result);
  }
  std::string take(NPVariant& value) {
    if (value.type != NPVariantType_String) return "not a text";
    const NPString string = value.value.stringValue;
    std::string text(string.UTF8Characters, string.UTF8Length);
    browserFuncs.memfree(const_cast<char*>(string.UTF8Characters));
    return text;
  }
  bool set(const std::string& property, const NPVariant& value) {
    NPObject* const object = browser_.scriptObject();
    return object->_class->setProperty(object, browser_.identifier(property), &value);
  }
  bool get(const std::string& property, NPVariant& value) {
    NPObject* const object = browser_.scriptObject();
    return object->_class->getProperty(object, browser_.identifier(property), &value);
  }

  TestSupport::ServiceFiles files_;
  TestSupport::FakePlatform platform_;
  TestSupport::ScriptedServer server_;
  TestSupport::LogRecorder log_;
  FakeBrowser browser_;
  NPPluginFuncs functions_ = [] {
    NPPluginFuncs table = {};
    table.size = sizeof table;
    return table;
  }();
};

TEST_F(InstanceTest, LivesAndEndsWithEverythingGivenBack) {
  EXPECT_EQ(create({{"id", "p"}, {"drop-mode", "callback"}}), NPERR_NO_ERROR);
  EXPECT_TRUE(log_.has("LOG Hostname: some.host")) << log_.text();
  EXPECT_TRUE(log_.has("LOG Browser host: firefox")) << log_.text();
  EXPECT_TRUE(log_.has("DBG   drop-mode = callback")) << log_.text();
  EXPECT_EQ(call("queryVersion"), "3.7");
  destroy();
  EXPECT_EQ(browser_.instance.pdata, nullptr);
  EXPECT_TRUE(log_.has("DBG ~ovOrvaneWebPlugin() - done")) << log_.text();
}

TEST_F(InstanceTest, TheScriptObjectOutlivesItAndAnswersFalse) {
  create();
  NPObject* const object = browser_.scriptObject();
  destroy();
  EXPECT_TRUE(object->_class->hasMethod(object, browser_.identifier("queryVersion")));
  EXPECT_EQ(call("queryVersion"), std::nullopt);
  NPVariant value = {NPVariantType_Void, {}};
  EXPECT_FALSE(get("name", value));
  EXPECT_FALSE(set("name", browser_.text("x")));
  EXPECT_EQ(object->referenceCount, 1u);
}

TEST_F(InstanceTest, AFailureWhileItIsMadeLeavesNoInstance) {
  browserFuncs.createobject = [](NPP, NPClass*) -> NPObject* { return nullptr; };
  EXPECT_EQ(create(), NPERR_GENERIC_ERROR);
  EXPECT_EQ(browser_.instance.pdata, nullptr);
  EXPECT_TRUE(log_.has("ERR Failed to initialize plugin: Failed to create the script object"))
      << log_.text();
  EXPECT_TRUE(log_.has("ERR Failed to create the script object")) << log_.text();
  EXPECT_TRUE(log_.has("DBG RequestWorker::run() - done")) << log_.text();
}

TEST_F(InstanceTest, EveryStepToTheHostnameMayFail) {
  const NPVariant nothing = {NPVariantType_Void, {}};
  const auto hostname = [this] {
    log_.clear();
    create();
    const size_t found = log_.count("LOG Hostname: localhost");
    destroy();
    return found;
  };
  browser_.hostname = browser_.text("");
  EXPECT_EQ(hostname(), 1u);
  browser_.hostname = FakeBrowser::number(5);
  EXPECT_EQ(hostname(), 1u);
  browser_.hostname = nothing;
  EXPECT_EQ(hostname(), 1u);
  browser_.hostname = browser_.text("some.host");
  browser_.location = browser_.text("no object");
  EXPECT_EQ(hostname(), 1u);
  browser_.location = nothing;
  EXPECT_EQ(hostname(), 1u);
  browser_.hasWindow = false;
  EXPECT_EQ(hostname(), 1u);
}

TEST_F(InstanceTest, ANullUserAgentIsAnEmptyBrowserHost) {
  browser_.userAgent = nullptr;
  EXPECT_EQ(create(), NPERR_NO_ERROR);
  EXPECT_TRUE(log_.has("LOG Browser host: ")) << log_.text();
}

TEST_F(InstanceTest, TheLaunchWaitIsANumberOrTheDefault) {
  const struct {
    const char* text;
    const char* wait;
  } kRows[] = {
      {"0", "0"},    {"150", "150"}, {"-5", "-5"}, {"abc", "20000"}, {"00", "20000"},
      {"", "20000"}, {"12x", "12"},  {" 7", "7"},  {"+0", "20000"},  {"99999999999", "2147483647"}};
  for (const auto& row : kRows) {
    log_.clear();
    create({{"vantrel-launch-wait-timeout-ms", row.text}});
    EXPECT_TRUE(log_.has(std::string("DBG PlugIn::init() - launchTimeoutMs=") + row.wait))
        << row.text << log_.text();
    destroy();
  }
}

TEST_F(InstanceTest, NameIsTextOnly) {
  create();
  NPVariant value = {NPVariantType_Void, {}};
  ASSERT_TRUE(get("name", value));
  EXPECT_EQ(value.type, NPVariantType_String);
  EXPECT_EQ(value.value.stringValue.UTF8Characters, nullptr);
  EXPECT_TRUE(set("name", browser_.text("N\xC3\xA4me")));
  EXPECT_FALSE(set("name", FakeBrowser::number(5)));
  ASSERT_TRUE(get("name", value));
  EXPECT_EQ(take(value), "N\xC3\xA4me");
  EXPECT_FALSE(set("unknown", browser_.text("x")));
  EXPECT_FALSE(get("unknown", value));
}

TEST_F(InstanceTest, AReadPropertyCarriesAReferenceOfItsOwn) {
  create();
  const NPVariant observer = browser_.object();
  EXPECT_TRUE(set("dropObserver", observer));
  EXPECT_EQ(observer.value.objectValue->referenceCount, 1u);
  NPVariant value = {NPVariantType_Void, {}};
  ASSERT_TRUE(get("dropObserver", value));
  EXPECT_EQ(value.value.objectValue, observer.value.objectValue);
  EXPECT_EQ(observer.value.objectValue->referenceCount, 2u);
  browserFuncs.releaseobject(value.value.objectValue);
  EXPECT_TRUE(set("dropObserver", FakeBrowser::number(5)));
  EXPECT_TRUE(log_.has("LOG Drop observer removed")) << log_.text();
  ASSERT_TRUE(get("dropObserver", value));
  EXPECT_EQ(value.type, NPVariantType_Null);
}

TEST_F(InstanceTest, SettingTheSameHandlerAgainKeepsIt) {
  create();
  const NPVariant handler = browser_.object();
  EXPECT_TRUE(set("eventHandler", handler));
  EXPECT_TRUE(set("eventHandler", handler));
  EXPECT_EQ(handler.value.objectValue->referenceCount, 1u);
  EXPECT_EQ(log_.count("LOG Event handler set"), 2u);
  EXPECT_EQ(log_.count("LOG Event handler removed"), 1u);
  EXPECT_TRUE(set("eventHandler", {NPVariantType_Null, {}}));
  EXPECT_EQ(handler.value.objectValue->referenceCount, 1u);  // events still go to it
  const NPVariant other = browser_.object();
  EXPECT_TRUE(set("eventHandler", other));
  EXPECT_EQ(handler.value.objectValue->referenceCount, 0u);
  EXPECT_TRUE(set("eventHandler", {NPVariantType_Void, {}}));
}

TEST_F(InstanceTest, AnInstancesHandlerKeepsItsReferenceAtTheEnd) {
  create();
  EXPECT_TRUE(set("eventHandler", browser_.object()));
  destroy();
  browser_.expectReferencesLeft(1);
}

TEST_F(InstanceTest, ADropIsApprovedInEveryMode) {
  create();
  std::vector<std::string> dropped = {"C:\\dropped\\0"};
  plugin().doDrop(dropped);
  EXPECT_TRUE(dropped.empty());
  EXPECT_TRUE(isFileAllowed("C:/dropped/0"));
  plugin().doDragOver();
  plugin().doDragLeave();
  EXPECT_TRUE(browser_.invocations.empty());
}

TEST_F(InstanceTest, ADropInUploadModeIsPosted) {
  create({{"drop-mode", "upload"}, {"drop-upload-url", "fasp://u"}});
  std::vector<std::string> dropped = {"C:\\dropped\\1"};
  plugin().doDrop(dropped);
  ASSERT_EQ(server_.requests("/transfers/").size(), 1u);
  EXPECT_NE(server_.requests("/transfers/")
                .front()
                .find("<src>file://C:/dropped/1</src>"
                      "<dest>fasp://u</dest>"),
            std::string::npos);
}

TEST_F(InstanceTest, ADropInCallbackModeReachesTheObserverThenTheHandler) {
  create({{"drop-mode", "callback"}});
  NPVariant observer = {NPVariantType_Object, {}};
  observer.value.objectValue = browser_.newObjectWithMethods({"onDrop"});
  set("dropObserver", observer);
  set("eventHandler", browser_.object());
  std::vector<std::string> dropped = {"C:\\a", "C:\\b"};
  plugin().doDrop(dropped);
  std::string json = "{\"dataTransfer\":{}}";
  plugin().doDropex(json);
  EXPECT_EQ(json, "");
  plugin().doDragOver();
  plugin().doDragLeave();
  EXPECT_EQ(browser_.invocations, (Calls{{"onDrop", "C\\:\\\\a:C\\:\\\\b"},
                                         {"drop", "[\"C:\\\\a\",\"C:\\\\b\"]"},
                                         {"dropex", "{\"dataTransfer\":{}}"},
                                         {"dragover", ""},
                                         {"dragleave", ""}}));
  browser_.expectReferencesLeft(2);
}

TEST_F(InstanceTest, AnObserverWithoutTheMethodIsNotCalled) {
  create({{"drop-mode", "callback"}});
  set("dropObserver", browser_.object());
  std::vector<std::string> dropped = {"C:\\dropped\\2"};
  plugin().doDrop(dropped);
  EXPECT_TRUE(browser_.invocations.empty());
  browser_.expectReferencesLeft(1);
}

TEST_F(InstanceTest, TheObserverMayEndTheInstance) {
  create({{"drop-mode", "callback"}});
  NPVariant observer = {NPVariantType_Object, {}};
  observer.value.objectValue = browser_.newObjectWithMethods({"onDrop"});
  set("dropObserver", observer);
  set("eventHandler", browser_.object());
  browser_.onInvokeDefault = [this](NPObject*, const std::vector<std::string>&) {
    destroy();
    return NPVariant{NPVariantType_Void, {}};
  };
  std::vector<std::string> dropped = {"C:\\dropped\\3"};
  plugin().doDrop(dropped);
  EXPECT_EQ(browser_.invocations.size(), 1u);
  browser_.expectReferencesLeft(2);
}

TEST_F(InstanceTest, ThePictureComesByTheBrowsersStream) {
  create({{"image", "http://h/i.png"}});
  NPWindow window = {};
  functions_.setwindow(&browser_.instance, &window);
  functions_.setwindow(&browser_.instance, &window);
  functions_.setwindow(&browser_.instance, nullptr);
  EXPECT_EQ(browser_.requestedUrls, std::vector<std::string>{"http://h/i.png"});
  NPStream stream = {};
  stream.url = "http://h/i.png";
  NPStream other = {};
  other.url = "http://h/other.png";
  uint16_t stype = 7;
  EXPECT_EQ(functions_.newstream(&browser_.instance, nullptr, &stream, 0, &stype), NPERR_NO_ERROR);
  EXPECT_EQ(stype, 7);
  char bytes[] = "bytes";
  EXPECT_EQ(functions_.writeready(&browser_.instance, &stream), 0x0FFFFFFF);
  EXPECT_EQ(functions_.write(&browser_.instance, &stream, 0, 5, bytes), 5);
  EXPECT_EQ(functions_.write(&browser_.instance, &stream, 5, 0, bytes), 0);
  EXPECT_EQ(functions_.write(&browser_.instance, &stream, -1, 5, bytes), -1);
  EXPECT_EQ(functions_.write(&browser_.instance, &stream, 0, -5, bytes), -1);
  EXPECT_EQ(functions_.write(&browser_.instance, &other, 0, 5, bytes), -1);
  EXPECT_EQ(functions_.write(&browser_.instance, &stream, 0x7FFFFFFF, 1, bytes), -1);
  NPStream nameless = {};
  uint16_t kind = 0;
  EXPECT_EQ(functions_.newstream(&browser_.instance, nullptr, &nameless, 0, &kind), 0);
  EXPECT_EQ(functions_.write(&browser_.instance, &nameless, 0, 5, bytes), -1);
  EXPECT_EQ(functions_.destroystream(&browser_.instance, &nameless, 0), 0);
  EXPECT_EQ(functions_.destroystream(&browser_.instance, &other, NPRES_DONE), NPERR_NO_ERROR);
  EXPECT_EQ(functions_.destroystream(&browser_.instance, &stream, NPRES_NETWORK_ERR),
            NPERR_NO_ERROR);
}

TEST_F(InstanceTest, AnImageThatCannotBeAskedForIsAWarning) {
  browser_.urlResult = NPERR_GENERIC_ERROR;
  create({{"image", "http://h/%s"}});
  NPWindow window = {};
  EXPECT_EQ(functions_.setwindow(&browser_.instance, &window), NPERR_NO_ERROR);
  EXPECT_TRUE(log_.has("LOG WARNING: Unable to load image from URL: http://h/%s")) << log_.text();
}

TEST_F(InstanceTest, NullInstancesAreRefused) {
  NPObject* object = nullptr;
  EXPECT_EQ(functions_.newp(nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr), 2);
  EXPECT_EQ(functions_.destroy(nullptr, nullptr), 2);
  EXPECT_TRUE(log_.has("ERR NPP_Destroy() - Null instance")) << log_.text();
  EXPECT_EQ(functions_.setwindow(nullptr, nullptr), 2);
  EXPECT_EQ(functions_.newstream(nullptr, nullptr, nullptr, 0, nullptr), 2);
  EXPECT_EQ(functions_.destroystream(nullptr, nullptr, 0), 2);
  EXPECT_EQ(functions_.write(nullptr, nullptr, 0, 0, nullptr), 2);
  EXPECT_EQ(functions_.event(nullptr, nullptr), 2);
  EXPECT_EQ(functions_.getvalue(nullptr, NPPVpluginScriptableNPObject, &object), 2);
  EXPECT_EQ(functions_.setvalue(nullptr, NPNVnetscapeWindow, nullptr), 0);
  functions_.asfile(nullptr, nullptr, "name");
  functions_.print(nullptr, nullptr);
  functions_.urlnotify(nullptr, nullptr, 0, nullptr);
}

TEST_F(InstanceTest, AnInstanceWithoutAPlugInIsRefused) {
  NPP_t empty = {};
  NPObject* object = nullptr;
  EXPECT_EQ(functions_.setwindow(&empty, nullptr), 2);
  EXPECT_EQ(functions_.getvalue(&empty, NPPVpluginScriptableNPObject, &object), 2);
  EXPECT_EQ(functions_.destroy(&empty, nullptr), 0);
}

TEST_F(InstanceTest, OnlyTheScriptObjectCanBeAskedFor) {
  create();
  void* value = this;
  EXPECT_EQ(functions_.getvalue(&browser_.instance, NPPVpluginWindowBool, &value), 0);
  EXPECT_EQ(value, this);
  EXPECT_EQ(functions_.getvalue(&browser_.instance, NPPVpluginScriptableNPObject, &value), 0);
  EXPECT_EQ(value, browser_.scriptObject());
  EXPECT_EQ(browser_.scriptObject()->referenceCount, 2u);
}

TEST_F(InstanceTest, EventsOfTheWindowSystemAreNotTaken) {
  create();
  int event = 0;
  EXPECT_EQ(functions_.event(&browser_.instance, nullptr), 0);
  EXPECT_EQ(functions_.event(&browser_.instance, &event), 0);
  functions_.asfile(&browser_.instance, nullptr, "C:\\%s.tmp");
  EXPECT_TRUE(log_.has("LOG C:\\%s.tmp")) << log_.text();
}

TEST_F(InstanceTest, ADropByScriptNeedsAView) {
  create();
  EXPECT_EQ(call("handleDrop"), std::nullopt);
  NPWindow window = {};
  functions_.setwindow(&browser_.instance, &window);
  EXPECT_EQ(call("handleDrop"), "not a text");
  EXPECT_EQ(call("handleDrop", {browser_.object()}), "not a text");
  EXPECT_EQ(call("handleDrop", {browser_.text("x")}), std::nullopt);
  EXPECT_EQ(call("handleDrop", {browser_.object(), browser_.object()}), std::nullopt);
}

TEST_F(InstanceTest, WhatAMethodThrowsIsItsErrorReply) {
  create();
  const NPVariant body = browser_.text(
      R"({"transfer_specs":[{"transfer_spec":{"direction":"send","paths":[{"source":""}]}}]})");
  EXPECT_EQ(call("vantrelHttpRequest", {browser_.text("POST"), browser_.text("/x"), body}),
            jsonErrorReply("invalid string position"));
  EXPECT_TRUE(log_.has("ERR invalid string position")) << log_.text();
}

}  // namespace
}  // namespace Vantrel::Web::Gecko
