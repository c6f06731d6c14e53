// What a page may ask for with a transfer specification. No file or folder was chosen here, so
// every checked "send" and every checked destination is refused; what is not checked goes out.
#include <gmock/gmock.h>

#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kPath[] = "/v5/vantrel/transfers/start";

std::string unauthorizedFile(const std::string& path) {
  return errorReply("The website attempted to upload an unauthorized file or folder: " + path);
}

std::string unauthorizedDirectory(const std::string& path) {
  return errorReply("The website attempted to transfer to an unauthorized directory: " + path);
}

std::string specification(const std::string& transferSpec, const std::string& settings = "{}") {
  return "{\"orvane_vantrel_settings\":" + settings + ",\"transfer_spec\":" + transferSpec + "}";
}

std::string body(const std::string& specifications) {
  return "{\"transfer_specs\":[" + specifications + "]}";
}

std::string sendOf(const std::string& members) {
  return body(specification("{\"direction\":\"send\"" + members + "}"));
}

class SpecificationsTest : public ServedTest {
 protected:
  void SetUp() override {
    ServedTest::SetUp();
    instance_.emplace(host());
  }
  void TearDown() override {
    instance_.reset();
    ServedTest::TearDown();
  }

  std::string reply(const std::string& requestBody) {
    return instance_->call("vantrelHttpRequest", {text("POST"), text(kPath), text(requestBody)})
        .value.text;
  }
  // The client answers {} to what passes; the body is then the page's, byte for byte.
  void expectPasses(const std::string& requestBody) {
    const size_t before = server_.requests(kPath).size();
    EXPECT_EQ(reply(requestBody), "{}") << requestBody;
    ASSERT_EQ(server_.requests(kPath).size(), before + 1) << requestBody;
    EXPECT_EQ(messageBody(server_.requests(kPath).back()), requestBody);
  }
  void expectRefused(const std::string& requestBody, const std::string& error) {
    const size_t before = server_.connections();
    EXPECT_EQ(reply(requestBody), error) << requestBody;
    EXPECT_EQ(server_.connections(), before) << requestBody;
  }

  std::optional<Instance> instance_;
};

TEST_F(SpecificationsTest, WithoutSpecificationsNothingIsChecked) {
  for (const char* passing :
       {"{}", "[]", "5", "\"text\"", "{\"transfer_specs\":{}}", "{\"transfer_specs\":[]}",
        "{\"transfer_specs\":null}", "{\"transfer_specs\":\"send\"}", "{\"transfer_specs\":5}"}) {
    expectPasses(passing);
  }
}

TEST_F(SpecificationsTest, ASendOfAFileThatNobodyChoseIsRefused) {
  expectRefused(sendOf(",\"paths\":[{\"source\":\"C:/a.txt\"}]"), unauthorizedFile("C:/a.txt"));
  expectRefused(sendOf(",\"paths\":[{\"source\":\"C:\\\\a\\\\b.txt\"}]"),
                unauthorizedFile("C:/a/b.txt"));
  expectRefused(sendOf(",\"source_root\":\"C:\\\\a\\\\\",\"paths\":[{\"source\":\"/b\"}]"),
                unauthorizedFile("C:/a/b"));
  expectRefused(sendOf(",\"source_root\":\"/a\",\"paths\":[{\"source\":\"\"}]"),
                unauthorizedFile("/a"));
}

TEST_F(SpecificationsTest, TheFirstRefusedFileIsNamed) {
  expectRefused(sendOf(",\"paths\":[{\"other\":1},{\"source\":\"/one\"},{\"source\":\"/two\"}]"),
                unauthorizedFile("/one"));
  expectRefused(sendOf(",\"paths\":[{\"source\":\"/one\",\"source\":\"/two\"}]"),
                unauthorizedFile("/one"));
}

TEST_F(SpecificationsTest, ASendWithoutPathsIsAnInvalidArgument) {
  const std::string invalid = errorReply("Invalid argument: paths");
  for (const char* paths : {"", ",\"paths\":{}", ",\"paths\":null", ",\"paths\":\"/a\"",
                            ",\"paths\":5", ",\"source_root\":\"/a\""}) {
    expectRefused(sendOf(paths), invalid);
  }
  for (const char* element : {"5", "null", "\"/a\"", "[]", "true"}) {
    expectRefused(sendOf(std::string(",\"paths\":[") + element + "]"), invalid);
  }
}

TEST_F(SpecificationsTest, ASendOfNothingPasses) {
  expectPasses(sendOf(",\"paths\":[]"));
  expectPasses(sendOf(",\"paths\":[{}]"));
  expectPasses(sendOf(",\"paths\":[{\"destination\":\"/x\"},{\"Source\":\"/x\"}]"));
}

