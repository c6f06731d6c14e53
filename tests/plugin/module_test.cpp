// The three entries of the module and the two function tables.
#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <fstream>

#include "tests/host/process_state.h"
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using Host::TableShape;

// What stands behind the last browser function that the library needs.
constexpr uint16_t kNeededSize = offsetof(NPNetscapeFuncs, pluginthreadasynccall) + sizeof(void*);

class ModuleTest : public PluginTest {
 protected:
  void SetUp() override { open(kPluginLibrary); }

  void expectWorkingInstance() {
    ASSERT_EQ(host().getEntryPoints(), NPERR_NO_ERROR);
    Instance instance(host());
    EXPECT_EQ(instance.error(), NPERR_NO_ERROR);
    EXPECT_EQ(instance.call("queryVersion").value, text("3.7"));
  }
};

TEST_F(ModuleTest, LoadingAloneDoesNothing) {
  EXPECT_EQ(profile_.log(), "");
  EXPECT_TRUE(finish().empty());
}

TEST_F(ModuleTest, ANullTableIsRefused) {
  EXPECT_EQ(host().initializeWithoutTable(), NPERR_INVALID_FUNCTABLE_ERROR);
}

TEST_F(ModuleTest, AfterARefusedTableAGoodOneWorks) {
  EXPECT_EQ(host().initializeWithoutTable(), NPERR_INVALID_FUNCTABLE_ERROR);
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  expectWorkingInstance();
}

TEST_F(ModuleTest, ANullTableLeavesARunningModuleAlone) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  EXPECT_EQ(host().initializeWithoutTable(), NPERR_INVALID_FUNCTABLE_ERROR);
  EXPECT_TRUE(logHas("ERR OW_PopulateNetscapeFunctionTable() - Null argument"));
  expectWorkingInstance();
  EXPECT_TRUE(logHas("~ovOrvaneWebPlugin() - done"));
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  EXPECT_EQ(logCount("Shutting down Orvane Web Gecko plugin"), 1U);
}

TEST_F(ModuleTest, AnEndWithoutAStartDoesNothing) {
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  expectWorkingInstance();
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
}

TEST_F(ModuleTest, AnInstanceBeforeTheStartFails) {
  ASSERT_EQ(host().getEntryPoints(), NPERR_NO_ERROR);
  host().page.address.window = Host::Step::kFails;
  Instance instance(host());
  EXPECT_EQ(instance.error(), NPERR_GENERIC_ERROR);
  instance.end({.scriptObject = 0});
}

TEST_F(ModuleTest, AScriptObjectAndItsTableOutliveTheLibrary) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  ASSERT_EQ(host().getEntryPoints(), NPERR_NO_ERROR);
  NPObject* object = nullptr;
  const NPClass* table = nullptr;
  {
    Instance first(host());
    Instance second(host());
    object = first.script();
    table = object->_class;
    EXPECT_NE(table, second.script()->_class);
  }
  EXPECT_TRUE(finish().empty());
  // A late release writes here; nobody else may have the memory by then.
  EXPECT_TRUE(Host::isAllocated(object));
  EXPECT_TRUE(Host::isAllocated(table));
}

TEST_F(ModuleTest, StartAndEndAreLogged) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  EXPECT_EQ(logCount("Initializing Orvane Web Gecko plugin"), 1U);
  EXPECT_TRUE(logHas("OW_PopulateNetscapeFunctionTable()"));
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  EXPECT_EQ(logCount("Shutting down Orvane Web Gecko plugin"), 1U);
}

TEST_F(ModuleTest, TheModuleStartsBeforeTheFaceAndEndsBehindIt) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  const std::string log = profile_.log();
  size_t at = 0;
  for (const char* const line :
       {"LOG \n\nInitializing Orvane Web ActiveX plugin\n", "DBG RunnableScheduler::init()",
        "LOG \n\nInitializing Orvane Web Gecko plugin\n", "DBG OW_PopulateNetscapeFunctionTable()",
        "DBG RunnableScheduler::init()", "LOG Shutting down Orvane Web Gecko plugin",
        "DBG RunnableScheduler::cleanup()", "LOG Shutting down Orvane Web ActiveX plugin"}) {
    const size_t found = log.find(line, at);
    ASSERT_NE(found, std::string::npos) << line << " in " << log;
    at = found + 1;
  }
  EXPECT_EQ(logCount("Orvane Web ActiveX plugin"), 2U);
}

TEST_F(ModuleTest, ATableOfTheUsualSizeIsReadAndNoMore) {
  EXPECT_EQ(host().initialize({.size = 472, .bytes = 472}), NPERR_NO_ERROR);
  expectWorkingInstance();
}

TEST_F(ModuleTest, AShorterTableWithAllNeededFunctionsIsReadByItsSize) {
  for (const uint16_t size :
       {kNeededSize, static_cast<uint16_t>(kNeededSize + 8), static_cast<uint16_t>(464)}) {
    EXPECT_EQ(host().initialize({.size = size, .bytes = size}), NPERR_NO_ERROR) << size;
    expectWorkingInstance();
    host().shutdown();
  }
}

TEST_F(ModuleTest, AnyOtherSizeIsNotLookedAt) {
  for (const uint16_t size : {uint16_t{0}, uint16_t{8}, static_cast<uint16_t>(kNeededSize - 8),
                              uint16_t{473}, uint16_t{480}, uint16_t{65535}}) {
    EXPECT_EQ(host().initialize({.size = size}), NPERR_NO_ERROR) << size;
    expectWorkingInstance();
    host().shutdown();
  }
}

