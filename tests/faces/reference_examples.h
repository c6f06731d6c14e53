// The examples of the page reference, read from its text: each block of script with what its
// comments say that it shows.
#pragma once

#include <string>
#include <vector>

namespace Vantrel::Web::Faces {

struct Example {
  // The heading that it stands under, and its line in the file.
  std::string heading;
  size_t line = 0;
  // Words behind "js": for one face only, with a drop of a file.
  bool netscapeOnly = false;
  bool activeXOnly = false;
  bool drop = false;
  std::string script;
  // What it shows, in the order of the text; the second for the control.
  std::vector<std::string> netscape;
  std::vector<std::string> activeX;
};

// Throws std::runtime_error for a file that cannot be read or a block that never ends.
std::vector<Example> readExamples(const std::string& text);

// The headings of members: those in back quotes.
std::vector<std::string> memberHeadings(const std::string& text);

}  // namespace Vantrel::Web::Faces
