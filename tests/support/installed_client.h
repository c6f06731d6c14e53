// A stand-in desktop client that is installed but not running, for tests in which the plug-in has
// to find and start it.
//
// The program and its settings stand in "bin" of a folder of its own, and the registry names that
// folder as the user's installation. Owned and used by one thread. With the object go all clients
// that were started from there, the registry value, the client's two files and the folder. Needs
// the CTest property RESOURCE_LOCK local_client.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/client_folder.h"

namespace Vantrel::Web::TestSupport {

class InstalledClient {
 public:
  // `knobs` are lines of the client's configuration file. Throws std::runtime_error.
  explicit InstalledClient(const std::string& knobs = "");
  ~InstalledClient();
  InstalledClient(const InstalledClient&) = delete;
  InstalledClient& operator=(const InstalledClient&) = delete;

  // What the files in the plug-in's data directory say at this moment.
  ClientAddress address() const { return readClientAddress(realClientDataDir()); }

  // The ids of all running clients that were started from here.
  std::vector<uint32_t> running() const;

  // Ends them at once, as a crash would.
  void killAll() const;

  // Its settings for the next start.
  void configure(const std::string& knobs) const;

  std::filesystem::path program() const;
  const ClientFolder& folder() const { return folder_; }
  std::vector<std::string> records() const { return folder_.records(); }

 private:
  ClientFolder folder_;
  std::optional<std::wstring> formerInstallDir_;
};

}  // namespace Vantrel::Web::TestSupport
