// A running stand-in desktop client, started by the test itself.
//
// Owned and used by one thread. The process ends with the object, and with the test's process
// whatever becomes of that; its two files and its folder go too.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/client_folder.h"

namespace Vantrel::Web::TestSupport {

class ClientProcess {
 public:
  // Where its two files go. In a folder of its own it disturbs nobody, and no plug-in finds it;
  // a test that uses the real one needs the CTest property RESOURCE_LOCK local_client.
  enum class DataDir { kOwn, kReal };

  // Starts it with these knobs, lines of its configuration file. `arguments` stand behind the
  // program on its command line. Throws std::runtime_error when there is no process.
  explicit ClientProcess(const std::string& knobs = "", DataDir dataDir = DataDir::kReal,
                         const std::wstring& arguments = L"");
  ~ClientProcess();
  ClientProcess(const ClientProcess&) = delete;
  ClientProcess& operator=(const ClientProcess&) = delete;

  // True once its files tell its address; false when it ended first or took 20 seconds.
  bool waitUntilListening() const;

  // Ends it at once, as a crash would: its files stay until the object goes.
  void kill();

  // Its exit code once it has ended, nothing when it still runs after that time.
  std::optional<uint32_t> waitForExit(uint32_t milliseconds) const;

  // What its files say at this moment.
  ClientAddress address() const { return readClientAddress(dataDir_); }
  uint16_t port() const { return address().port; }
  std::string key() const { return address().key(); }

  uint32_t processId() const;
  const ClientFolder& folder() const { return folder_; }
  const std::filesystem::path& dataDir() const { return dataDir_; }

  // The raw bytes of every connection so far, in the order of their coming.
  std::vector<std::string> records() const { return folder_.records(); }

 private:
  struct Handles;

  ClientFolder folder_;
  std::filesystem::path dataDir_;
  std::unique_ptr<Handles> handles_;
};

}  // namespace Vantrel::Web::TestSupport
