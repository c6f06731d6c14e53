#include "service/http_response.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>

#include "runtime/ov_strings.h"

namespace Vantrel::Web {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kLengthLabel = "Content-Length:";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";

// The most that is set aside on a reply's word alone; a longer one grows as it arrives.
constexpr uint64_t kMaxReserve = 64ULL << 20;

// Searches from `from` on; what is not found moves `from` to where the search resumes when more
// text has arrived. The cost of all searches together is linear.
size_t findResumably(const std::string& text, std::string_view wanted, size_t& from) {
  const size_t found = text.find(wanted, from);
  if (found == std::string::npos && text.size() >= wanted.size()) {
    from = std::max(from, text.size() - (wanted.size() - 1));
  }
  return found;
}

constexpr std::string_view kHeaderSeparator = ": ";

// Takes the next line off the front of `text`, without its line end; false if there is none.
bool takeLine(std::string_view& text, std::string_view& line) {
  const size_t end = text.find(kLineEnd);
  if (end == std::string_view::npos) return false;
  line = text.substr(0, end);
  text.remove_prefix(end + kLineEnd.size());
  return true;
}

// The number between the first two blanks of a status line.
bool readStatus(std::string_view line, uint16_t& status) {
  const size_t versionEnd = line.find(' ');
  if (versionEnd == std::string_view::npos) return false;
  line.remove_prefix(versionEnd + 1);
  const size_t statusEnd = line.find(' ');
  if (statusEnd == std::string_view::npos) return false;
  status = static_cast<uint16_t>(ov_str_atoi(std::string(line.substr(0, statusEnd)).c_str()));
  return true;
}

}  // namespace

bool HttpReplyReader::feed(std::string_view piece) {
  response_.append(piece.substr(0, piece.find('\0')));
  if (lengthState_ == Length::kUnknown) {
    if (!findLengthLine()) return false;
    readLength();
  }
  if (lengthState_ == Length::kAbsent) return false;
  // Of a reply that promises nothing not even the rest of the head is awaited.
  if (contentLength_ == 0) return true;
  if (!findHeaderEnd() || response_.size() - bodyStart_ < contentLength_) return false;
  response_.resize(bodyStart_ + static_cast<size_t>(contentLength_));
  return true;
}

// Whether the line of the length label is there with its line end.
bool HttpReplyReader::findLengthLine() {
  if (labelEnd_ == std::string::npos) {
    const size_t label = findResumably(response_, kLengthLabel, labelSearch_);
    if (label == std::string::npos) return false;
    labelEnd_ = label + kLengthLabel.size();
    lineEndSearch_ = labelEnd_;
  }
  return findResumably(response_, kLineEnd, lineEndSearch_) != std::string::npos;
}

// A length too large for 64 bits counts as the largest; a negative one as no length at all.
void HttpReplyReader::readLength() {
  lengthState_ = Length::kKnown;
  // The line has its end, so this stops before the end of the text.
  const char* at = response_.c_str() + labelEnd_;
  while (*at == ' ' || *at == '\t') ++at;
  const bool negative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  const auto read = std::from_chars(at, response_.c_str() + response_.size(), contentLength_);
  if (read.ec == std::errc::result_out_of_range) {
    contentLength_ = std::numeric_limits<uint64_t>::max();
  }
  if (negative && contentLength_ > 0) lengthState_ = Length::kAbsent;
}

bool HttpReplyReader::findHeaderEnd() {
  if (bodyStart_ != std::string::npos) return true;
  const size_t end = findResumably(response_, kHeaderEnd, headerEndSearch_);
  if (end == std::string::npos) return false;
  bodyStart_ = end + kHeaderEnd.size();
  response_.reserve(bodyStart_ + static_cast<size_t>(std::min(contentLength_, kMaxReserve)));
  return true;
}

std::unique_ptr<HttpResponse> parseHttpResponse(std::string text) {
  uint16_t status = 0;
  std::multimap<std::string, std::string> headers;
  std::string_view rest = text;
  std::string_view line;
  if (!takeLine(rest, line) || !readStatus(line, status)) return nullptr;
  while (takeLine(rest, line)) {
    if (line.empty()) {
      // The body moves to the front of the memory that it stands in.
      text.erase(0, text.size() - rest.size());
      auto response = std::make_unique<HttpResponse>(std::move(text));
      response->status = status;
      response->headers = std::move(headers);
      return response;
    }
    const size_t nameEnd = line.find(kHeaderSeparator);
    if (nameEnd == std::string_view::npos) return nullptr;
    headers.emplace(line.substr(0, nameEnd), line.substr(nameEnd + kHeaderSeparator.size()));
  }
  return nullptr;
}

}  // namespace Vantrel::Web
