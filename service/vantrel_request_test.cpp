#include "service/vantrel_request.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/support/log_recorder.h"
#include "tests/support/service_files.h"

namespace Vantrel::Web {
namespace {

using Headers = std::multimap<std::string, std::string>;

class VantrelRequestTest : public testing::Test {
 protected:
  const TestSupport::ServiceFiles files_;
  TestSupport::LogRecorder log_;
};

TEST_F(VantrelRequestTest, UnknownAddressIsNull) {
  EXPECT_FALSE(newVantrelRequest(kFormatXml));
  EXPECT_FALSE(newVantrelRequest("GET", "/p", "b", kFormatJson));
}

TEST_F(VantrelRequestTest, CarriesKeyAndTheContentTypeOfItsFormat) {
  files_.writeUrl("http://127.0.0.1:33001\nkey\n");
  const auto xml = newVantrelRequest(kFormatXml);
  ASSERT_TRUE(xml);
  EXPECT_EQ(xml->headers, (Headers{{"Authorization-key", "key\n"},
                                   {"Content-Type", "application/vnd.orvane.xferreq+xml"}}));
  for (const int format : {0, 2, -1}) {
    const auto json = newVantrelRequest(format);
    ASSERT_TRUE(json);
    EXPECT_EQ(json->headers, (Headers{{"Authorization-key", "key\n"},
                                      {"Content-Type", "application/vnd.orvane.xferreq+json"}}));
  }
}

TEST_F(VantrelRequestTest, GoesToTheAddressOfTheFile) {
  files_.writeUrl("http://127.0.0.1:33001\nkey\n");
  const auto request = newVantrelRequest("POST", "/p", "body", kFormatJson);
  ASSERT_TRUE(request);
  EXPECT_EQ(request->host, "127.0.0.1");
  EXPECT_EQ(request->port, 33001);
  EXPECT_EQ(request->method, "POST");
  EXPECT_EQ(request->path, "/p");
  EXPECT_EQ(request->body, "body");
  EXPECT_FALSE(request->callback);
}

TEST_F(VantrelRequestTest, LineOfThePagesOwnMakesNoRequest) {
  files_.writeUrl("http://127.0.0.1:33001\nkey\n");
  EXPECT_FALSE(newVantrelRequest("GET /x HTTP/1.1\r\nA: b", "/p", "", kFormatJson));
  EXPECT_FALSE(newVantrelRequest("GET", "/p\nA: b", "", kFormatJson));
  EXPECT_TRUE(newVantrelRequest("GET", "/p ?\"<>", "line\r\nend", kFormatJson));
}

TEST_F(VantrelRequestTest, KeyIsThatOfTheMomentEvenForACachedAddress) {
  files_.writeUrl("http://127.0.0.1:1\nold");
  newVantrelRequest(kFormatJson);
  files_.writeUrl("http://127.0.0.1:2\nnew");
  const auto request = newVantrelRequest(kFormatJson);
  ASSERT_TRUE(request);
  EXPECT_EQ(request->port, 1);
  EXPECT_EQ(request->headers.find("Authorization-key")->second, "new");
}

TEST_F(VantrelRequestTest, FileOfOneLineGivesTheAddressAsTheKey) {
  files_.writeUrl("http://127.0.0.1:1");
  const auto request = newVantrelRequest(kFormatJson);
  ASSERT_TRUE(request);
  EXPECT_EQ(request->headers.find("Authorization-key")->second, "http://127.0.0.1:1");
}

TEST_F(VantrelRequestTest, MissingPortIsZero) {
  files_.writeUrl("http://127.0.0.1/\nkey");
  const auto request = newVantrelRequest(kFormatJson);
  ASSERT_TRUE(request);
  EXPECT_EQ(request->port, 0);
}

}  // namespace
}  // namespace Vantrel::Web