TEST_F(SpecificationsTest, ASourceThatIsNoTextIsRefused) {
  for (const char* source : {"null", "true", "{}", "[]"}) {
    expectRefused(
        sendOf(std::string(",\"source_root\":\"/a\",\"paths\":[{\"source\":") + source + "}]"),
        unauthorizedFile("/a"));
  }
  expectRefused(sendOf(",\"source_root\":\"/a\",\"paths\":[{\"source\":1.50}]"),
                unauthorizedFile("/a/1.50"));
}

TEST_F(SpecificationsTest, AnEmptyPathIsOutOfRange) {
  expectRefused(sendOf(",\"paths\":[{\"source\":\"\"}]"), errorReply("invalid string position"));
  EXPECT_TRUE(logHas("ERR invalid string position\r\n"));
}

TEST_F(SpecificationsTest, OnlyTheExactWordIsASend) {
  for (const char* direction : {"\"Send\"", "\"SEND\"", "\"send \"", "\"\"", "\"other\"", "5",
                                "null", "true", "[\"send\"]"}) {
    expectPasses(body(specification(std::string("{\"direction\":") + direction +
                                    ",\"paths\":[{\"source\":\"/a\"}]}")));
  }
  expectPasses(body(specification("{\"paths\":[{\"source\":\"/a\"}]}")));
}

TEST_F(SpecificationsTest, AnAbsoluteDestinationThatNobodyChoseIsRefused) {
  const auto receive = [](const std::string& root) {
    return body(specification("{\"direction\":\"receive\"" + root + "}",
                              "{\"use_absolute_destination_path\":true}"));
  };
  expectRefused(receive(",\"destination_root\":\"C:/Users/me\""),
                unauthorizedDirectory("C:/Users/me"));
  expectRefused(receive(",\"destination_root\":\"C:\\\\Users\\\\me\""),
                unauthorizedDirectory("C:\\\\Users\\\\me"));
  expectRefused(receive(""), unauthorizedDirectory(""));
  expectRefused(receive(",\"destination_root\":\"\""), unauthorizedDirectory(""));
}

TEST_F(SpecificationsTest, OnlyTheLiteralTrueTurnsTheDestinationCheckOn) {
  for (const char* flag : {"\"true\"", "1", "false", "null", "[true]"}) {
    expectPasses(
        body(specification("{\"direction\":\"receive\",\"destination_root\":\"C:/\"}",
                           std::string("{\"use_absolute_destination_path\":") + flag + "}")));
  }
  expectPasses(body(specification("{\"direction\":\"receive\",\"destination_root\":\"C:/\"}")));
  expectPasses(body(specification("{\"direction\":\"Receive\",\"destination_root\":\"C:/\"}",
                                  "{\"use_absolute_destination_path\":true}")));
}

TEST_F(SpecificationsTest, OnlyTheFirstSpecificationIsLookedAt) {
  const std::string clean = specification("{\"direction\":\"receive\"}");
  const std::string bad =
      specification("{\"direction\":\"send\",\"paths\":[{\"source\":\"C:/a.txt\"}]}");
  expectPasses(body(clean + "," + bad));
  expectRefused(body(bad + "," + clean), unauthorizedFile("C:/a.txt"));
  for (const char* first : {"null", "5", "\"send\"", "[]", "{}"}) {
    expectPasses(body(std::string(first) + "," + bad));
  }
}

TEST_F(SpecificationsTest, TheIdIsCheckedBeforeTheSpecifications) {
  expectRefused("{\"orvane_vantrel_settings\":{\"app_id\":\"^wrong\"},\"transfer_specs\":[" +
                    specification("{\"direction\":\"send\",\"paths\":[{\"source\":\"/a\"}]}") +
                    "]}",
                errorReply("Invalid application ID hostname: some.host"));
}

TEST_F(SpecificationsTest, TheAsynchronousRoadChecksTheSameAndTheUncheckedOneNothing) {
  Host::PageReference function = host().page.makeFunction("callback");
  const std::string bad = sendOf(",\"paths\":[{\"source\":\"C:/a.txt\"}]");
  EXPECT_EQ(instance_
                ->call("vantrelHttpRequestAsync",
                       {text("POST"), text(kPath), text(bad), function.value()})
                .value,
            text(unauthorizedFile("C:/a.txt")));
  EXPECT_THAT(server_.requests(kPath), IsEmpty());
  instance_->call("httpRequestImplementation",
                  {text("POST"), text(kPath), text(bad), function.value()});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(messageBody(server_.requests(kPath).at(0)), bad);
  instance_->end({.objects = {{function.get(), 1}}});
}

TEST_F(SpecificationsTest, RefusedWordsAreNeverFormats) {
  expectRefused(sendOf(",\"paths\":[{\"source\":\"/%s%n\"}]"), unauthorizedFile("/%s%n"));
}

}  // namespace
}  // namespace Vantrel::Web
