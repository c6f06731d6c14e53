// The small files by which the plug-in finds this client: http.uri and process.pid.
//
// Owned by main; used by the thread that listens. A file is written under another name and then
// renamed, so a reader sees it whole or not at all.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "tools/client/knobs.h"

namespace Vantrel::StandIn {

class RunFiles {
 public:
  // `dataDir` is the client's data directory; the files lie in "var/run" below it.
  RunFiles(const std::filesystem::path& dataDir, const Knobs& knobs, std::uint32_t processId);

  // Writes both, the URL last: who sees it sees the process id as well. Throws the standard
  // library's errors.
  void write(std::uint16_t port, const std::string& key) const;

  // Removes both, unless another client has written its own since. Never throws.
  void remove() const;

  // The key as a reader of the file finds it: everything behind the first line feed, and the
  // whole text when there is none.
  static std::string keyOfReader(const std::string& uriText);

  // The text of http.uri in the form that the knob uri_file wants.
  static std::string uriText(std::uint16_t port, const std::string& key, const std::string& form);

 private:
  std::filesystem::path folder_;
  const Knobs& knobs_;
  std::string processId_;
};

// Replaces a file's content in one step. A reader that holds it open delays that a little.
void replaceFile(const std::filesystem::path& path, const std::string& text);

}  // namespace Vantrel::StandIn
