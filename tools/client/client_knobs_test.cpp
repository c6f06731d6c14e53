// Every knob once, on the real program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/client_exchange.h"
#include "tests/support/client_process.h"
#include "tests/support/scratch_folder.h"

namespace Vantrel::StandIn {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Web::TestSupport::ClientProcess;

constexpr auto kOwn = ClientProcess::DataDir::kOwn;
constexpr const char* kReady = "{\"status\":\"ready\"}";
constexpr uint32_t kLong = 20000;

// A client with these knobs that listens already.
class ListeningClient : public ClientProcess {
 public:
  explicit ListeningClient(const std::string& knobs, const std::wstring& arguments = L"")
      : ClientProcess(knobs, kOwn, arguments) {
    EXPECT_TRUE(waitUntilListening());
  }
  std::string ping() const { return replyTo(port(), pingText()); }
  std::string ask(const std::string& method, const std::string& path,
                  const std::string& body = "") const {
    return replyTo(port(), requestText(method, path, key(), body));
  }
};

TEST(ClientKnobTest, SlowStart) {
  ClientProcess client("slow_start_ms=1000\n", kOwn);
  EXPECT_FALSE(client.waitForExit(0));
  EXPECT_EQ(client.address().uriText, "");
  EXPECT_TRUE(client.waitUntilListening());
}

TEST(ClientKnobTest, ExitAtStart) {
  ClientProcess client("exit_at_start=9\n", kOwn);
  EXPECT_EQ(client.waitForExit(kLong), 9U);
  EXPECT_FALSE(client.waitUntilListening());
  EXPECT_EQ(client.address().uriText, "");
}

TEST(ClientKnobTest, ABadKnobEndsTheProgram) {
  ClientProcess client("unknown=1\n", kOwn);
  EXPECT_EQ(client.waitForExit(kLong), 2U);
}

TEST(ClientKnobTest, APortThatIsTakenEndsTheProgram) {
  ListeningClient first("");
  ClientProcess second("port=" + std::to_string(first.port()) + "\n", kOwn);
  EXPECT_EQ(second.waitForExit(kLong), 3U);
}

TEST(ClientKnobTest, TheCommandLineWins) {
  ListeningClient client("status=500\n", L"--status=503 --body=x");
  EXPECT_THAT(client.ping(), StartsWith("HTTP/1.1 503 "));
  EXPECT_THAT(client.ping(), EndsWith("\r\n\r\nx"));
}

TEST(ClientKnobTest, APortMayBeAskedFor) {
  TestSocket probe = TestSocket::listenLoopback(0);
  uint16_t port = probe.localPort();
  probe.close();
  ListeningClient client("port=" + std::to_string(port) + "\n");
  EXPECT_EQ(client.port(), port);
}

TEST(ClientKnobTest, FormsOfTheUriFile) {
  ListeningClient lineFeed("uri_file=key_lf\n");
  EXPECT_THAT(lineFeed.key(), EndsWith("\n"));
  EXPECT_THAT(lineFeed.ask("GET", "/v4/vantrel/version"), StartsWith("HTTP/1.1 200 "));
  std::string shorter = lineFeed.key().substr(0, lineFeed.key().size() - 1);
  EXPECT_THAT(replyTo(lineFeed.port(), requestText("GET", "/v4/vantrel/version", shorter)),
              StartsWith("HTTP/1.1 401 "));
  ListeningClient urlOnly("uri_file=url_only\n");
  EXPECT_EQ(urlOnly.key(), "http://127.0.0.1:" + std::to_string(urlOnly.port()));
  EXPECT_THAT(urlOnly.ask("GET", "/v4/vantrel/version"), StartsWith("HTTP/1.1 200 "));
  ClientProcess none("uri_file=none\nexit_after_ms=200\n", kOwn);
  EXPECT_EQ(none.waitForExit(kLong), 0U);
  EXPECT_EQ(none.address().uriText, "");
}

TEST(ClientKnobTest, KeptFilesStay) {
  ListeningClient client("keep_files=1\nexit_after_requests=1\nexit_code=4\n");
  EXPECT_THAT(client.ping(), EndsWith(kReady));
  EXPECT_EQ(client.waitForExit(kLong), 4U);
  EXPECT_EQ(client.address().processId, client.processId());
}

TEST(ClientKnobTest, EndsAfterIdleTime) {
  ClientProcess client("idle_seconds=1\n", kOwn);
  EXPECT_EQ(client.waitForExit(kLong), 0U);
}

TEST(ClientKnobTest, TransferFails) {
  ListeningClient client("transfer_fail_at=100\nchunk_bytes=60\nchunk_pause_ms=0\n");
  std::ofstream(client.folder().remote() / "a.bin") << std::string(1000, 'x');
  client.ask("POST", "/v5/vantrel/transfers/start",
             R"({"transfer_specs":[{"transfer_spec":{"direction":"receive",)"
             R"("paths":[{"source":"a.bin"}]}}]})");
  std::string activity;
  while (activity.find("\"failed\"") == std::string::npos)
    activity = client.ask("POST", "/v5/vantrel/transfers/activity", "{}");
  EXPECT_THAT(activity, HasSubstr("\"bytes_written\":120,"));
  EXPECT_TRUE(std::filesystem::is_empty(client.folder().downloads()));
}

TEST(ClientKnobTest, FormsOfTheToken) {
  ListeningClient number("activity_token=number\n");
  EXPECT_THAT(number.ask("POST", "/v5/vantrel/transfers/activity", "{}"),
              EndsWith(R"({"iteration_token":0,"result_count":0,"transfers":[]})"));
  ListeningClient none("activity_token=none\n");
  EXPECT_THAT(none.ask("POST", "/v5/vantrel/transfers/activity", "{}"),
              EndsWith(R"({"result_count":0,"transfers":[]})"));
}

TEST(ClientKnobTest, RestartOnAnotherPort) {
  ListeningClient client("restart_after=2\n");
  uint16_t port = client.port();
  std::string key = client.key();
  client.ping();
  EXPECT_EQ(client.port(), port);
  EXPECT_THAT(client.ping(), EndsWith(kReady));
  EXPECT_NE(client.port(), port);
  EXPECT_NE(client.key(), key);
  EXPECT_FALSE(TestSocket::connectLoopback(port).isOpen());
  EXPECT_THAT(client.ask("GET", "/v4/vantrel/version"), StartsWith("HTTP/1.1 200 "));
  EXPECT_THAT(replyTo(client.port(), requestText("GET", "/v4/vantrel/version", key)),
              StartsWith("HTTP/1.1 401 "));
}

TEST(ClientKnobTest, Silence) {
  ListeningClient client("silent=1\n");
  TestSocket socket = TestSocket::connectLoopback(client.port());
  ASSERT_TRUE(socket.sendAll(pingText()));
  EXPECT_FALSE(socket.waitReadable(300));
  EXPECT_THAT(client.records(), testing::ElementsAre(pingText()));
  client.kill();
  EXPECT_TRUE(receiveAll(socket).empty());
}

TEST(ClientKnobTest, ASilentClientCanStillEnd) {
  ClientProcess client("silent=1\nexit_after_ms=500\n", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  TestSocket socket = TestSocket::connectLoopback(client.port());
  ASSERT_TRUE(socket.sendAll(pingText()));
  EXPECT_EQ(client.waitForExit(kLong), 0U);
}

TEST(ClientKnobTest, CloseWithoutReply) {
  ListeningClient client("close_without_reply=1\n");
  EXPECT_EQ(client.ping(), "");
  EXPECT_EQ(client.records().size(), 1U);
}

TEST(ClientKnobTest, Delay) {
  ListeningClient client("delay_ms=1000\n");
  TestSocket socket = TestSocket::connectLoopback(client.port());
  ASSERT_TRUE(socket.sendAll(pingText()));
  EXPECT_FALSE(socket.waitReadable(100));
  std::string reply;
  for (const std::string& piece : receiveAll(socket)) reply += piece;
  EXPECT_THAT(reply, EndsWith(kReady));
}

TEST(ClientKnobTest, SplitAtPositions) {
  ListeningClient client("split_at=5,20\nsplit_pause_ms=500\n");
  TestSocket socket = TestSocket::connectLoopback(client.port());
  ASSERT_TRUE(socket.sendAll(pingText()));
  auto pieces = receiveAll(socket);
  ASSERT_EQ(pieces.size(), 3U);
  EXPECT_EQ(pieces[0], "HTTP/");
  EXPECT_EQ(pieces[1], "1.1 200 OK\r\nCon");
  EXPECT_THAT(pieces[2], EndsWith(kReady));
}

TEST(ClientKnobTest, SplitAtEveryByte) {
  ListeningClient client("split_every=1\nsplit_pause_ms=0\n");
  EXPECT_THAT(client.ping(), EndsWith(kReady));
}

// A knob whose effect is in the bytes of the reply to a ping.
struct ByteKnob {
  const char* knobs;
  std::string start;
  std::string part;
  std::string end;
};

const std::string kOk = "HTTP/1.1 200 OK\r\n";

const std::vector<ByteKnob> kByteKnobs = {
    {"no_length=1", kOk + "Connection: close\r\nContent-Type", "", kReady},
    {"length_delta=+5", kOk, "Content-Length: 23\r\n", kReady},
    {"length_delta=-5", kOk, "Content-Length: 13\r\n", kReady},
    {"length_text=0", kOk, "Content-Length: 0\r\n", kReady},
    {"length_text=many", kOk, "Content-Length: many\r\n", kReady},
    {"length_label=content-length", kOk, "content-length: 18\r\n", kReady},
    {"status_line=HTTP/1.1 200", "HTTP/1.1 200\r\n", "", kReady},
    {"header_line=X-Bad:value", kOk, "\r\nX-Bad:value\r\n", kReady},
    {"status=500", "HTTP/1.1 500 Internal Server Error\r\n", "", kReady},
    {"nul_at=3", kOk, "Content-Length: 19\r\n", std::string("{\"s\0tatus\":\"ready\"}", 19)},
    {"body=no JSON", kOk, "Content-Length: 7\r\n", "\r\n\r\nno JSON"},
    {"error_reply=go away", kOk, "{\"error\":{\"code\":200,", "\"user_message\":\"go away\"}}"},
};

class ClientByteKnobTest : public testing::TestWithParam<ByteKnob> {};

TEST_P(ClientByteKnobTest, ShowsInTheReply) {
  ListeningClient client(std::string(GetParam().knobs) + "\n");
  std::string reply = client.ping();
  EXPECT_THAT(reply, StartsWith(GetParam().start));
  EXPECT_THAT(reply, HasSubstr(GetParam().part));
  EXPECT_THAT(reply, EndsWith(GetParam().end));
}

INSTANTIATE_TEST_SUITE_P(All, ClientByteKnobTest, testing::ValuesIn(kByteKnobs));

TEST(ClientKnobTest, HugeReply) {
  ListeningClient client("huge_body=20000000\n");
  std::string reply = client.ping();
  EXPECT_THAT(reply.substr(0, 200), HasSubstr("Content-Length: 20000000\r\n"));
  EXPECT_EQ(bodyOf(reply).size(), 20000000U);
  EXPECT_TRUE(reply.ends_with(",\"status\":\"ready\"}"));
}

TEST(ClientKnobTest, MisbehaviourHasItsLimits) {
  ListeningClient client(
      "status=500\nmisbehave_path=/v4/vantrel/version\nmisbehave_skip=1\nmisbehave_count=1\n");
  auto version = [&] { return client.ask("GET", "/v4/vantrel/version").substr(0, 12); };
  EXPECT_THAT(client.ping(), StartsWith("HTTP/1.1 200 "));
  EXPECT_EQ(version(), "HTTP/1.1 200");
  EXPECT_EQ(version(), "HTTP/1.1 500");
  EXPECT_EQ(version(), "HTTP/1.1 200");
  EXPECT_THAT(client.ping(), StartsWith("HTTP/1.1 200 "));
}

}  // namespace
}  // namespace Vantrel::StandIn
