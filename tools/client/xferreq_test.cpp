#include "tools/client/xferreq.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Vantrel::StandIn {
namespace {

using testing::ElementsAre;

const std::string kStart = "<xferreq xmlns=\"http://host/xml/xferreq/\">";

std::string problemOf(const std::string& document) {
  XferRequest request;
  return readXferRequest(document, request);
}

TEST(XferRequestTest, SourcesAndDestinationAreRead) {
  XferRequest request;
  EXPECT_EQ(readXferRequest(kStart + "<src>http://h/a?x=1&amp;y=2</src><src>file://C:/a b</src>"
                                     "<dest>file://C:/&lt;in&gt;</dest></xferreq>",
                            request),
            "");
  EXPECT_THAT(request.sources, ElementsAre("http://h/a?x=1&y=2", "file://C:/a b"));
  EXPECT_EQ(request.destination, "file://C:/<in>");
}

TEST(XferRequestTest, BothMayBeMissing) {
  XferRequest request;
  EXPECT_EQ(readXferRequest(kStart + "</xferreq>", request), "");
  EXPECT_TRUE(request.sources.empty());
  EXPECT_EQ(request.destination, "");
}

TEST(XferRequestTest, AnUnclosedParameterIsSkipped) {
  XferRequest request;
  EXPECT_EQ(readXferRequest(kStart + "<src>a</src><param name=\"k value=\"v\"></xferreq>", request),
            "");
  EXPECT_THAT(request.sources, ElementsAre("a"));
}

TEST(XferRequestTest, AllEntitiesAreKnown) {
  XferRequest request;
  EXPECT_EQ(
      readXferRequest(kStart + "<src>&quot;&apos;&#65;&#xe9;&#x20ac;&#128512;\"</src></xferreq>",
                      request),
      "");
  EXPECT_THAT(request.sources, ElementsAre("\"'A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\""));
}

TEST(XferRequestTest, BrokenDocumentsTellWhy) {
  EXPECT_EQ(problemOf(""), "no xferreq element");
  EXPECT_EQ(problemOf("{}"), "no xferreq element");
  EXPECT_EQ(problemOf(kStart), "the xferreq element has no end");
  EXPECT_EQ(problemOf(kStart + "<src>a</xferreq>"), "malformed src element");
  EXPECT_EQ(problemOf(kStart + "<dest>a"), "malformed dest element");
  for (const char* entity :
       {"&", "&;", "&unknown;", "&#;", "&#x;", "&#0;", "&#xD800;", "&#x110000;"})
    EXPECT_EQ(problemOf(kStart + "<src>" + entity + "</src></xferreq>"), "malformed src element")
        << entity;
}

}  // namespace
}  // namespace Vantrel::StandIn
