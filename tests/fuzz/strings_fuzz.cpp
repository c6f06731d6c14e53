// Text from outside: UTF-8, cutting, wildcards, numbers and command lines.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

bool well_formed(const char* text) {
  return ov_utf8_is_valid(text, SIZE_MAX) == 1;
}

void convert(const std::string& text) {
  size_t bytes = 0;
  const ov_rc measured = ov_utf8_to_utf16(text.c_str(), 0, nullptr, &bytes);
  check((measured == OV_ERANGE) == well_formed(text.c_str()));
  if (measured != OV_ERANGE) return;
  std::vector<uint16_t> units(bytes / 2);
  check(ov_utf8_to_utf16(text.c_str(), 0, units.data(), &bytes) == 0);
  check(ov_utf16_len(units.data()) + 1 == units.size());
  std::vector<char> back(text.size() + 1);
  bytes = back.size();
  check(ov_utf16_to_utf8(units.data(), 0, back.data(), &bytes) == 0);
  check(text == back.data());
}

void replace(const std::string& text) {
  std::vector<char> out(text.size() * 3 + 1);
  size_t size = out.size();
  const ov_rc result =
      ov_utf8_replace_invalid_sequence(out.data(), text.c_str(), &size, nullptr, 0);
  check(size == std::strlen(out.data()) && well_formed(out.data()));
  check((result == 0) == well_formed(text.c_str()));
}

// A cut of well-formed text is well-formed and a part of it.
void cut(const std::string& text, size_t room) {
  std::vector<char> out(room);
  size_t pos = 0;
  const ov_rc result = ov_str_to(out.data(), text.c_str(), out.size(), &pos);
  check(result == 0 ? text == out.data() : text.starts_with(out.data()));
  check(pos == std::strlen(out.data()));
  if (well_formed(text.c_str())) check(well_formed(out.data()));
}

void read_number(const std::string& text) {
  int64_t value = 0;
  const char* end = nullptr;
  const ov_rc result = ov_str_ahtoll_err(text.c_str(), &value, &end);
  check(end >= text.c_str() && end <= text.c_str() + text.size());
  if (result != 0) return;
  char decimal[32];
  int64_t again = 0;
  check(ov_str_ahtoll_err(ov_str_lltoa(value, decimal, sizeof decimal), &again, nullptr) == 0);
  check(again == value);
}

void tokenize(const std::string& text) {
  char** argv = nullptr;
  int32_t argc = 0;
  if (ov_str_tokenize(text.c_str(), &argv, &argc) != 0) return check(!argv && argc == 0);
  for (int32_t i = 0; i < argc; ++i) check(text.find(argv[i]) != std::string::npos);
  ov_str_tokcleanup(argv);
}

// A pattern matches itself with all its special bytes escaped.
void match(const std::string& pattern, const std::string& text) {
  std::string escaped;
  for (const char c : text) escaped += {'\\', c};
  check(ov_str_wildcard_strcmp(escaped.c_str(), text.c_str()) == 0);
  check(ov_str_wildcards_present(escaped.c_str()) == 0);
  check(ov_str_wildcard_strcmp("*", text.c_str()) == 0);
  const int32_t matched = ov_str_wildcard_strcmp(pattern.c_str(), text.c_str());
  if (ov_str_wildcards_present(pattern.c_str()) == 0 && pattern.find('\\') == std::string::npos) {
    check((matched == 0) == (pattern == text));
  }
}

}  // namespace

// The first byte is the room of a cut; a pattern and its text are parted by a line feed.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string whole(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::string text = whole.c_str();
  convert(text);
  replace(text);
  cut(text, data[0] + size_t{1});
  read_number(text);
  tokenize(text);
  const size_t line = std::min(text.find('\n'), text.size());
  match(text.substr(0, line), text.substr(std::min(line + 1, text.size())));
  return 0;
}
