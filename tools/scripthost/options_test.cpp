// The command line of the script host.
#include "tools/scripthost/options.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace Vantrel::ScriptHost {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(ScriptHostOptionsTest, AScriptAloneHasTheDefaults) {
  const Options options = readOptions({L"page.js"});
  EXPECT_EQ(options.script, L"page.js");
  EXPECT_EQ(options.program, L"Orvane.OrvaneWebCtrl.1");
  EXPECT_EQ(options.limitSeconds, 60);
  EXPECT_TRUE(options.parameters.empty());
}

TEST(ScriptHostOptionsTest, OptionsParametersAndOrdersAreToldApart) {
  const Options options =
      readOptions({L"--host", L"a.host", L"--parameter", L"drop-mode=callback", L"--limit", L"5",
                   L"page.js", L"source=/a=b.bin", L"empty="});
  EXPECT_EQ(options.host, L"a.host");
  EXPECT_EQ(options.limitSeconds, 5);
  EXPECT_THAT(options.parameters, ElementsAre(Pair("drop-mode", "callback")));
  EXPECT_THAT(options.order, ElementsAre(Pair("empty", ""), Pair("source", "/a=b.bin")));
}

TEST(ScriptHostOptionsTest, WhatIsNoOptionIsToldWithTheUsage) {
  EXPECT_THROW(readOptions({}), std::runtime_error);
  EXPECT_THROW(readOptions({L"--host"}), std::runtime_error);
  EXPECT_THROW(readOptions({L"--other", L"x", L"page.js"}), std::runtime_error);
  EXPECT_THROW(readOptions({L"page.js", L"no pair"}), std::runtime_error);
  EXPECT_THROW(readOptions({L"page.js", L"=value"}), std::runtime_error);
}

}  // namespace
}  // namespace Vantrel::ScriptHost
