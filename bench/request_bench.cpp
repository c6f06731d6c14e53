// What the road of one request costs at its limits, as ratios within one run:
// - a reply of 64 MiB that arrives in pieces of 1 KiB, against appending the same pieces to a text;
// - the check of a 10 MB body with 100,000 approved paths, against parsing that body alone.
// usage: request_bench

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "bench/bench.h"
#include "core/approved_files.h"
#include "core/request_check.h"
#include "service/http_reply_reader.h"
#include "service/http_response.h"
#include "text/json_document.h"

namespace Vantrel::Web {
namespace {

using Bench::print;
using Bench::shortest;

constexpr size_t kReplySize = size_t{64} << 20;
constexpr size_t kPieceSize = 1024;
constexpr int kPaths = 100000;

template <class Take>
void inPieces(std::string_view text, Take take) {
  for (; !text.empty(); text.remove_prefix(text.size() < kPieceSize ? text.size() : kPieceSize)) {
    take(text.substr(0, kPieceSize));
  }
}

void benchReply() {
  const std::string reply = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(kReplySize) +
                            "\r\n\r\n" + std::string(kReplySize, 'x');
  const double ours = shortest([&reply] {
    HttpReplyReader reader;
    inPieces(reply, [&reader](std::string_view piece) { reader.feed(piece); });
    if (!parseHttpResponse(reader.text())) std::puts("no response");
  });
  const double append = shortest([&reply] {
    std::string text;
    inPieces(reply, [&text](std::string_view piece) { text.append(piece); });
    if (text.size() != reply.size()) std::puts("lost bytes");
  });
  print("reply of 64 MiB", ours, "append", append);
}

void benchCheck() {
  std::vector<std::string> files;
  std::string paths;
  for (int i = 0; i < kPaths; ++i) {
    files.push_back("C:/bench/" + std::string(70, 'x') + std::to_string(i));
    paths += (i != 0 ? ",{\"source\":\"" : "{\"source\":\"") + files.back() + "\"}";
  }
  addToApprovedFileList(files);
  const std::string body =
      R"({"transfer_specs":[{"transfer_spec":{"direction":"send","paths":[)" + paths + "]}}]}";
  const double ours = shortest([&body] {
    std::string error;
    const DestinationConsent consent;
    checkRequestBody(
        body, [](const std::string&) { return std::string(); }, consent, error);
    if (!error.empty()) std::puts(error.c_str());
  });
  const double parse = shortest([&body] {
    JsonDocument document;
    if (!document.parse(body)) std::puts("no JSON");
  });
  print("check of 100,000 paths", ours, "parse", parse);
}

}  // namespace
}  // namespace Vantrel::Web

int main() {
  Vantrel::Web::benchReply();
  Vantrel::Web::benchCheck();
  return 0;
}
