// Text from outside: UTF-8 and UTF-16, cutting, wildcards, numbers and command lines, most of it
// against the same rules without economy.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "runtime/ov_errors.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/numbers_reference.h"
#include "tests/support/runtime/utf_reference.h"
#include "tests/support/runtime/wildcard_reference.h"

namespace {

using namespace ov::reference;

void check(bool holds) {
  if (!holds) std::abort();
}

bool wellFormed(const std::string& text) {
  return slow_well_formed_length(text) == text.size();
}

void test(const std::string& text) {
  // Exactly the bytes of the text, with no terminator.
  std::vector<char> exact(text.begin(), text.end());
  exact.reserve(1);
  const size_t length = slow_well_formed_length(text);
  check(ov_utf8_well_formed_length(exact.data(), text.size()) == length);
  check(ov_utf8_well_formed_length(text.c_str(), SIZE_MAX) == length);
  check(ov_utf8_is_valid(exact.data(), text.size()) == (length == text.size() ? 1 : 0));
  check(ov_utf8_is_valid(text.c_str(), SIZE_MAX) == (length == text.size() ? 1 : 0));
  const char* const fault = ov_utf8c_find_invalid_byte(exact.data(), text.size());
  const bool good = text.empty() || slow_sequence(text, 0) > 0;
  check(fault == (good ? nullptr : exact.data() + slow_fault(text, 0)));
}

void convert(const std::string& text) {
  size_t bytes = 0;
  const std::optional<Units> expected = slow_to_utf16(text);
  const ov_rc measured = ov_utf8_to_utf16(text.c_str(), 0, nullptr, &bytes);
  check(measured == (expected ? OV_ERANGE : OV_EINVAL));
  if (!expected) return;
  std::vector<uint16_t> units(bytes / 2);
  check(ov_utf8_to_utf16(text.c_str(), 0, units.data(), &bytes) == 0);
  check(ov_utf16_len(units.data()) + 1 == units.size());
  units.pop_back();
  check(units == *expected);
}

// The bytes as units of UTF-16.
void convertUnits(const std::string& bytes) {
  Units units;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const int unit = static_cast<uint8_t>(bytes[i]) << 8 | static_cast<uint8_t>(bytes[i + 1]);
    if (unit == 0) break;
    units.push_back(static_cast<uint16_t>(unit));
  }
  const FromUnits expected = slow_to_utf8(units);
  units.push_back(0);
  for (const int32_t flags : {0, 1}) {
    size_t size = 0;
    const ov_rc measured = ov_utf16_to_utf8(units.data(), flags, nullptr, &size);
    const bool refused = expected.loneSurrogate && flags == 0;
    check(measured == (refused ? OV_EINVAL : OV_ERANGE));
    if (refused) continue;
    std::vector<char> out(size);
    check(ov_utf16_to_utf8(units.data(), flags, out.data(), &size) == 0);
    check(out.size() == expected.text.size() + 1 && expected.text == out.data());
  }
}

void replace(const std::string& text, size_t room) {
  std::vector<char> out(text.size() * 3 + 1);
  size_t size = out.size();
  const std::string expected = slow_replace(text, "\xef\xbf\xbd");
  const ov_rc result =
      ov_utf8_replace_invalid_sequence(out.data(), text.c_str(), &size, nullptr, 0);
  check(size == expected.size() && expected == out.data());
  check(result == (wellFormed(text) ? 0 : OV_EILLUTFSTR));
  out.resize(room);
  size = room;
  if (ov_utf8_replace_invalid_sequence(out.data(), text.c_str(), &size, nullptr, 0) == OV_EBUFFER) {
    check(expected.starts_with(out.data()) && wellFormed(out.data()));
  } else {
    check(expected == out.data());
  }
}

void trim(const std::string& text) {
  std::vector<char> bytes(text.c_str(), text.c_str() + text.size() + 1);
  const std::optional<std::string> expected = slow_trim(text);
  const ov_rc result = ov_utf8_trim_trailing_partial(bytes.data(), nullptr);
  check(result == (expected ? 0 : OV_EINVAL));
  check((expected ? *expected : text) == bytes.data());
}

// A cut of well-formed text is well-formed and a part of it.
void cut(const std::string& text, size_t room) {
  std::vector<char> out(room);
  size_t pos = 0;
  const ov_rc result = ov_str_to(out.data(), text.c_str(), out.size(), &pos);
  check(result == 0 ? text == out.data() : text.starts_with(out.data()));
  check(pos == std::strlen(out.data()));
  if (wellFormed(text)) check(wellFormed(out.data()));
}

void readNumber(const std::string& text) {
  Reading reading{0, kUntouched, 0};
  const char* end = nullptr;
  reading.code = ov_str_ahtoll_err(text.c_str(), &reading.value, &end);
  reading.end = static_cast<size_t>(end - text.c_str());
  check(reading == slow_read(text));
  if (reading.code != 0) return;
  const int64_t value = reading.value;
  char decimal[32];
  check(std::to_string(value) == ov_str_lltoa(value, decimal, sizeof decimal));
  int32_t small = 0;
  check(ov_str_ahtoi_err(text.c_str(), &small, nullptr) ==
        (value >= INT32_MIN && value <= INT32_MAX ? 0 : OV_ERANGE));
  uint32_t positive = 0;
  check(ov_str_ahtou_err(text.c_str(), &positive, nullptr) ==
        (value >= 0 && value <= UINT32_MAX ? 0 : OV_ERANGE));
}

void tokenize(const std::string& text) {
  char** argv = nullptr;
  int32_t argc = 0;
  if (ov_str_tokenize(text.c_str(), &argv, &argc) != 0) return check(argv == nullptr && argc == 0);
  for (int32_t i = 0; i < argc; ++i) check(text.find(argv[i]) != std::string::npos);
  ov_str_tokcleanup(argv);
}

// A text matches itself with all its bytes escaped; any pattern matches as by the slow rules, where
// those end in time.
void match(const std::string& pattern, const std::string& text) {
  std::string escaped;
  for (const char c : text) escaped += {'\\', c};
  check(ov_str_wildcard_strcmp(escaped.c_str(), text.c_str()) == 0);
  check(ov_str_wildcards_present(escaped.c_str()) == 0);
  check(ov_str_wildcard_strcmp("*", text.c_str()) == 0);
  const bool matched = ov_str_wildcard_strcmp(pattern.c_str(), text.c_str()) == 0;
  const auto stars = std::count(pattern.begin(), pattern.end(), '*');
  if (stars <= 1 || (stars <= 5 && text.size() <= 16)) {
    check(matched == slow_match(pattern.c_str(), text.c_str()));
  }
}

}  // namespace

// The first byte is the room of a cut; a pattern and its text are parted by a line feed.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string whole(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::string text = whole.c_str();
  test(text);
  convert(text);
  convertUnits(whole);
  replace(text, data[0] + size_t{1});
  trim(text);
  cut(text, data[0] + size_t{1});
  readNumber(text);
  tokenize(text);
  const size_t line = std::min(text.find('\n'), text.size());
  match(text.substr(0, line), text.substr(std::min(line + 1, text.size())));
  return 0;
}
