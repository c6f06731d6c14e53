// A folder of a test's own, gone with the test.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tools/client/paths.h"
#include "tools/client/random_text.h"

namespace Vantrel::StandIn {

class ScratchFolder {
 public:
  ScratchFolder() : path_(std::filesystem::temp_directory_path() / ("ov-" + randomHex(12))) {
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

  // Folders on the way are made.
  std::filesystem::path write(const std::string& name, const std::string& bytes) const {
    std::filesystem::path file = path_ / pathOf(name);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    return file;
  }

 private:
  std::filesystem::path path_;
};

// The bytes of a file; empty when there is none.
inline std::string bytesOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace Vantrel::StandIn
