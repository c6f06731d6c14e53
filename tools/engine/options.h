// The command line of the browser.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace engine {

// Exit statuses; a page or a script that starts the browser reads them.
inline constexpr int kExitPassed = 0;
inline constexpr int kExitFailed = 1;     // the page printed the --fail-on text
inline constexpr int kExitTimeLimit = 3;  // the limit was reached before the --until text
inline constexpr int kExitSetUp = 4;      // there was no page to run; stderr says why
inline constexpr int kExitFault = 5;      // the plug-in crashed

struct Options {
  std::string page;     // file name, or "-" for the standard input
  std::string baseUrl;  // empty: a URL of its own, made of the page's file name
  std::string root;     // folder that answers for the base URL's host; empty: the page's folder
  std::string dll;      // the library, an absolute Unix path
  std::string stubs;    // folder of the engine's stub plug-in, an absolute path
  std::string until;    // console line that ends the run; empty: run for the whole limit
  std::string failOn;   // console line that ends the run as failed; empty: none
  std::string picture;  // PNG to write when the page is finished; empty: none
  std::vector<std::string> inject;  // scripts to run before those of the page
  int consoleDescriptor = 1;        // where console lines go
  double limitSeconds = 60;
  int width = 1024;
  int height = 768;
  std::optional<int> removeAfterMs;
  std::optional<int> reloadAfterMs;
};

// Reads the arguments (without the program's name). On failure problem is set and the result empty.
std::optional<Options> parseOptions(const std::vector<std::string>& arguments,
                                    std::string& problem);

}  // namespace engine
