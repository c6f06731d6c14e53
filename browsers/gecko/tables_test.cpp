// Constant tables and the copy of the browser's functions.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/instance_functions.h"
#include "browsers/gecko/script_methods.h"
#include "browsers/gecko/script_object.h"
#include "tests/support/log_recorder.h"

namespace Vantrel::Web::Gecko {
namespace {

TEST(ScriptMethodsTest, ThirtyNamesEachFoundAsItself) {
  std::set<std::string> names;
  for (const ScriptMethod& method : scriptMethods()) {
    EXPECT_EQ(findScriptMethod(method.name), &method);
    EXPECT_NE(method.function, nullptr);
    names.insert(method.name);
  }
  EXPECT_EQ(names.size(), 30u);
  for (const char* const name : {"", "queryversion", "queryVersio", "queryVersions", "name"}) {
    EXPECT_EQ(findScriptMethod(name), nullptr) << name;
  }
}

class ScriptArgumentsTest : public testing::Test {
 protected:
  static bool accepts(const char* method, const std::vector<NPVariantType>& types) {
    std::vector<NPVariant> args;
    for (const NPVariantType type : types) {
      args.push_back({type, {}});
      if (type == NPVariantType_String) args.back().value.stringValue = {"a", 1};
    }
    return acceptsArguments(*findScriptMethod(method), args);
  }

  static constexpr NPVariantType kText = NPVariantType_String;
  static constexpr NPVariantType kObject = NPVariantType_Object;
  static constexpr NPVariantType kBool = NPVariantType_Bool;
  static constexpr NPVariantType kNumber = NPVariantType_Double;
  TestSupport::LogRecorder log_;
};

TEST_F(ScriptArgumentsTest, TheCountIsExactOrTheLeastOrOneMoreMayCome) {
  EXPECT_TRUE(accepts("queryVersion", {}));
  EXPECT_FALSE(accepts("queryVersion", {kText}));
  EXPECT_TRUE(accepts("startDownloadToPath", {kText, kText}));
  EXPECT_FALSE(accepts("startDownloadToPath", {kText}));
  EXPECT_FALSE(accepts("startDownloadToPath", {kText, kText, kText}));
  EXPECT_FALSE(accepts("initSession", {kText}));
  EXPECT_TRUE(accepts("initSession", {kText, kText}));
  EXPECT_TRUE(accepts("initSession", {kText, kText, kBool, kObject, kNumber, kBool, kBool}));
  EXPECT_TRUE(accepts("handleDrop", {}));
  EXPECT_TRUE(accepts("handleDrop", {kObject}));
  EXPECT_FALSE(accepts("handleDrop", {kText}));
  EXPECT_FALSE(accepts("handleDrop", {kObject, kObject}));
  EXPECT_EQ(log_.text(), "");
}

TEST_F(ScriptArgumentsTest, ARefusalIsLoggedWhereTheEntrySaysSo) {
  EXPECT_FALSE(accepts("runOpenFileDialogAsync", {kText, kBool, kText}));
  EXPECT_FALSE(accepts("runOpenFileDialogAsync", {kText, kBool, kText, kObject, kText}));
  EXPECT_FALSE(accepts("readChunkAsArrayBuffer", {kText, kNumber}));
  EXPECT_FALSE(accepts("readChunkAsArrayBuffer", {kBool, kText, kText}));
  EXPECT_FALSE(accepts("readChunkAsArrayBuffer", {kText, kText, kText}));
  EXPECT_FALSE(accepts("readChunkAsArrayBuffer", {kText, kNumber, kText}));
  EXPECT_TRUE(accepts("readChunkAsArrayBuffer", {kText, kNumber, kNumber}));
  EXPECT_EQ(log_.lines("ERR"),
            (std::vector<std::string>{"runOpenFileDialogAsync() - invalid arguments",
                                      "runOpenFileDialogAsync() - invalid arguments",
                                      "readChunkAsArrayBuffer() - invalid arguments",
                                      "readChunkAsArrayBuffer() - invalid arguments",
                                      "readChunkAsArrayBuffer() - offset value invalid",
                                      "readChunkAsArrayBuffer() - chunk size invalid"}));
}

TEST(ScriptClassTest, EachTableIsItsOwnAndHasNoGarbage) {
  const NPClass* const table = createScriptClass();
  EXPECT_NE(table, createScriptClass());
  EXPECT_EQ(table->structVersion, 3u);
  EXPECT_NE(table->allocate, nullptr);
  EXPECT_EQ(table->deallocate, table->invalidate);
  EXPECT_EQ(table->enumerate, nullptr);
  EXPECT_EQ(table->construct, nullptr);
}

class BrowserTableTest : public testing::Test {
 protected:
  ~BrowserTableTest() override { browserFuncs = {}; }