TEST_F(ModuleTest, OnlyNeededFunctionsAreCalled) {
  const auto withoutOthers = [](NPNetscapeFuncs& table) {
    NPNetscapeFuncs least{};
    least.size = table.size;
    least.version = table.version;
    least.uagent = table.uagent;
    least.memalloc = table.memalloc;
    least.memfree = table.memfree;
    least.getvalue = table.getvalue;
    least.getstringidentifier = table.getstringidentifier;
    least.identifierisstring = table.identifierisstring;
    least.utf8fromidentifier = table.utf8fromidentifier;
    least.createobject = table.createobject;
    least.retainobject = table.retainobject;
    least.releaseobject = table.releaseobject;
    least.invokeDefault = table.invokeDefault;
    least.getproperty = table.getproperty;
    least.releasevariantvalue = table.releasevariantvalue;
    least.pluginthreadasynccall = table.pluginthreadasynccall;
    table = least;
  };
  TableShape shape;
  shape.edit = withoutOthers;
  EXPECT_EQ(host().initialize(shape), NPERR_NO_ERROR);
  expectWorkingInstance();
}

TEST_F(ModuleTest, TheTableIsCopiedAndNotKept) {
  // The host frees its table as soon as NP_Initialize returns; a later look at it would crash.
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  expectWorkingInstance();
  expectWorkingInstance();
}

TEST_F(ModuleTest, ItStartsAgainAfterItsEnd) {
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
    expectWorkingInstance();
    EXPECT_EQ(host().shutdown(), NPERR_NO_ERROR);
  }
  EXPECT_EQ(logCount("Initializing Orvane Web Gecko plugin"), 3U);
  EXPECT_EQ(logCount("Shutting down Orvane Web Gecko plugin"), 3U);
}

TEST_F(ModuleTest, AStaleCopyInTheUsersProfileIsDeleted) {
  for (const auto& root : {profile_.roamingAppData(), profile_.localAppData()}) {
    std::filesystem::create_directories(root / "Mozilla" / "Plugins");
    std::ofstream(root / "Mozilla" / "Plugins" / "nporvaneweb.dll") << "old";
    std::ofstream(root / "Mozilla" / "Plugins" / "other.dll") << "other";
  }
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  for (const auto& root : {profile_.roamingAppData(), profile_.localAppData()}) {
    EXPECT_FALSE(std::filesystem::exists(root / "Mozilla" / "Plugins" / "nporvaneweb.dll"));
    EXPECT_TRUE(std::filesystem::exists(root / "Mozilla" / "Plugins" / "other.dll"));
  }
}

TEST_F(ModuleTest, TheEntryPointsAreFilled) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  NPPluginFuncs table;
  std::memset(static_cast<void*>(&table), 0x5A, sizeof table);
  table.size = sizeof table;
  EXPECT_EQ(host().getEntryPoints(&table), NPERR_NO_ERROR);
  EXPECT_EQ(table.size, sizeof table);
  EXPECT_EQ(table.version, 27);
  EXPECT_EQ(table.javaClass, nullptr);
  for (const bool filled :
       {table.newp != nullptr, table.destroy != nullptr, table.setwindow != nullptr,
        table.newstream != nullptr, table.destroystream != nullptr, table.asfile != nullptr,
        table.writeready != nullptr, table.write != nullptr, table.print != nullptr,
        table.event != nullptr, table.urlnotify != nullptr, table.getvalue != nullptr,
        table.setvalue != nullptr}) {
    EXPECT_TRUE(filled);
  }
  // What the interface grew later stays as the browser set it.
  NPPluginFuncs untouched;
  std::memset(static_cast<void*>(&untouched), 0x5A, sizeof untouched);
  EXPECT_EQ(std::memcmp(&table.gotfocus, &untouched.gotfocus, 6 * sizeof(void*)), 0);
  EXPECT_FALSE(logHas("Bad NPPluginFuncs"));
}

TEST_F(ModuleTest, AShortTableOfEntryPointsIsReportedAndFilled) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  NPPluginFuncs table{};
  table.size = 120;
  EXPECT_EQ(host().getEntryPoints(&table), NPERR_NO_ERROR);
  EXPECT_EQ(table.size, 120);
  EXPECT_NE(table.setvalue, nullptr);
  EXPECT_TRUE(
      logHas("ERR OW_PopulatePluginFunctionTable() - Bad NPPluginFuncs size=120 "
             "(expected=168)"));
}

TEST_F(ModuleTest, AShortTableIsWrittenOnlyAsFarAsItsFunctionsReach) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  const Host::GuardedBytes bytes(120);
  auto* table = static_cast<NPPluginFuncs*>(static_cast<void*>(bytes.data()));
  table->size = 120;
  EXPECT_EQ(host().getEntryPoints(table), NPERR_NO_ERROR);
}

TEST_F(ModuleTest, ANullTableOfEntryPointsIsRefused) {
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  EXPECT_EQ(host().getEntryPoints(nullptr), NPERR_INVALID_FUNCTABLE_ERROR);
  EXPECT_TRUE(logHas("ERR OW_PopulatePluginFunctionTable() - Null argument"));
}

TEST_F(ModuleTest, TheEntryPointsMayBeAskedForFirst) {
  EXPECT_EQ(host().getEntryPoints(), NPERR_NO_ERROR);
  NPPluginFuncs table{};
  table.size = 120;
  EXPECT_EQ(host().getEntryPoints(&table), NPERR_NO_ERROR);
  EXPECT_EQ(logCount("ERR OW_PopulatePluginFunctionTable() - Bad NPPluginFuncs size=120"), 1U);
  EXPECT_EQ(logCount("DBG NP_GetEntryPoints()"), 2U);
  EXPECT_EQ(host().initialize(), NPERR_NO_ERROR);
  expectWorkingInstance();
}

}  // namespace
}  // namespace Vantrel::Web
