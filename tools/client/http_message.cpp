#include "tools/client/http_message.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "tools/client/json_text.h"

namespace Vantrel::StandIn {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";

bool sameName(std::string_view a, std::string_view b) {
  auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace

const std::string* ServiceRequest::header(std::string_view name) const {
  for (const auto& [key, value] : headers)
    if (sameName(key, name)) return &value;
  return nullptr;
}

RequestReader::State RequestReader::add(std::string_view bytes) {
  if (state_ != State::kReading) return state_;
  text_ += bytes;
  if (bodyStart_ > 0) return takeBody();
  size_t end = text_.find(kHeadEnd, searched_);
  if (end != std::string::npos) return readHead(end);
  // The end may have begun in the last three bytes.
  searched_ = text_.size() - std::min(text_.size(), kHeadEnd.size() - 1);
  if (text_.size() > kMostHeadBytes) return fail("the header is too long");
  return state_;
}

RequestReader::State RequestReader::fail(std::string problem) {
  problem_ = std::move(problem);
  state_ = State::kMalformed;
  return state_;
}

RequestReader::State RequestReader::readHead(size_t end) {
  std::string_view head = std::string_view(text_).substr(0, end);
  size_t lineEnd = head.find(kLineEnd);
  std::string_view first = head.substr(0, lineEnd);
  size_t methodEnd = first.find(' ');
  size_t pathEnd = first.rfind(' ');
  if (methodEnd == std::string_view::npos || pathEnd == methodEnd ||
      !first.substr(pathEnd + 1).starts_with("HTTP/1."))
    return fail("the request line is malformed");
  request_.method = first.substr(0, methodEnd);
  request_.path = first.substr(methodEnd + 1, pathEnd - methodEnd - 1);
  while (lineEnd != std::string_view::npos) {
    head.remove_prefix(lineEnd + kLineEnd.size());
    lineEnd = head.find(kLineEnd);
    if (!readHeaderLine(head.substr(0, lineEnd))) return fail("a header line is malformed");
  }
  bodyStart_ = end + kHeadEnd.size();
  if (const std::string* length = request_.header("Content-Length")) {
    const char* last = length->data() + length->size();
    auto result = std::from_chars(length->data(), last, bodyBytes_);
    if (result.ec != std::errc() || result.ptr != last || bodyBytes_ > kMostBodyBytes)
      return fail("the content length is malformed or too large");
  }
  return takeBody();
}

bool RequestReader::readHeaderLine(std::string_view line) {
  size_t colon = line.find(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  std::string_view value = line.substr(colon + 1);
  if (value.starts_with(' ')) value.remove_prefix(1);
  request_.headers.emplace_back(line.substr(0, colon), value);
  return true;
}

RequestReader::State RequestReader::takeBody() {
  if (text_.size() - bodyStart_ < bodyBytes_) return state_;
  request_.body = text_.substr(bodyStart_, bodyBytes_);
  text_.clear();
  state_ = State::kComplete;
  return state_;
}

std::string_view reasonPhrase(int status) {
  switch (status) {
    case 200:
      return "OK";
    case 400:
      return "Bad Request";
    case 401:
      return "Unauthorized";
    case 404:
      return "Not Found";
    case 405:
      return "Method Not Allowed";
    case 500:
      return "Internal Server Error";
    case 503:
      return "Service Unavailable";
    default:
      return "Status";
  }
}

ServiceReply errorReply(int status, std::string_view internalMessage,
                        std::string_view userMessage) {
  JsonObject error;
  error.add("code", std::int64_t{status});
  error.add("internal_message", internalMessage);
  error.add("user_message", userMessage);
  JsonObject reply;
  reply.addRaw("error", error.text());
  return {status, reply.text()};
}

}  // namespace Vantrel::StandIn
