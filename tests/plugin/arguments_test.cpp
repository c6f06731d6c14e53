// What each script method demands of its arguments: counts, types, empty texts, texts by their
// counted length. No desktop client is there, so that methods that pass their checks end quickly.
#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "tests/plugin/method_table.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/support/fake_file_dialogs_win.h"

namespace Vantrel::Web {
namespace {

class ArgumentsTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    // Every dialog is answered with a cancel at once.
    dialogs_.emplace();
    dialogs_->results["Show"] = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    function_.emplace(host().page.makeFunction("callback"));
    instance_.emplace(host());
  }

  void TearDown() override {
    // Answers of requests that could not be made.
    host().pumpOnce();
    // A request that is refused at once keeps the reference of its callback.
    instance_->end({.objects = {{function_->get(), expectedKept_}}});
    instance_.reset();
    function_.reset();
    dialogs_.reset();
    PluginTest::TearDown();
  }

  // Runs a check for each method of the table.
  template <typename Check>
  void forEachMethod(Check check) {
    for (const MethodEntry& entry : methodTable()) {
      SCOPED_TRACE(entry.name);
      current_ = &entry;
      check();
    }
  }

  const MethodEntry& method() const { return *current_; }
  std::vector<Value> good() const { return goodArguments(method(), function_->get()); }

  // Whether the method takes the arguments.
  bool takes(const std::vector<Value>& arguments) {
    const bool accepted = instance_->call(method().name, arguments).accepted;
    if (accepted && std::string(method().name) == "vantrelHttpRequestAsync") ++expectedKept_;
    // A dialog that waits for its turn has it now.
    host().pumpOnce();
    return accepted;
  }
  // handleDrop needs a window; its arguments are tried where there is one.
  bool needsWindow() const { return std::string(method().name) == "handleDrop"; }

  std::optional<TestSupport::FakeFileDialogs> dialogs_;
  const MethodEntry* current_ = nullptr;
  std::optional<Host::PageReference> function_;
  std::optional<Instance> instance_;
  int expectedKept_ = 0;
};

std::string describe(const std::vector<Value>& values) {
  std::string text;
  for (const Value& value : values) text += testing::PrintToString(value) + ", ";
  return text;
}

TEST_F(ArgumentsTest, TheRightArgumentsAreTaken) {
  forEachMethod([this] { EXPECT_EQ(takes(good()), !needsWindow()); });
}

TEST_F(ArgumentsTest, OneLessIsRefused) {
  forEachMethod([this] {
    std::vector<Value> arguments = good();
    while (!arguments.empty()) {
      arguments.pop_back();
      EXPECT_FALSE(takes(arguments)) << describe(arguments);
    }
  });
}

TEST_F(ArgumentsTest, OneMoreIsIgnoredOrRefused) {
  forEachMethod([this] {
    for (const Value& more : {Value::undefined(), Value::null(), Value::number(1), text("text"),
                              Value::of(function_->get())}) {
      std::vector<Value> arguments = good();
      arguments.push_back(more);
      const bool optional = !method().optional.empty() && more.type == NPVariantType_Object &&
                            method().optional[0] == Demand::kObject;
      EXPECT_EQ(takes(arguments), method().takesMore || (optional && !needsWindow()))
          << describe(arguments);
    }
  });
}

TEST_F(ArgumentsTest, AnOptionalOneIsCheckedToo) {
  forEachMethod([this] {
    if (method().optional.empty() || needsWindow()) return;
    std::vector<Value> arguments = good();
    arguments.push_back(goodValue(method().optional[0], function_->get()));
    EXPECT_TRUE(takes(arguments));
    for (const Value& bad : badValues(method().optional[0], function_->get())) {
      arguments.back() = bad;
      EXPECT_FALSE(takes(arguments)) << describe(arguments);
    }
    arguments.back() = goodValue(method().optional[0], function_->get());
    arguments.push_back(Value::boolean(true));
    EXPECT_FALSE(takes(arguments));
  });
}

TEST_F(ArgumentsTest, EachWrongTypeIsRefused) {
  forEachMethod([this] {
    for (size_t i = 0; i < method().demands.size(); ++i) {
      for (const Value& bad : badValues(method().demands[i], function_->get())) {
        std::vector<Value> arguments = good();
        arguments[i] = bad;
        EXPECT_FALSE(takes(arguments)) << describe(arguments);
      }
    }
  });
}

TEST_F(ArgumentsTest, TextsMayBeEmptyWhereNothingElseIsDemanded) {
  forEachMethod([this] {
    for (size_t i = 0; i < method().demands.size(); ++i) {
      if (method().demands[i] != Demand::kText) continue;
      for (const Value& empty : {text(""), Value::nullString()}) {
        std::vector<Value> arguments = good();
        arguments[i] = empty;
        EXPECT_TRUE(takes(arguments)) << describe(arguments);
      }
    }
  });
}

TEST_F(ArgumentsTest, BooleanTextsAreReadByTheirLength) {
  forEachMethod([this] {
    for (size_t i = 0; i < method().demands.size(); ++i) {
      if (method().demands[i] != Demand::kBoolean) continue;
      for (const Value& boolean :
           {Value::boolean(false), text("true"), text("false"), Value::stringInside("trueish", 4),
            Value::stringInside("falsehood", 5), text(std::string("true\0x", 6))}) {
        std::vector<Value> arguments = good();
        arguments[i] = boolean;
        EXPECT_TRUE(takes(arguments)) << describe(arguments);
      }
    }
  });
}

