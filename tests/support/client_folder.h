// The folder in which a test keeps a stand-in desktop client: its settings, what plays the remote
// side, where downloads go, and what it recorded. Owned and used by one thread; the folder and all
// in it go with the object.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Vantrel::Web::TestSupport {

// What the client tells about itself in its two files.
struct ClientAddress {
  uint32_t processId = 0;
  uint16_t port = 0;
  std::string uriText;  // the whole of http.uri

  // The key as the plug-in reads it: behind the first line feed, or the whole text without one.
  std::string key() const;
};

class ClientFolder {
 public:
  ClientFolder();
  ~ClientFolder();
  ClientFolder(const ClientFolder&) = delete;
  ClientFolder& operator=(const ClientFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path remote() const { return path_ / "remote"; }
  std::filesystem::path downloads() const { return path_ / "downloads"; }

  // Writes the client's settings to that file: this folder for everything, a short idle time, and
  // then `knobs`, lines of the client's configuration file, which win.
  void configure(const std::filesystem::path& file, const std::string& knobs) const;

  // The raw bytes of every connection so far, in the order of their coming.
  std::vector<std::string> records() const;

 private:
  std::filesystem::path path_;
};

// What the files below this data directory say; zeros and an empty text where one is missing.
ClientAddress readClientAddress(const std::filesystem::path& dataDir);

// The data directory that the plug-in reads.
std::filesystem::path realClientDataDir();

// Removes the client's two files, whoever wrote them. Another thread may have one open for a
// moment, so this tries for a while.
void removeClientFiles(const std::filesystem::path& dataDir);

// The stand-in that this build made.
std::filesystem::path clientProgram();

}  // namespace Vantrel::Web::TestSupport
