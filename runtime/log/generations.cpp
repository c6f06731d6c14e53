#include "runtime/log/generations.h"

#include <cstring>

#include "runtime/strings/ascii.h"

namespace ov {
namespace {

// A drive's own "C:" would be the current directory of the drive.
bool is_root(std::string_view directory) {
  return directory.empty() || (directory.size() == 2 && directory[1] == ':');
}

}  // namespace

int choose_log_generation(const LogGenerationSet& existing) {
  if (existing.none()) return -1;
  int digit = 0;
  while (!existing[static_cast<size_t>(digit)]) ++digit;
  while (digit + 1 < kLogGenerationCount && existing[static_cast<size_t>(digit) + 1]) ++digit;
  return digit;
}

LogGenerations::LogGenerations(std::string_view path) : path_(path) {
  const size_t slash = path_.rfind('/');
  base_ = slash == std::string_view::npos ? 0 : slash + 1;
  const size_t dot = path_.rfind('.');
  extension_ = dot == std::string_view::npos || dot < base_ ? path_.size() : dot;
}

void LogGenerations::directory(char (&out)[kLogPathRoom]) const {
  std::string_view directory = ".";
  if (base_ > 0) {
    directory = path_.substr(0, base_ - 1);
    if (is_root(directory)) directory = path_.substr(0, base_);
  }
  std::memcpy(out, directory.data(), directory.size());
  out[directory.size()] = 0;
}

int LogGenerations::digitOf(std::string_view entry) const {
  const std::string_view stem = path_.substr(base_, extension_ - base_);
  const std::string_view extension = path_.substr(extension_);
  if (entry.size() != stem.size() + 2 + extension.size()) return -1;
  const char digit = entry[stem.size() + 1];
  const bool matches = entry.starts_with(stem) && entry[stem.size()] == '.' &&
                       entry.ends_with(extension) && is_digit(digit);
  return matches ? digit - '0' : -1;
}

void LogGenerations::pathOf(int digit, char (&out)[kLogGenerationPathRoom]) const {
  char* at = out;
  std::memcpy(at, path_.data(), extension_);
  at += extension_;
  *at++ = '.';
  *at++ = static_cast<char>('0' + digit);
  std::memcpy(at, path_.data() + extension_, path_.size() - extension_);
  at[path_.size() - extension_] = 0;
}

}  // namespace ov