TEST_F(ArgumentsTest, NumbersMayBeWholeOrNot) {
  forEachMethod([this] {
    for (size_t i = 0; i < method().demands.size(); ++i) {
      if (method().demands[i] != Demand::kNumber) continue;
      for (const Value& number :
           {Value::number(0), Value::number(-1), Value::number(2147483647), Value::number(1.9),
            Value::number(-1.9), Value::number(1e300), Value::number(-1e300),
            Value::number(__builtin_nan("")), Value::number(__builtin_inf())}) {
        std::vector<Value> arguments = good();
        arguments[i] = number;
        EXPECT_TRUE(takes(arguments)) << describe(arguments);
      }
    }
  });
}

TEST_F(ArgumentsTest, TextsWithNulBytesAndLongTextsAreTaken) {
  forEachMethod([this] {
    for (size_t i = 0; i < method().demands.size(); ++i) {
      if (method().demands[i] != Demand::kText && method().demands[i] != Demand::kFullText)
        continue;
      for (const std::string& odd :
           {std::string("a\0b", 3), std::string(1, '\0'), std::string(100000, 'x'),
            std::string("\xFF\xFE\x80"), std::string("%s%n%d")}) {
        std::vector<Value> arguments = good();
        arguments[i] = text(odd);
        EXPECT_TRUE(takes(arguments));
      }
    }
  });
}

TEST_F(ArgumentsTest, EachCallIsLoggedWithItsCount) {
  forEachMethod([this] {
    if (needsWindow()) return;
    takes(good());
    EXPECT_TRUE(logHas("DBG " + std::string(method().name) +
                       "(): argCount=" + std::to_string(good().size()) + "\r\n"));
  });
}

class MethodResultsTest : public PluginTest {};

TEST_F(MethodResultsTest, QueriesAnswerInWords) {
  Instance instance(host());
  EXPECT_EQ(instance.call("queryVersion").value, text("3.7"));
  EXPECT_EQ(instance.call("queryBuildVersion").value, text("3.7.4.146831"));
  EXPECT_EQ(instance.call("queryPluginVersion").value, text("3.7.4.146831"));
  EXPECT_EQ(instance.call("queryBrowserEngine").value, text("Gecko"));
}

TEST_F(MethodResultsTest, ListsAndStartsAnswerNothing) {
  Instance instance(host());
  for (const char* name : {"addToDownloadList", "addToUploadList", "startDownload",
                           "startListDownloadToPath", "startListUploadToURL"}) {
    EXPECT_EQ(instance.call(name, {text("x")}).value, Value::undefined()) << name;
  }
  for (const char* name : {"clearDownloadList", "clearUploadList", "displayAboutWindow",
                           "displayPreferencesWindow", "displayTransferManager"}) {
    EXPECT_EQ(instance.call(name).value, Value::undefined()) << name;
  }
  for (const char* name : {"startDownloadToPath", "startUploadToURL"}) {
    EXPECT_EQ(instance.call(name, {text("x"), text("y")}).value, Value::undefined()) << name;
  }
}

TEST_F(MethodResultsTest, ARefusedDialogSaysSoInTheLog) {
  Instance instance(host());
  for (const char* name :
       {"runOpenFileDialogAsync", "runOpenFolderDialogAsync", "runSaveFileDialogAsync"}) {
    for (const size_t count : {0U, 1U, 6U}) {
      EXPECT_FALSE(instance.call(name, std::vector<Value>(count, text("x"))).accepted) << name;
    }
    EXPECT_TRUE(logHas("ERR " + std::string(name) + "() - invalid arguments\r\n")) << name;
  }
}

TEST_F(MethodResultsTest, RefusedReadingSaysWhy) {
  Instance instance(host());
  EXPECT_FALSE(instance.call("readAsArrayBuffer", {Value::number(1)}).accepted);
  EXPECT_TRUE(logHas("ERR readAsArrayBuffer() - invalid arguments\r\n"));
  EXPECT_FALSE(instance.call("readChunkAsArrayBuffer", {text("a"), Value::number(1)}).accepted);
  EXPECT_TRUE(logHas("ERR readChunkAsArrayBuffer() - invalid arguments\r\n"));
  EXPECT_FALSE(
      instance.call("readChunkAsArrayBuffer", {text("a"), text("1"), Value::number(1)}).accepted);
  EXPECT_TRUE(logHas("ERR readChunkAsArrayBuffer() - offset value invalid\r\n"));
  EXPECT_FALSE(
      instance.call("readChunkAsArrayBuffer", {text("a"), Value::number(1), text("1")}).accepted);
  EXPECT_TRUE(logHas("ERR readChunkAsArrayBuffer() - chunk size invalid\r\n"));
}

TEST_F(MethodResultsTest, AnEmptyPathToReadIsRefusedInSilence) {
  Instance instance(host());
  EXPECT_FALSE(instance.call("readAsArrayBuffer", {text("")}).accepted);
  EXPECT_FALSE(
      instance.call("readChunkAsArrayBuffer", {text(""), Value::number(0), Value::number(0)})
          .accepted);
  EXPECT_FALSE(logHas("ERR read"));
}

TEST_F(MethodResultsTest, WithoutAWindowThereIsNothingToDropOn) {
  Host::PageReference object = host().page.makeObject("data", {});
  Instance instance(host());
  EXPECT_FALSE(instance.call("handleDrop").accepted);
  EXPECT_FALSE(instance.call("handleDrop", {object.value()}).accepted);
}

TEST_F(MethodResultsTest, WithoutBrowserMemoryAnAnswerIsNullText) {
  Instance instance(host());
  host().memory.failAllocationAfter(0);
  EXPECT_EQ(instance.call("queryVersion").value, Value::nullString());
  EXPECT_EQ(instance.call("queryVersion").value, text("3.7"));
}

}  // namespace
}  // namespace Vantrel::Web
