// The library and the stand-in desktop client: the roads that work, and every way in which a client
// can misbehave.
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <thread>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/client_process.h"

namespace Vantrel::Web {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using TestSupport::ClientProcess;

constexpr char kWholeVersion[] =
    "{\"product\":\"Orvane Vantrel\",\"version\":\"3.7.4\",\"stand_in\":true}";

class ClientTest : public PluginTest {
 protected:
  void SetUp() override {}
  // Starts the client with these knobs and then loads the library.
  void run(const std::string& knobs = "") {
    client_ = std::make_unique<ClientProcess>(knobs);
    ASSERT_TRUE(client_->waitUntilListening());
    start(kPluginLibrary);
  }
  // The version that the page gets from a client that misbehaves like this with that one request.
  std::string versionWith(const std::string& knobs) {
    run("misbehave_path=/v4/vantrel/version\n" + knobs);
    Instance instance(host());
    return instance.call("queryVantrelVersion").value.text;
  }
  void sendAsync(Instance& instance, const Host::PageReference& function) {
    instance.call("vantrelHttpRequestAsync",
                  {text("GET"), text(kVersionPath), text(""), function.value()});
  }
  std::thread killSoon() {
    return std::thread([this] {
      std::this_thread::sleep_for(std::chrono::milliseconds(500));
      client_->kill();
    });
  }

