// The reading of a reply in pieces, against the same rules without economy, and its parsing. The
// first byte is the size of the pieces.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "service/http_response.h"
#include "tests/support/slow_reply_reader.h"

namespace {

using Vantrel::Web::HttpReplyReader;
using Vantrel::Web::parseHttpResponse;
using Vantrel::Web::TestSupport::SlowReplyReader;

void check(bool holds) {
  if (!holds) std::abort();
}

// What parsed is the end of the text, behind an empty line.
void checkParsed(const std::string& text) {
  const auto response = parseHttpResponse(text);
  if (!response) return;
  const std::string body = response->body();
  check(text.size() >= body.size() + 4);
  check(text.compare(text.size() - body.size() - 4, 4, "\r\n\r\n") == 0);
  check(text.compare(text.size() - body.size(), body.size(), body) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const size_t pieceSize = std::max<size_t>(1, data[0]);
  const std::string input(reinterpret_cast<const char*>(data) + 1, size - 1);
  HttpReplyReader reader;
  SlowReplyReader slow;
  for (size_t at = 0; at < input.size(); at += pieceSize) {
    const std::string piece = input.substr(at, pieceSize);
    const bool complete = reader.feed(piece);
    check(complete == slow.feed(piece));
    check(reader.text() == slow.text);
    if (complete) break;
  }
  checkParsed(reader.text());
  checkParsed(input);
  return 0;
}
