#include "service/http_response.h"

#include <string_view>

#include "runtime/ov_strings.h"

namespace Vantrel::Web {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
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
