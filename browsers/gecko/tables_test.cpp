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
  for (const NamedScriptMethod& method : scriptMethods()) {
    EXPECT_EQ(findScriptMethod(method.name), &method);
    EXPECT_NE(method.method, nullptr);
    names.insert(method.name);
  }
  EXPECT_EQ(names.size(), 30u);
  for (const char* const name : {"", "queryversion", "queryVersio", "queryVersions", "name"}) {
    EXPECT_EQ(findScriptMethod(name), nullptr) << name;
  }
}

TEST(ScriptClassTest, TheTableHasNoGarbage) {
  const NPClass& table = *scriptClass();
  EXPECT_EQ(table.structVersion, 3u);
  EXPECT_NE(table.allocate, nullptr);
  EXPECT_EQ(table.deallocate, table.invalidate);
  EXPECT_EQ(table.enumerate, nullptr);
  EXPECT_EQ(table.construct, nullptr);
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