  std::unique_ptr<ClientProcess> client_;
};

std::string bytesOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

struct Misbehaviour {
  const char* name;
  const char* knobs;
  // What the page gets; null for the error that the client could not be reached.
  const char* version;
};

std::ostream& operator<<(std::ostream& stream, const Misbehaviour& misbehaviour) {
  return stream << misbehaviour.name;
}

class MisbehaviourTest : public ClientTest, public testing::WithParamInterface<Misbehaviour> {};

TEST_P(MisbehaviourTest, ThePageGetsTheReplyOrTheError) {
  const std::string expected =
      GetParam().version == nullptr ? errorReply(kContactError) : GetParam().version;
  EXPECT_EQ(versionWith(GetParam().knobs), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Each, MisbehaviourTest,
    testing::Values(Misbehaviour{"none", "", kWholeVersion},
                    Misbehaviour{"delayed", "delay_ms=300\n", kWholeVersion},
                    Misbehaviour{"split", "split_at=1,9,15,17,40,60,80,100,120\n", kWholeVersion},
                    Misbehaviour{"byteByByte", "split_every=1\nsplit_pause_ms=0\n", kWholeVersion},
                    Misbehaviour{"noLength", "no_length=1\n", kWholeVersion},
                    Misbehaviour{"promisesTooMuch", "length_delta=+5\n", kWholeVersion},
                    Misbehaviour{
                        "promisesTooLittle", "length_delta=-5\n",
                        "{\"product\":\"Orvane Vantrel\",\"version\":\"3.7.4\",\"stand_in\":"},
                    Misbehaviour{"negativeLength", "length_text=-1\n", kWholeVersion},
                    Misbehaviour{"lowerCaseLength", "length_label=content-length\n", kWholeVersion},
                    Misbehaviour{"noReasonPhrase", "status_line=HTTP/1.1 200\n", nullptr},
                    Misbehaviour{"statusLineIsNone", "status_line=nonsense\n", nullptr},
                    Misbehaviour{"headerLineWithoutBlank", "header_line=X-Bad:value\n", nullptr},
                    Misbehaviour{"status500", "status=500\n", kWholeVersion},
                    Misbehaviour{"nulInBody", "nul_at=10\n", "{\"product\""},
                    Misbehaviour{"noJson", "body=no JSON\n", "no JSON"},
                    Misbehaviour{"closesWithoutReply", "close_without_reply=1\n", nullptr}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_F(ClientTest, AnErrorInTheReplyIsThePagesBusiness) {
  EXPECT_THAT(versionWith("error_reply=some words\n"), HasSubstr("\"some words\""));
}

TEST_F(ClientTest, AHugeReplyArrivesWhole) {
  const std::string version = versionWith("huge_body=3000000\n");
  EXPECT_EQ(version.size(), 3000000U);
  EXPECT_THAT(version.substr(0, 100), StartsWith("{"));
  EXPECT_EQ(version.back(), '}');
}

TEST_F(ClientTest, ALengthOfZeroEndsTheReadingAtOnce) {
  // What came in the same piece still counts.
  EXPECT_THAT(versionWith("length_text=0\n"),
              AnyOf(kWholeVersion, errorReply(kContactError),
                    errorReply("Error retrieving the Orvane Vantrel version")));
}

TEST_F(ClientTest, TheKeyMayEndInALineFeedOrBeTheAddress) {
  for (const char* form : {"uri_file=key\n", "uri_file=url_only\n"}) {
    EXPECT_EQ(versionWith(form), kWholeVersion) << form;
    for (const std::string& fault : finish()) ADD_FAILURE() << fault;
    client_.reset();
  }
}

TEST_F(ClientTest, AClientThatMovedIsFoundAgain) {
  run("restart_after=1\nmisbehave_path=/v4/vantrel/version\n");
  Instance instance(host());
  const uint16_t port = client_->port();
  EXPECT_EQ(instance.call("queryVantrelVersion").value, text(kWholeVersion));
  ASSERT_TRUE(host().pumpUntil([&] { return client_->port() != port; }));
  EXPECT_EQ(instance.call("queryVantrelVersion").value, text(kWholeVersion));
}

TEST_F(ClientTest, ASilentClientHoldsTheQueueUntilItDies) {
  run("silent=1\nmisbehave_path=/v4/vantrel/version\n");
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  sendAsync(instance, function);
  host().pumpFor(500);
  EXPECT_THAT(function->calls, IsEmpty());
  // The browser's thread goes on meanwhile.
  EXPECT_EQ(instance.call("queryVersion").value, text("3.7"));
  client_->kill();
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_EQ(function->calls[0].arguments.at(0), text(errorReply(kContactError)));
}

TEST_F(ClientTest, AnEndDuringASilentExchangeWaitsForTheClientsDeath) {
  run("silent=1\nmisbehave_path=/v4/vantrel/version\n");
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  sendAsync(instance, function);
  ASSERT_TRUE(host().pumpUntil([this] { return client_->records().size() >= 3; }));
  std::thread killing = killSoon();
  instance.destroy();
  killing.join();
  EXPECT_THAT(function->calls, IsEmpty());
  instance.settle({.objects = {{function.get(), 1}}});
}

TEST_F(ClientTest, AnEndDuringASilentPollWaitsForTheClientsDeath) {
  run("silent=1\nmisbehave_path=/v5/vantrel/transfers/activity\n");
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  instance.call("initSession", {text("my app"), text("")});
  ASSERT_TRUE(host().pumpUntil([this] {
    const std::vector<std::string> records = client_->records();
    return !records.empty() && records.back().find("iteration_token") != std::string::npos;
  }));
  std::thread killing = killSoon();
  instance.destroy();
  killing.join();
  EXPECT_EQ(host().async.received(), 0);
  instance.settle({.objects = {{handler.get(), 1}}});
}

TEST_F(ClientTest, ASynchronousRequestToADyingClientIsAnswered) {
  run("silent=1\nmisbehave_path=/v4/vantrel/version\n");
  Instance instance(host());
  std::thread killing = killSoon();
  EXPECT_EQ(instance.call("queryVantrelVersion").value, text(errorReply(kContactError)));
  killing.join();
}

TEST_F(ClientTest, ThePollGoesOnWhenAClientComesBack) {
  run();
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  instance.call("initSession", {text("my app"), text("")});
  ASSERT_TRUE(waitForCalls(handler, 1));
  const std::string port = std::to_string(client_->port());
  client_.reset();
  host().pumpFor(1500);
  const size_t calls = handler->calls.size();
  // On the same port and with another key: the address stays, the key is read for each poll.
  client_ = std::make_unique<ClientProcess>("port=" + port + "\n");
  ASSERT_TRUE(client_->waitUntilListening());
  ASSERT_TRUE(waitForCalls(handler, calls + 1));
  instance.end({.objects = {{handler.get(), 1}}});
}

TEST_F(ClientTest, AReceiveRunsToItsEndAndThePageSeesItsProgress) {
  // Three seconds, and a poll each second.
  run("chunk_pause_ms=100\n");
  std::string content;
  for (int i = 0; content.size() < 2000000; ++i) content += std::to_string(i) + '\n';
  std::ofstream(client_->folder().remote() / "file.bin", std::ios::binary) << content;
  Host::PageReference handler = host().page.makeFunction("handler");
  Host::PageReference answer = host().page.makeFunction("answer");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  instance.call("initSession", {text("^some.host"), text("")});
  const std::string body =
      "{\"orvane_vantrel_settings\":{\"app_id\":\"^some.host\"},\"transfer_specs\":[{"
      "\"transfer_spec\":{\"direction\":\"receive\",\"paths\":[{\"source\":\"/file.bin\"}]}}]}";
  instance.call("vantrelHttpRequestAsync",
                {text("POST"), text("/v5/vantrel/transfers/start"), text(body), answer.value()});
  ASSERT_TRUE(waitForCalls(answer, 1));
  EXPECT_THAT(answer->calls[0].arguments.at(0).text, HasSubstr("\"uuid\""));
  const auto completed = [&] {
    return !handler->calls.empty() &&
           handler->calls.back().arguments.at(1).text.find("\"completed\"") != std::string::npos;
  };
  ASSERT_TRUE(host().pumpUntil(completed, 40000));
  EXPECT_GE(handler->calls.size(), 2U);
  for (const Host::PageCall& call : handler->calls) {
    EXPECT_EQ(call.arguments.at(0), text("transfer"));
  }
  EXPECT_TRUE(bytesOf(client_->folder().downloads() / "file.bin") == content);
  instance.end({.objects = {{handler.get(), 1}}});
}

TEST_F(ClientTest, ADirectDownloadArrives) {
  run();
  std::ofstream(client_->folder().remote() / "a.txt") << "some text";
  Instance instance(host());
  instance.call("startDownload", {text("http://files.host/a.txt")});
  const auto file = client_->folder().downloads() / "a.txt";
  // For a moment it is there and the client still has it open.
  EXPECT_TRUE(host().pumpUntil([&file] { return bytesOf(file) == "some text"; }));
}

TEST_F(ClientTest, TheUncheckedRoadIsRefusedByTheClientAndThePageLearnsIt) {
  run();
  Host::PageReference function = host().page.makeFunction("callback");
  Instance instance(host());
  instance.call("httpRequestImplementation",
                {text("GET"), text(kVersionPath), text(""), function.value()});
  ASSERT_TRUE(waitForCalls(function, 1));
  EXPECT_THAT(function->calls[0].arguments.at(0).text, HasSubstr("\"code\":401"));
}

TEST_F(ClientTest, WindowsAndVersionCarryTheKeyThatTheClientDemands) {
  run();
  Instance instance(host());
  instance.call("displayTransferManager");
  const std::vector<std::string> records = client_->records();
  ASSERT_FALSE(records.empty());
  EXPECT_THAT(records.back(), StartsWith("GET /windows/transfer-manager/ HTTP/1.1\r\n"));
  EXPECT_EQ(headerOf(records.back(), "Authorization-key"), client_->key());
}

}  // namespace
}  // namespace Vantrel::Web
