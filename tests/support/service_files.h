// A data directory of the desktop client for one test case: a fresh directory, in which the service
// client looks for the client's files while this lives. One at a time, on the test's thread.
#pragma once

#include <string>

namespace Vantrel::Web::TestSupport {

class ServiceFiles {
 public:
  // Also resets what the service client caches. `executablePath`, if not empty, is where the client
  // is said to be installed.
  explicit ServiceFiles(const std::string& executablePath = {});
  ~ServiceFiles();
  ServiceFiles(const ServiceFiles&) = delete;
  ServiceFiles& operator=(const ServiceFiles&) = delete;

  // The directory that stands for the user's application data.
  const std::string& appDataDirectory() const { return directory_; }
  // The files as the service client names them.
  std::string urlFile() const;
  std::string processIdFile() const;

  // Writes the whole text of a file, bytes as they are.
  void writeUrl(const std::string& text) const;
  void writeProcessId(const std::string& text) const;
  void removeUrl() const;

 private:
  std::string clientDirectory() const;

  std::string directory_;
};

// Makes what the service client keeps as in a freshly loaded library: forgets the directories, the
// executable's path, the service's address and the launch wait. A text that is not empty takes the
// place of what would be found. No other thread uses the service client meanwhile.
void resetServiceCaches(const std::string& appDataDirectory = {},
                        const std::string& executablePath = {});

// A new, empty directory of the platform's temporary files.
std::string makeTemporaryDirectory();

}  // namespace Vantrel::Web::TestSupport
