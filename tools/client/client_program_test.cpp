// The program over real sockets: its files, its endpoints and real copies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <regex>
#include <thread>

#include "tests/support/client_exchange.h"
#include "tests/support/client_process.h"
#include "tests/support/scratch_folder.h"
#include "tools/client/json_tree.h"

namespace Vantrel::StandIn {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using Web::TestSupport::ClientAddress;
using Web::TestSupport::ClientProcess;

constexpr auto kOwn = ClientProcess::DataDir::kOwn;
constexpr const char* kFast = "chunk_pause_ms=0\n";

std::string someBytes(size_t count) {
  std::string bytes(count, '\0');
  for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>((i * 7 + i / 251) & 0xFFU);
  return bytes;
}

void writeFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

JsonTree parsed(const std::string& reply) {
  std::string problem;
  JsonTree tree = parseJson(bodyOf(reply), problem);
  EXPECT_TRUE(tree) << problem << ": " << reply;
  return tree;
}

std::string ask(const ClientProcess& client, const std::string& method, const std::string& path,
                const std::string& body = "") {
  return replyTo(client.port(), requestText(method, path, client.key(), body));
}

std::string poll(const ClientProcess& client, const std::string& token) {
  return ask(client, "POST", "/v5/vantrel/transfers/activity",
             "{\n    \"iteration_token\": \"" + token +
                 "\",\n    \"orvane_vantrel_settings\" : {\n        \"app_id\": \"^some.host\"\n"
                 "    }\n}\n");
}

struct Course {
  std::vector<std::string> statuses;  // of the polls that told a change
  std::string lastText;
  std::vector<long long> written;
};

// Polls until a transfer has finished.
Course follow(const ClientProcess& client) {
  Course course;
  std::string token;
  while (course.statuses.empty() ||
         (course.statuses.back() != "completed" && course.statuses.back() != "failed")) {
    JsonTree activity = parsed(poll(client, token));
    token = jsonTextAt(activity.get(), {"iteration_token"});
    for (yajl_val transfer : jsonArrayAt(activity.get(), {"transfers"})) {
      course.statuses.push_back(jsonTextAt(transfer, {"status"}));
      course.lastText = jsonTextAt(transfer, {"status_text"});
      course.written.push_back(std::stoll(jsonTextAt(transfer, {"bytes_written"})));
    }
  }
  return course;
}

std::string specBody(const std::string& spec) {
  return R"({"orvane_vantrel_settings":{"app_id":"^some.host"},"transfer_specs":[{)"
         R"("orvane_vantrel_settings":{"use_absolute_destination_path":true},"transfer_spec":)" +
         spec + "}]}";
}

TEST(ClientProgramTest, ItsFilesTellItsAddressAndGoAtItsEnd) {
  ClientProcess client("", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  ClientAddress address = client.address();
  EXPECT_TRUE(
      std::regex_match(address.uriText, std::regex("http://127\\.0\\.0\\.1:[0-9]+\n[0-9a-f]{32}")))
      << address.uriText;
  EXPECT_EQ(address.processId, client.processId());
  EXPECT_THAT(ask(client, "POST", "/v5/vantrel/shutdown"), EndsWith(R"({"status":"ending"})"));
  EXPECT_EQ(client.waitForExit(20000), 0U);
  EXPECT_EQ(client.address().uriText, "");
  EXPECT_EQ(client.address().processId, 0U);
}

TEST(ClientProgramTest, EveryStartHasAKeyOfItsOwn) {
  ClientProcess first("", kOwn);
  ClientProcess second("", kOwn);
  ASSERT_TRUE(first.waitUntilListening());
  ASSERT_TRUE(second.waitUntilListening());
  EXPECT_NE(first.key(), second.key());
  EXPECT_NE(first.port(), second.port());
}

TEST(ClientProgramTest, APingNeedsNoKeyAndAllElseDoes) {
  ClientProcess client("", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  EXPECT_EQ(replyTo(client.port(), pingText()),
            "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 18\r\n"
            "Content-Type: application/json\r\n\r\n{\"status\":\"ready\"}");
  EXPECT_THAT(replyTo(client.port(), requestText("GET", "/v4/vantrel/version", "wrong")),
              StartsWith("HTTP/1.1 401 Unauthorized\r\n"));
  EXPECT_THAT(replyTo(client.port(), "POST /any HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}"),
              HasSubstr(R"({"error":{"code":401)"));
  EXPECT_THAT(ask(client, "GET", "/v4/vantrel/version", "{}"), HasSubstr(R"("version":"3.7.4")"));
  EXPECT_THAT(ask(client, "GET", "/windows/transfer-manager/"),
              EndsWith(R"({"window":"transfer-manager"})"));
}

TEST(ClientProgramTest, AMalformedRequestIsAnswered) {
  ClientProcess client("", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  EXPECT_THAT(replyTo(client.port(), "nonsense\r\n\r\n"),
              StartsWith("HTTP/1.1 400 Bad Request\r\n"));
}

TEST(ClientProgramTest, ARequestMayComeByteByByte) {
  ClientProcess client("", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  TestSocket socket = TestSocket::connectLoopback(client.port());
  for (char byte : pingText()) ASSERT_TRUE(socket.sendAll(std::string(1, byte)));
  std::string reply;
  for (const std::string& piece : receiveAll(socket)) reply += piece;
  EXPECT_THAT(reply, EndsWith(R"({"status":"ready"})"));
}

TEST(ClientProgramTest, ASilentVisitorDisturbsNobody) {
  ClientProcess client("", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  TestSocket idle = TestSocket::connectLoopback(client.port());
  EXPECT_THAT(replyTo(client.port(), pingText()), EndsWith(R"({"status":"ready"})"));
  ask(client, "POST", "/v5/vantrel/shutdown");
  EXPECT_EQ(client.waitForExit(20000), 0U);
}

TEST(ClientProgramTest, EveryByteReceivedIsRecorded) {
  ClientProcess client("", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  std::string binary = requestText("POST", "/x", "k", std::string("a\0b\xFF", 4));
  replyTo(client.port(), pingText());
  replyTo(client.port(), binary);
  EXPECT_THAT(client.records(), testing::ElementsAre(pingText(), binary));
}

TEST(ClientProgramTest, AReceiveCopiesByteForByteAndShowsItsProgress) {
  ClientProcess client("chunk_pause_ms=10\nchunk_bytes=10000\n", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  std::string bytes = someBytes(1000003);
  writeFile(client.folder().remote() / "a.bin", bytes);
  std::string in = textOf(client.folder().path() / "in");
  JsonTree started = parsed(ask(client, "POST", "/v5/vantrel/transfers/start",
                                specBody(R"({"direction":"receive","paths":[{"source":"/a.bin"}],)"
                                         R"("destination_root":")" +
                                         in + R"("})")));
  EXPECT_EQ(jsonArrayAt(started.get(), {"transfers"}).size(), 1U);
  Course course = follow(client);
  EXPECT_EQ(course.statuses.back(), "completed") << course.lastText;
  EXPECT_GT(course.written.size(), 3U);
  EXPECT_TRUE(std::is_sorted(course.written.begin(), course.written.end()));
  EXPECT_EQ(course.written.back(), 1000003);
  EXPECT_TRUE(bytesOf(pathOf(in) / "a.bin") == bytes);
}

TEST(ClientProgramTest, ASendCopiesToTheRemoteSide) {
  ClientProcess client(kFast, kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  std::string bytes = someBytes(300000);
  writeFile(client.folder().path() / pathOf("\u00e9.bin"), bytes);
  std::string root = textOf(client.folder().path());
  ask(client, "POST", "/v5/vantrel/transfers/start",
      specBody(R"({"direction":"send","source_root":")" + root + R"(","paths":[{"source":")" +
               "\u00e9.bin" + R"("}],"destination_root":"/inbox"})"));
  EXPECT_EQ(follow(client).statuses.back(), "completed");
  EXPECT_TRUE(bytesOf(client.folder().remote() / "inbox" / pathOf("\u00e9.bin")) == bytes);
}

TEST(ClientProgramTest, AMissingSourceFailsInTheActivity) {
  ClientProcess client(kFast, kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  EXPECT_THAT(ask(client, "POST", "/v5/vantrel/transfers/start",
                  specBody(R"({"direction":"receive","paths":[{"source":"/no.bin"}],)"
                           R"("destination_root":"C:/nowhere"})")),
              HasSubstr("request_id"));
  Course course = follow(client);
  EXPECT_EQ(course.statuses.back(), "failed");
  EXPECT_THAT(course.lastText, StartsWith("No such file or folder: "));
}

TEST(ClientProgramTest, AnXferRequestDownloadsToItsDestination) {
  ClientProcess client(kFast, kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  writeFile(client.folder().remote() / "a&b.bin", "content");
  std::string in = textOf(client.folder().path() / "in");
  EXPECT_THAT(ask(client, "POST", "/transfers/",
                  "<xferreq xmlns=\"http://h/xml/xferreq/\"><src>http://h/a&amp;b.bin</src><dest>"
                  "file://" +
                      in + "</dest></xferreq>"),
              HasSubstr("request_id"));
  EXPECT_EQ(follow(client).statuses.back(), "completed");
  EXPECT_EQ(bytesOf(pathOf(in) / "a&b.bin"), "content");
}

TEST(ClientProgramTest, ManyConnectionsAtOnceAreAllAnswered) {
  ClientProcess client("", kOwn);
  ASSERT_TRUE(client.waitUntilListening());
  std::atomic<int> good = 0;
  std::vector<std::thread> threads;
  uint16_t port = client.port();
  for (int i = 0; i < 8; ++i)
    threads.emplace_back([&] {
      for (int j = 0; j < 25; ++j)
        if (replyTo(port, pingText()).ends_with("\"ready\"}")) ++good;
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 200);
  EXPECT_EQ(client.records().size(), 200U);
}

}  // namespace
}  // namespace Vantrel::StandIn
