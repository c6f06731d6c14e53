#include "core/request_check.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "core/approved_files.h"
#include "text/error_reply.h"

namespace Vantrel::Web {
namespace {

const std::string kUnauthorizedFile =
    "The website attempted to upload an unauthorized file or folder: ";
const std::string kUnauthorizedDirectory =
    "The website attempted to transfer to an unauthorized directory: ";

class RequestCheckTest : public testing::Test {
 protected:
  // The error reply for the body; empty when it may go.
  std::string check(const std::string& body) {
    std::string error = "left from before";
    const HostnameCheck hostname = [this](const std::string& id) {
      askedIds_.push_back(id);
      return id == "refused" ? jsonErrorReply("host") : std::string();
    };
    const bool passed = checkRequestBody(body, hostname, consent_, error);
    EXPECT_EQ(passed, error.empty()) << error;
    return error;
  }
  static std::string specs(const std::string& first) {
    return "{\"transfer_specs\":[" + first + "]}";
  }
  static std::string send(const std::string& rest) {
    return specs("{\"transfer_spec\":{\"direction\":\"send\"" + rest + "}}");
  }
  static std::string receive(const std::string& destination, const std::string& absolute = "true") {
    return specs("{\"orvane_vantrel_settings\":{\"use_absolute_destination_path\":" + absolute +
                 "},\"transfer_spec\":{\"direction\":\"receive\",\"destination_root\":" +
                 destination + "}}");
  }

