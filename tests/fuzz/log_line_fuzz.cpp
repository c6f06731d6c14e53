// One line of the log: any text in any conversion, cut where the line ends, stamped, and folded
// when it repeats. Composing is compared with the C library's formatter.
#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/log/line.h"
#include "runtime/ov_log.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

// The format is the input's by intent, and made to fit its arguments.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"

OV_PRINTF(3, 4) bool compose(ov::LogLine& line, int32_t level, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool result = line.compose(level, format, arguments);
  va_end(arguments);
  return result;
}

OV_PRINTF(1, 2) std::string slowText(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  check(length >= 0);
  std::vector<char> text(static_cast<size_t>(length) + 1);
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  va_end(arguments);
  return {text.data(), static_cast<size_t>(length)};
}

// The whole line by the rules of a line's length.
std::string expected(const char* level, const std::string& text) {
  const std::string whole = std::string(level) + ' ' + text.substr(0, ov::kLogTextBound - 1);
  return whole.substr(0, ov::kLogTextLimit);
}

template <class Value>
void checkConversion(const std::string& format, Value value) {
  ov::LogLine line;
  check(compose(line, OV_LEVEL_LOG, format.c_str(), value));
  check(line.text() == expected("LOG", slowText(format.c_str(), value)));
  check(line.textAndEnd() == std::string(line.text()) + "\r\n");
}

#pragma GCC diagnostic pop

// Flags, width and precision of a conversion, from three bytes.
std::string head(const uint8_t* bytes) {
  constexpr char kFlags[] = "-+ #0";
  std::string text = "%";
  for (size_t i = 0; i < std::strlen(kFlags); ++i) {
    if ((bytes[0] >> i & 1) != 0) text += kFlags[i];
  }
  if ((bytes[0] & 0x20) != 0) text += std::to_string(bytes[1] * 20);
  if ((bytes[0] & 0x40) != 0) text += '.' + std::to_string(bytes[2] * 20);
  return text;
}

std::string doubledPercents(const std::string& text) {
  std::string doubled;
  for (const char c : text) doubled += c == '%' ? std::string("%%") : std::string(1, c);
  return doubled;
}

void stampLine(const std::string& text, uint32_t process, uint32_t thread, int32_t repeats) {
  constexpr std::string_view kMoment = "2026-03-09 17:02:11";
  ov::LogLine line;
  check(compose(line, OV_LEVEL_ERR, "%s", text.c_str()));
  const std::string body(line.textAndEnd());
  line.stamp(repeats, kMoment, process, thread);
  const std::string header = repeats > 0
                                 ? slowText("Last message repeated %d times\r\n%s [%x-%x] ",
                                            repeats, kMoment.data(), process, thread)
                                 : slowText("%s [%x-%08x] ", kMoment.data(), process, thread);
  check(line.whole() == header + body);
}

void fold(const std::string& text, const std::string& other) {
  ov::LogFold log;
  check(log.repeats(text) == text.empty());
  check(log.repeats(text));
  check(log.count() == (text.empty() ? 2 : 1));
  check(log.repeats(other) == (other == text));
  log.clearCount();
  check(log.count() == 0 && log.repeats(other));
}

}  // namespace

// Numbers, a literal up to a line feed, and a text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t kNumbers = 12;
  if (size < kNumbers) return 0;
  uint64_t number = 0;
  std::memcpy(&number, data + 4, sizeof number);
  const std::string rest(reinterpret_cast<const char*>(data) + kNumbers, size - kNumbers);
  const std::string cut = rest.c_str();
  const size_t gap = std::min(cut.find('\n'), cut.size());
  const std::string literal = doubledPercents(cut.substr(0, gap));
  const std::string text = cut.substr(std::min(gap + 1, cut.size()));
  const std::string begin = literal + head(data);
  const std::string leftOnly = (data[0] & 1) != 0 ? "%-" : "%";
  switch (data[3] % 6) {
    case 0:
      checkConversion(literal + leftOnly + std::to_string(data[1] * 20) + "." +
                          std::to_string(data[2] * 20) + 's' + literal,
                      text.c_str());
      break;
    case 1:
      checkConversion(begin + "d" + literal, static_cast<int>(number));
      break;
    case 2:
      checkConversion(begin + "x" + literal, static_cast<unsigned>(number));
      break;
    case 3:
      checkConversion(begin + "lld" + literal, static_cast<long long>(number));
      break;
    case 4:
      checkConversion(begin + "c" + literal, static_cast<int>(number & 0x7F));
      break;
    default:
      checkConversion(literal + "%s" + literal, text.c_str());
  }
  stampLine(text, static_cast<uint32_t>(number), static_cast<uint32_t>(number >> 32),
            static_cast<int32_t>(number >> 16 & INT32_MAX));
  fold(text.substr(0, ov::kLogTextLimit), literal.substr(0, ov::kLogTextLimit));
  return 0;
}
