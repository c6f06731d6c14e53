// Numbers as text.
#include <algorithm>
#include <bit>
#include <cerrno>
#include <cinttypes>
#include <cstdarg>
#include <cstdlib>
#include <limits>

#include "runtime/ov_errors.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"
#include "runtime/strings/ascii.h"

namespace {

constexpr int kDecimal = 10;

// Value of a digit of any base up to 16, or 255.
int digit_value(char c) {
  return _ov_str_base16_lookup[static_cast<uint8_t>(c)];
}

struct Base {
  int base;
  int prefix;
};

Base base_of(const char* text) {
  if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) return {16, 2};
  if (text[0] == '0' && ov::is_digit(text[1])) return {8, 1};
  if (text[0] == '%') return {2, 1};
  return {kDecimal, 0};
}

ov_rc read_number(const char** text, int64_t* value) {
  while (ov::is_space(**text)) ++*text;
  const bool negative = **text == '-';
  if (negative) ++*text;
  const auto [base, prefix] = base_of(*text);
  *text += prefix;
  if (digit_value(**text) >= base) return OV_EINVAL;
  // The negative range has one value more, so the number grows downward in it.
  const int64_t limit =
      negative ? std::numeric_limits<int64_t>::min() : -std::numeric_limits<int64_t>::max();
  int64_t number = 0;
  for (; digit_value(**text) < base; ++*text) {
    const int digit = digit_value(**text);
    if (number < (limit + digit) / base) return OV_ERANGE;
    number = number * base - digit;
  }
  *value = negative ? number : -number;
  return 0;
}

template <typename Number>
ov_rc read_small_number(const char* text, Number* value, const char** end) {
  int64_t wide = 0;
  if (const ov_rc error = ov_str_ahtoll_err(text, &wide, end)) return error;
  if (wide < std::numeric_limits<Number>::min() || wide > std::numeric_limits<Number>::max()) {
    return OV_ERANGE;
  }
  if (value != nullptr) *value = static_cast<Number>(wide);
  return 0;
}

// Writes as much as fits.
OV_PRINTF(3, 4)
char* write_number(char* buffer, size_t size, const char* format, ...) {
  if (buffer == nullptr || size == 0) return buffer;
  va_list arguments;
  va_start(arguments, format);
  ov_vsnprintf(buffer, size, format, arguments);
  va_end(arguments);
  return buffer;
}

}  // namespace

int32_t ov_str_atoi(const char* text) {
  const int64_t wide = ov_str_atoll(text);
  const int64_t value = std::clamp<int64_t>(wide, INT32_MIN, INT32_MAX);
  if (value != wide) errno = ERANGE;
  return static_cast<int32_t>(value);
}

int64_t ov_str_atoll(const char* text) {
  return text != nullptr ? std::strtoll(text, nullptr, kDecimal) : 0;
}

double ov_str_atof(const char* text) {
  return text != nullptr ? std::strtod(text, nullptr) : 0;
}

char* ov_str_itoa(int32_t value, char* buffer, size_t size) {
  return write_number(buffer, size, "%" PRId32, value);
}

char* ov_str_lltoa(int64_t value, char* buffer, size_t size) {
  return write_number(buffer, size, "%" PRId64, value);
}

char* ov_str_uitoa(uint32_t value, char* buffer, size_t size) {
  return write_number(buffer, size, "%" PRIu32, value);
}

char* ov_str_ulltoa(uint64_t value, char* buffer, size_t size) {
  return write_number(buffer, size, "%" PRIu64, value);
}

char* ov_str_ftoa(double value, char* buffer, size_t size) {
  return write_number(buffer, size, "%f", value);
}

ov_rc ov_str_ahtoll_err(const char* text, int64_t* value, const char** end) {
  int64_t number = 0;
  const ov_rc result = text != nullptr ? read_number(&text, &number) : OV_EINVAL;
  if (end != nullptr) *end = text;
  if (result == 0 && value != nullptr) *value = number;
  return result;
}

ov_rc ov_str_ahtoi_err(const char* text, int32_t* value, const char** end) {
  return read_small_number(text, value, end);
}

ov_rc ov_str_ahtou_err(const char* text, uint32_t* value, const char** end) {
  return read_small_number(text, value, end);
}

int64_t ov_str_ahtoll(const char* text) {
  int64_t value = 0;
  ov_str_ahtoll_err(text, &value, nullptr);
  return value;
}

int32_t ov_str_ahtoi(const char* text) {
  int32_t value = 0;
  ov_str_ahtoi_err(text, &value, nullptr);
  return value;
}

uint64_t ov_htonll(uint64_t value) {
  static_assert(std::endian::native == std::endian::little);
  return __builtin_bswap64(value);
}