  DestinationConsent consent_;
  std::vector<std::string> askedIds_;
};

TEST_F(RequestCheckTest, ABodyThatIsNoJsonIsRefusedWithTheParsersText) {
  const std::string error = check("no json");
  EXPECT_EQ(error.find(R"({"error":{"code":-1,"internal_message":"Invalid request",)"
                       R"("user_message":"Error parsing JSON: )"),
            0u);
  EXPECT_NE(error.find("lexical error"), std::string::npos) << error;
  EXPECT_NE(check(""), "");
}

constexpr char kNulReply[] = "Error parsing JSON: a key or a text holds a NUL";

TEST_F(RequestCheckTest, ANulInAKeyHidesNoSpecification) {
  const std::string specification =
      R"([{"transfer_spec":{"direction":"send","paths":[{"source":"C:/no"}]}}])";
  EXPECT_EQ(check(R"({"transfer_specs\u0000":[],"transfer_specs":)" + specification + "}"),
            jsonErrorReply(kNulReply));
  EXPECT_EQ(check(R"({"transfer_specs\u0000x":1,"transfer_specs":)" + specification + "}"),
            jsonErrorReply(kNulReply));
  EXPECT_EQ(check(send(R"(,"paths":[{"source\u0000":"C:/no"}])")), jsonErrorReply(kNulReply));
  EXPECT_EQ(check(specs(R"({"transfer_spec":{"direction\u0000":"receive","direction":"send"}})")),
            jsonErrorReply(kNulReply));
  EXPECT_EQ(check(send(R"(,"source_root\u0000":"C:/a","source_root":"C:/b","paths":[])")),
            jsonErrorReply(kNulReply));
  EXPECT_EQ(check(R"({"orvane_vantrel_settings":{"app_id\u0000":"good","app_id":"refused"}})"),
            jsonErrorReply(kNulReply));
  EXPECT_TRUE(askedIds_.empty());
}

TEST_F(RequestCheckTest, ANulInATextCutsNoPath) {
  addToApprovedFileList({"C:/nul/ok.txt"});
  EXPECT_EQ(check(send(R"(,"paths":[{"source":"C:/nul/ok.txt\u0000/../secret"}])")),
            jsonErrorReply(kNulReply));
  consent_.setLastSelectedPath("C:/d");
  EXPECT_EQ(check(receive(R"("C:/d\u0000/../secret")")), jsonErrorReply(kNulReply));
  EXPECT_EQ(check(R"({"unread":{"deep":["\u0000"]}})"), jsonErrorReply(kNulReply));
}

TEST_F(RequestCheckTest, ANulBehindTheJsonHidesNothing) {
  for (const char* const tail : {"", " ", "{\"transfer_specs\":[]}"}) {
    EXPECT_EQ(check(std::string("{}") + '\0' + tail), jsonErrorReply(kNulReply));
  }
}

TEST_F(RequestCheckTest, OnlyTheEscapeOfANulIsANul) {
  addToApprovedFileList({"C:/u0000"});
  EXPECT_EQ(check(send(R"(,"paths":[{"source":"C:\\u0000"}])")), "");
  EXPECT_EQ(check(R"({"a":"\\\\u0000 u0000 \u0001 \"u0000"})"), "");
  EXPECT_EQ(check(R"(/* "\u0000" */ {"a":1})"), "");
  EXPECT_EQ(check(R"({"a":"\\\u0000"})"), jsonErrorReply(kNulReply));
}

constexpr char kTwoEndsReply[] =
    "Error parsing JSON: a comment ends at different places for different readers";

TEST_F(RequestCheckTest, ACommentThatAnotherReaderEndsEarlierHidesNothing) {
  const std::string hidden =
      R"({"transfer_spec":{"direction":"send","paths":[{"source":"C:/no"}]}})";
  for (const char* const end : {"\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9", "a\rb\r"}) {
    EXPECT_EQ(check("{\"transfer_specs\":[//" + (end + hidden) + "\n]}"),
              jsonErrorReply(kTwoEndsReply));
    EXPECT_EQ(check("{\"a\":\"\\\"\"} // " + (end + hidden)), jsonErrorReply(kTwoEndsReply));
  }
}

TEST_F(RequestCheckTest, ACommentWithOneEndIsPassedOver) {
  for (const char* const body : {"{} // \n", "{} // \r\n", "{} // \r", "// a\n{}", "/* // \r */ {}",
                                 "{\"a\":\"// \xC2\x85\"}", "{\"a\":\"\\\"// \xE2\x80\xA8\"}",
                                 "{\"a\":\"http://x\",\r\"b\":1}", "{} /* \xC2\x85 */"}) {
    EXPECT_EQ(check(body), "") << body;
  }
}

std::string repeatedReply(const std::string& member) {
  return jsonErrorReply("Error parsing JSON: the member " + member + " stands twice in one object");
}

TEST_F(RequestCheckTest, AMemberThatTheCheckReadsStandsOnce) {
  EXPECT_EQ(check(R"({"transfer_specs":[],"transfer_specs":[]})"), repeatedReply("transfer_specs"));
  EXPECT_EQ(check(R"({"transfer_specs":1,"a":2,"transfer_specs":null})"),
            repeatedReply("transfer_specs"));
  EXPECT_EQ(check(R"({"orvane_vantrel_settings":{},"orvane_vantrel_settings":{"app_id":"x"}})"),
            repeatedReply("orvane_vantrel_settings"));
  EXPECT_EQ(check(R"({"orvane_vantrel_settings":{"app_id":"good","app_id":"refused"}})"),
            repeatedReply("app_id"));
  EXPECT_EQ(check(specs(R"({"transfer_spec":{},"transfer_spec":{"direction":"send"}})")),
            repeatedReply("transfer_spec"));
  EXPECT_EQ(check(specs(R"({"orvane_vantrel_settings":1,"orvane_vantrel_settings":2})")),
            repeatedReply("orvane_vantrel_settings"));
  EXPECT_EQ(check(specs(R"({"orvane_vantrel_settings":{"use_absolute_destination_path":false,)"
                        R"("use_absolute_destination_path":true}})")),
            repeatedReply("use_absolute_destination_path"));
  for (const char* const member : {"direction", "destination_root", "source_root", "paths"}) {
    const std::string twice = std::string("\"") + member + "\":1,\"" + member + "\":2";
    EXPECT_EQ(check(specs("{\"transfer_spec\":{" + twice + "}}")), repeatedReply(member));
  }
  EXPECT_TRUE(askedIds_.empty());
}

TEST_F(RequestCheckTest, AKeyIsRepeatedHoweverItIsWritten) {
  EXPECT_EQ(check(R"({"transfer_specs":[],"transfer\u005fspecs":[]})"),
            repeatedReply("transfer_specs"));
}

TEST_F(RequestCheckTest, OtherMembersMayStandTwice) {
  addToApprovedFileList({"C:/other/a", "C:/other/b"});
  EXPECT_EQ(check(R"({"a":1,"a":2,"direction":1,"direction":2,"app_id":1,"app_id":2})"), "");
  EXPECT_EQ(
      check(specs(R"({"transfer_specs":1,"transfer_specs":2,"transfer_spec":{"a":1,"a":2}})")), "");
  EXPECT_EQ(check(R"({"transfer_specs":[{},{"transfer_spec":1,"transfer_spec":2}]})"), "");
  EXPECT_EQ(check(send(R"(,"paths":[{"source":"C:/other/a","source":"C:/other/b"}])")), "");
}

TEST_F(RequestCheckTest, TextsMayBeWrittenWithEscapes) {
  addToApprovedFileList({"C:/esc/a b", "C:/esc/\xC3\xA4", "C:/esc/plain"});
  EXPECT_EQ(check(R"({"transfer_specs":[{"transfer_spec":{"paths":[{"source":"a\u0020b"},)"
                  R"({"source":"plain"},{"s\u006furce":"\u00e4"},{"source":"\\plain"}],)"
                  R"("source_root":"C:\\esc","direction":"s\u0065nd"}}]})"),
            "");
  EXPECT_EQ(check(R"({"transfer_specs":[{"transfer_spec":{"paths":[{"source":"plain"},)"
                  R"({"source":"p\u0020"}],"source_root":"C:\/esc","direction":"send"}}]})"),
            jsonErrorReply(kUnauthorizedFile + "C:/esc/p "));
}

TEST_F(RequestCheckTest, MembersOfOtherObjectsAreNotRead) {
  EXPECT_EQ(check(R"({"direction":"send","paths":1,"transfer_spec":{"direction":"send"},)"
                  R"("x":{"transfer_specs":[{"transfer_spec":{"direction":"send"}}]},)"
                  R"("orvane_vantrel_settings":{"x":{"app_id":"refused"},"transfer_specs":[1]}})"),
            "");
  EXPECT_EQ(check(R"([{"transfer_specs":[{"transfer_spec":{"direction":"send"}}]}])"), "");
  EXPECT_EQ(check(specs(R"([{"transfer_spec":{"direction":"send"}}])")), "");
  EXPECT_EQ(check(send(R"(,"paths":[{"x":{"source":"C:/no"},"y":[{"source":"C:/no"}]}])")), "");
}

TEST_F(RequestCheckTest, DeepNestingIsAParsingError) {
  const std::string open(1001, '[');
  EXPECT_EQ(check(open + std::string(1001, ']')),
            jsonErrorReply("Error parsing JSON: parse error: the text is nested too deeply\n"));
  EXPECT_EQ(check(open.substr(1) + std::string(1000, ']')), "");
  EXPECT_NE(check(std::string(1000000, '[')).find("nested too deeply"), std::string::npos);
  EXPECT_NE(check(open.substr(1)).find("premature EOF"), std::string::npos);
}

TEST_F(RequestCheckTest, OtherJsonPasses) {
  for (const char* const body : {"{}", "[]", "1", "null", "\"text\"", R"({"any":"thing"})"}) {
    EXPECT_EQ(check(body), "") << body;
  }
}

TEST_F(RequestCheckTest, AnApplicationIdIsJudgedByTheHostname) {
  EXPECT_EQ(check(R"({"orvane_vantrel_settings":{"app_id":"refused"}})"), jsonErrorReply("host"));
  EXPECT_EQ(check(R"({"orvane_vantrel_settings":{"app_id":"good"}})"), "");
  EXPECT_EQ(check(R"({"orvane_vantrel_settings":{"app_id":12.50}})"), "");
  EXPECT_EQ(askedIds_, (std::vector<std::string>{"refused", "good", "12.50"}));
}

TEST_F(RequestCheckTest, AnEmptyOrUnreadableApplicationIdIsNotJudged) {
  for (const char* const id : {"\"\"", "null", "true", "[]", "{}"}) {
    EXPECT_EQ(check(std::string(R"({"orvane_vantrel_settings":{"app_id":)") + id + "}}"), "");
  }
  EXPECT_TRUE(askedIds_.empty());
}

TEST_F(RequestCheckTest, TheApplicationIdIsJudgedBeforeTheSpecifications) {
  EXPECT_EQ(check(R"({"transfer_specs":[{"transfer_spec":{"direction":"send"}}],)"
                  R"("orvane_vantrel_settings":{"app_id":"refused"}})"),
            jsonErrorReply("host"));
}

TEST_F(RequestCheckTest, SpecificationsThatAreNoFilledArrayAreNotChecked) {
  for (const char* const value :
       {"{}", "[]", "null", "1", R"({"0":{"transfer_spec":{"direction":"send"}}})"}) {
    EXPECT_EQ(check(std::string("{\"transfer_specs\":") + value + "}"), "") << value;
  }
}

TEST_F(RequestCheckTest, AFirstSpecificationThatIsNoObjectPasses) {
  for (const char* const value : {"null", "1", "\"send\"", "[]"}) {
    EXPECT_EQ(check(specs(value)), "") << value;
  }
}

TEST_F(RequestCheckTest, AnAbsoluteReceiveNeedsTheSelectedDestination) {
  consent_.setLastSelectedPath("C:\\Users\\me\\Downloads");
  EXPECT_EQ(check(receive("\"C:/Users/me/Downloads\"")), "");
  EXPECT_EQ(check(receive(R"("C:\\Users\\me\\Downloads\\sub")")), "");
  EXPECT_EQ(check(receive("\"C:/Users/me\"")),
            jsonErrorReply(kUnauthorizedDirectory + "C:/Users/me"));
  EXPECT_EQ(check(receive(R"("E:\\x")")), jsonErrorReply(kUnauthorizedDirectory + "E:\\\\x"));
  // A quote stays as it is: no path of the platform has one, and the reply is no JSON then.
  EXPECT_EQ(check(receive(R"("E:\\\"x")")), jsonErrorReply(kUnauthorizedDirectory + "E:\\\\\"x"));
}

TEST_F(RequestCheckTest, ADestinationThatCannotBeReadIsRefused) {
  consent_.setLastSelectedPath("C:/d");
  for (const char* const destination : {"null", "{}", "\"\""}) {
    EXPECT_EQ(check(receive(destination)), jsonErrorReply(kUnauthorizedDirectory));
  }
}

TEST_F(RequestCheckTest, OneSelectionServesAnyNumberOfRequests) {
  consent_.setLastSelectedPath("C:/d");
  EXPECT_EQ(check(receive("\"C:/d\"")), "");
  EXPECT_EQ(check(receive("\"C:/d\"")), "");
}

TEST_F(RequestCheckTest, AReceiveIsCheckedOnlyForTheLiteralTrue) {
  for (const char* const value : {"\"true\"", "1", "false", "null", "[]"}) {
    EXPECT_EQ(check(receive("\"E:/x\"", value)), "") << value;
  }
  EXPECT_EQ(check(specs(R"({"transfer_spec":{"direction":"receive","destination_root":"E:/x"}})")),
            "");
}

TEST_F(RequestCheckTest, TheDirectionIsComparedExactly) {
  for (const char* const direction : {"Send", "SEND", "send ", "", "both", "Receive"}) {
    EXPECT_EQ(check(specs(std::string(R"({"orvane_vantrel_settings":)"
                                      R"({"use_absolute_destination_path":true},)"
                                      R"("transfer_spec":{"direction":")") +
                          direction + "\"}}")),
              "")
        << direction;
  }
}

TEST_F(RequestCheckTest, ASendNeedsAnArrayOfPaths) {
  const std::string invalid = jsonErrorReply("Invalid argument: paths");
  EXPECT_EQ(check(send("")), invalid);
  for (const char* const paths : {"{}", "null", "\"a\"", "1"}) {
    EXPECT_EQ(check(send(std::string(",\"paths\":") + paths)), invalid) << paths;
  }
  EXPECT_EQ(check(send(",\"paths\":[]")), "");
}

TEST_F(RequestCheckTest, APathThatIsNoObjectIsAnInvalidArgument) {
  const std::string invalid = jsonErrorReply("Invalid argument: paths");
  for (const char* const entry : {"null", "\"C:/x\"", "1", "[]", "true"}) {
    EXPECT_EQ(check(send(std::string(",\"paths\":[{},") + entry + "]")), invalid) << entry;
  }
}

TEST_F(RequestCheckTest, APathWithoutASourcePasses) {
  EXPECT_EQ(check(send(R"(,"paths":[{},{"destination":"x","Source":"y"}])")), "");
}

TEST_F(RequestCheckTest, EverySourceMustBeApproved) {
  addToApprovedFileList({"C:\\send\\a.txt", "C:\\send\\b.txt"});
  EXPECT_EQ(check(send(R"(,"paths":[{"source":"C:/send/a.txt"},{"source":"C:\\send\\b.txt"}])")),
            "");
  EXPECT_EQ(check(send(R"(,"paths":[{"source":"C:/send/a.txt"},{"source":"C:\\send\\c.txt"},)"
                       R"({"source":"C:/send/d.txt"}])")),
            jsonErrorReply(kUnauthorizedFile + "C:/send/c.txt"));
}

TEST_F(RequestCheckTest, TheSourceRootIsJoinedInFrontOfEachSource) {
  addToApprovedFileList({"C:/root/in/a.txt"});
  EXPECT_EQ(check(send(R"(,"source_root":"C:\\root\\","paths":[{"source":"/in/a.txt"}])")), "");
  EXPECT_EQ(check(send(R"(,"source_root":"C:/root","paths":[{"source":"C:/root/in/a.txt"}])")),
            jsonErrorReply(kUnauthorizedFile + "C:/root/C:/root/in/a.txt"));
}

TEST_F(RequestCheckTest, EverySourceOfAnEntryIsAsked) {
  addToApprovedFileList({"C:/dup/a"});
  EXPECT_EQ(check(send(R"(,"paths":[{"source":"C:/dup/a","source":"C:/dup/b"}])")),
            jsonErrorReply(kUnauthorizedFile + "C:/dup/b"));
}

TEST_F(RequestCheckTest, ANumberIsASourceByItsDigits) {
  addToApprovedFileList({"C:/numbers/1.50"});
  EXPECT_EQ(check(send(R"(,"source_root":"C:/numbers","paths":[{"source":1.50}])")), "");
  EXPECT_EQ(check(send(R"(,"source_root":"C:/numbers","paths":[{"source":1.5}])")),
            jsonErrorReply(kUnauthorizedFile + "C:/numbers/1.5"));
}

TEST_F(RequestCheckTest, AnUnreadableSourceIsRefusedThoughItsRootIsApproved) {
  addToApprovedFileList({"C:/approved"});
  for (const char* const source : {"null", "true", "{}", "[]"}) {
    EXPECT_EQ(check(send(std::string(R"(,"source_root":"C:\\approved","paths":[{"source":)") +
                         source + "}]")),
              jsonErrorReply(kUnauthorizedFile + "C:/approved"))
        << source;
    EXPECT_EQ(check(send(std::string(",\"paths\":[{\"source\":") + source + "}]")),
              jsonErrorReply(kUnauthorizedFile))
        << source;
  }
}

TEST_F(RequestCheckTest, AnEmptySourceMeansItsRoot) {
  addToApprovedFileList({"C:/whole"});
  EXPECT_EQ(check(send(R"(,"source_root":"C:/whole","paths":[{"source":""}])")), "");
}

TEST_F(RequestCheckTest, AnEmptySourceWithoutARootIsOutOfRange) {
  EXPECT_THROW(check(send(R"(,"paths":[{"source":""}])")), std::out_of_range);
}

TEST_F(RequestCheckTest, OnlyTheFirstSpecificationIsChecked) {
  EXPECT_EQ(check(R"({"transfer_specs":[{"transfer_spec":{"direction":"send","paths":[]}},)"
                  R"({"transfer_spec":{"direction":"send","paths":[{"source":"C:/no"}]}}]})"),
            "");
}

TEST_F(RequestCheckTest, ManyPathsAreCheckedOnce) {
  std::vector<std::string> files;
  std::string paths;
  for (int i = 0; i < 100000; ++i) {
    files.push_back("C:/many/" + std::string(70, 'x') + std::to_string(i));
    paths += (i != 0 ? ",{\"source\":\"" : "{\"source\":\"") + files.back() + "\"}";
  }
  addToApprovedFileList(files);
  EXPECT_EQ(check(send(",\"paths\":[" + paths + "]")), "");
}

}  // namespace
}  // namespace Vantrel::Web
