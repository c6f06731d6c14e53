// The builder of the documents that start transfers: taken apart again, a document gives the texts
// that went in, in their order, and no more elements than that.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/transfer.h"

namespace {

using Vantrel::Web::Transfer;

void check(bool holds) {
  if (!holds) std::abort();
}

void replace(std::string& text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// Takes <name>...</name> off the front; the content with its entities resolved.
bool takeElement(std::string& text, const std::string& name, std::string& content) {
  const std::string open = "<" + name + ">";
  const std::string close = "</" + name + ">";
  if (text.compare(0, open.size(), open) != 0) return false;
  const size_t end = text.find('<', open.size());
  check(end != std::string::npos && text.compare(end, close.size(), close) == 0);
  content = text.substr(open.size(), end - open.size());
  check(content.find('>') == std::string::npos);
  replace(content, "&lt;", "<");
  replace(content, "&gt;", ">");
  replace(content, "&amp;", "&");
  text.erase(0, end + close.size());
  return true;
}

}  // namespace

// The input is the destination and the sources, with a line feed behind each.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> texts(1);
  for (size_t i = 0; i < size; ++i) {
    if (data[i] == '\n') {
      texts.emplace_back();
    } else {
      texts.back() += static_cast<char>(data[i]);
    }
  }
  const std::vector<std::string> files(texts.begin() + 1, texts.end());
  Transfer transfer;
  transfer.setDestination(texts.front());
  transfer.setFiles(files);
  std::string rest = transfer.document();
  const std::string start =
      std::string("<xferreq xmlns=\"") + Vantrel::Web::kXferreqNamespace + "\">";
  check(rest.compare(0, start.size(), start) == 0);
  rest.erase(0, start.size());
  std::string content;
  for (const std::string& file : files) {
    if (!file.empty()) check(takeElement(rest, "src", content) && content == file);
  }
  if (!texts.front().empty()) check(takeElement(rest, "dest", content) && content == texts.front());
  check(rest == "</xferreq>");
  return 0;
}
