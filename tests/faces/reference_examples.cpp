#include "tests/faces/reference_examples.h"

#include <sstream>
#include <stdexcept>

namespace Vantrel::Web::Faces {

namespace {

constexpr char kFence[] = "```";
constexpr char kComment[] = "  // ";
constexpr char kDivider[] = " | ";

bool startsWith(const std::string& text, const std::string& beginning) {
  return text.rfind(beginning, 0) == 0;
}

// The comment behind a call of show, if the line has one.
void readComment(const std::string& line, Example& example) {
  const size_t show = line.find("show(");
  const size_t comment = line.rfind(kComment);
  if (show == std::string::npos || comment == std::string::npos || comment < show) return;
  const std::string shown = line.substr(comment + sizeof kComment - 1);
  const size_t divider = shown.find(kDivider);
  example.netscape.push_back(shown.substr(0, divider));
  example.activeX.push_back(
      divider == std::string::npos ? shown : shown.substr(divider + sizeof kDivider - 1));
}

Example begin(const std::string& fence, const std::string& heading, size_t line) {
  Example example;
  example.heading = heading;
  example.line = line;
  std::istringstream words(fence.substr(sizeof kFence - 1));
  for (std::string word; words >> word;) {
    if (word == "netscape") example.netscapeOnly = true;
    if (word == "control") example.activeXOnly = true;
    if (word == "drop") example.drop = true;
  }
  return example;
}

}  // namespace

std::vector<Example> readExamples(const std::string& text) {
  std::vector<Example> examples;
  std::istringstream lines(text);
  std::string heading;
  bool inside = false;
  size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (!inside && startsWith(line, "#")) heading = line;
    if (inside && line == kFence) {
      inside = false;
    } else if (inside) {
      examples.back().script += line + "\n";
      readComment(line, examples.back());
    } else if (startsWith(line, std::string(kFence) + "js")) {
      inside = true;
      examples.push_back(begin(line, heading, number));
    }
  }
  if (inside) throw std::runtime_error("an example never ends");
  return examples;
}

std::vector<std::string> memberHeadings(const std::string& text) {
  std::vector<std::string> headings;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (startsWith(line, "### `")) headings.push_back(line);
  }
  return headings;
}

}  // namespace Vantrel::Web::Faces
