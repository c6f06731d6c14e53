#include "console_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace engine {
namespace {

int console = STDOUT_FILENO;

}  // namespace

void usePageConsole(int descriptor) {
  console = descriptor;
  fcntl(console, F_SETFD, FD_CLOEXEC);
}

void printConsoleLine(const std::string& line) {
  std::string text;
  for (const char c : line) {
    if (c == '\n')
      text += "\\n";
    else
      text += c;
  }
  text += '\n';
  for (size_t done = 0; done < text.size();) {
    const ssize_t written = write(console, text.data() + done, text.size() - done);
    if (written < 0 && errno != EINTR) return;
    if (written > 0) done += static_cast<size_t>(written);
  }
}

}  // namespace engine