  // A table whose bytes are all 1, which says that it has `size` of them.
  static NPNetscapeFuncs table(size_t size) {
    NPNetscapeFuncs funcs;
    std::memset(static_cast<void*>(&funcs), 1, sizeof funcs);
    funcs.size = static_cast<uint16_t>(size);
    return funcs;
  }
  static size_t copiedBytes() {
    std::vector<unsigned char> bytes(sizeof browserFuncs);
    std::memcpy(bytes.data(), &browserFuncs, bytes.size());
    size_t end = bytes.size();
    while (end > sizeof(uint16_t) && bytes[end - 1] == 0) --end;
    return end;
  }
};

TEST_F(BrowserTableTest, AShorterTableWithAllWeNeedIsCopiedThatFar) {
  EXPECT_EQ(kNeededTableSize, 360);
  for (const size_t size : {360u, 448u, 471u}) {
    copyBrowserFunctions(table(size));
    EXPECT_EQ(copiedBytes(), size);
  }
}

TEST_F(BrowserTableTest, AnyOtherSizeIsNotLookedAt) {
  for (const size_t size : {0u, 8u, 359u, 472u, 473u, 65535u}) {
    copyBrowserFunctions(table(size));
    EXPECT_EQ(copiedBytes(), sizeof(NPNetscapeFuncs)) << size;
  }
}

TEST_F(BrowserTableTest, WhatABrowserDoesNotHaveFails) {
  NPNetscapeFuncs nothing = {};
  nothing.size = sizeof nothing;
  copyBrowserFunctions(nothing);
  NPVariant variant = {};
  NPObject object = {};
  EXPECT_EQ(browserFuncs.uagent(nullptr), nullptr);
  EXPECT_EQ(browserFuncs.memalloc(1), nullptr);
  browserFuncs.memfree(nullptr);
  EXPECT_EQ(browserFuncs.geturlnotify(nullptr, "", nullptr, nullptr), NPERR_GENERIC_ERROR);
  EXPECT_EQ(browserFuncs.getvalue(nullptr, NPNVWindowNPObject, nullptr), NPERR_GENERIC_ERROR);
  EXPECT_EQ(browserFuncs.getstringidentifier(""), nullptr);
  EXPECT_FALSE(browserFuncs.identifierisstring(nullptr));
  EXPECT_EQ(browserFuncs.utf8fromidentifier(nullptr), nullptr);
  EXPECT_EQ(browserFuncs.createobject(nullptr, nullptr), nullptr);
  EXPECT_EQ(browserFuncs.retainobject(&object), &object);
  browserFuncs.releaseobject(&object);
  EXPECT_FALSE(browserFuncs.invoke(nullptr, &object, nullptr, nullptr, 0, &variant));
  EXPECT_FALSE(browserFuncs.invokeDefault(nullptr, &object, nullptr, 0, &variant));
  EXPECT_FALSE(browserFuncs.getproperty(nullptr, &object, nullptr, &variant));
  EXPECT_FALSE(browserFuncs.hasmethod(nullptr, &object, nullptr));
  browserFuncs.releasevariantvalue(&variant);
  EXPECT_EQ(browserFuncs.pluginthreadasynccall, nullptr);
}

TEST(PluginTableTest, ANullTableIsRefused) {
  TestSupport::LogRecorder log;
  EXPECT_EQ(OW_PopulatePluginFunctionTable(nullptr), NPERR_INVALID_FUNCTABLE_ERROR);
  EXPECT_TRUE(log.has("ERR OW_PopulatePluginFunctionTable() - Null argument")) << log.text();
}

TEST(PluginTableTest, AShortTableIsReportedAndFilled) {
  TestSupport::LogRecorder log;
  NPPluginFuncs funcs = {};
  funcs.size = 120;
  funcs.javaClass = &funcs;
  EXPECT_EQ(OW_PopulatePluginFunctionTable(&funcs), NPERR_NO_ERROR);
  EXPECT_TRUE(
      log.has("ERR OW_PopulatePluginFunctionTable() - Bad NPPluginFuncs size=120 "
              "(expected=168)"))
      << log.text();
  EXPECT_EQ(funcs.size, 120);
  EXPECT_EQ(funcs.version, 27);
  EXPECT_NE(funcs.newp, nullptr);
  EXPECT_NE(funcs.setvalue, nullptr);
  EXPECT_EQ(funcs.javaClass, nullptr);
  EXPECT_EQ(funcs.gotfocus, nullptr);
  EXPECT_EQ(funcs.didComposite, nullptr);
}

TEST(PluginTableTest, AFullTableIsFilledInSilence) {
  TestSupport::LogRecorder log;
  NPPluginFuncs funcs = {};
  funcs.size = sizeof funcs;
  EXPECT_EQ(OW_PopulatePluginFunctionTable(&funcs), NPERR_NO_ERROR);
  EXPECT_TRUE(log.lines("ERR").empty()) << log.text();
}

}  // namespace
}  // namespace Vantrel::Web::Gecko
