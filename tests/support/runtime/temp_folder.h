// For tests: a folder of its own for one test case, removed with all it holds at the end.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace ov {

class TempFolder {
 public:
  TempFolder() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    for (int64_t number = now;; ++number) {
      folder_ = std::filesystem::temp_directory_path() / ("ov-test-" + std::to_string(number));
      if (std::filesystem::create_directory(folder_)) return;
    }
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // A path below the folder, in UTF-8 with forward slashes.
  std::string path(const std::string& name = "") const {
    const std::u8string text = folder_.generic_u8string();
    const std::string folder(text.begin(), text.end());
    return name.empty() ? folder : folder + "/" + name;
  }

  static std::filesystem::path native(const std::string& path) {
    return std::filesystem::path(std::u8string(path.begin(), path.end()));
  }

  static void write(const std::string& path, const std::string& content) {
    std::ofstream(native(path), std::ios::binary) << content;
  }

  static std::string read(const std::string& path) {
    std::ifstream file(native(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace ov
