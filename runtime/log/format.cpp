// The bounded formatters. What a buffer has no room for is not even read: a line of the log that
// ends after 4 KiB costs no more for a text of many megabytes.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <type_traits>

#include "runtime/ov_log.h"
#include "runtime/strings/utf8_ascii.h"

namespace {

// The longest conversion that is taken apart here, with numbers in place of its stars.
constexpr size_t kConversionRoom = 48;
constexpr int kNone = -1;
constexpr int kStar = -2;

// One conversion of a format, "%-8.3lld".
struct Conversion {
  std::string_view flags;
  int width = kNone;      // or kStar, or a number
  int precision = kNone;  // the same
  std::string_view size;  // "", "hh", "h", "l", "ll", "j", "z", "t", "L"
  char type = 0;

  bool isBare() const { return flags.empty() && width == kNone && precision == kNone; }
};

// Not by the C library's strspn, whose call costs more than the few letters of a conversion.
std::string_view take_any(const char** at, const char* accepted) {
  const char* const start = *at;
  const auto is_accepted = [accepted](char letter) {
    const char* known = accepted;
    while (*known != '\0' && *known != letter) ++known;
    return *known != '\0';
  };
  while (is_accepted(**at)) ++*at;
  return {start, static_cast<size_t>(*at - start)};
}

// A number of up to four digits, or a star; false for a longer one.
bool take_number(const char** at, int* number) {
  if (**at == '*') {
    ++*at;
    *number = kStar;
    return true;
  }
  const std::string_view digits = take_any(at, "0123456789");
  if (!digits.empty()) *number = 0;
  for (const char digit : digits) *number = *number * 10 + (digit - '0');
  return digits.size() <= 4;
}

// Takes the conversion behind a "%"; false for one that is left to the C library, with all of the
// format that it stands in.
bool take_conversion(const char** at, Conversion* conversion) {
  conversion->flags = take_any(at, "-+ #0");
  if (conversion->flags.size() > 5 || !take_number(at, &conversion->width)) return false;
  if (**at == '.') {
    ++*at;
    conversion->precision = 0;
    if (!take_number(at, &conversion->precision)) return false;
  }
  conversion->size = take_any(at, "hljztL");
  conversion->type = **at;
  if (conversion->type == '\0') return false;
  ++*at;
  const auto has_size_of = [conversion](std::initializer_list<std::string_view> sizes) {
    return std::find(sizes.begin(), sizes.end(), conversion->size) != sizes.end();
  };
  switch (conversion->type) {
    case '%':
      return conversion->isBare() && conversion->size.empty();
    case 's':
      return conversion->size.empty() &&
             conversion->flags.find_first_not_of('-') == std::string_view::npos;
    case 'c':
      return conversion->size.empty();
    case 'p':
      return conversion->isBare() && conversion->size.empty();
    case 'd':
    case 'i':
    case 'o':
    case 'u':
    case 'x':
    case 'X':
      return has_size_of({"", "hh", "h", "l", "ll", "j", "z", "t"});
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
      return has_size_of({"", "l", "L"});
    default:
      return false;
  }
}

// The format of a conversion comes from the caller's format and fits its argument as that one did.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

class BoundedText {
 public:
  BoundedText(char* dst, size_t size, va_list arguments) : dst_(dst), room_(size - 1) {
    va_copy(arguments_, arguments);
  }
  ~BoundedText() { va_end(arguments_); }
  BoundedText(const BoundedText&) = delete;
  BoundedText& operator=(const BoundedText&) = delete;

  // The length of the text, or the size of a buffer that is too small; less than 0 for a failure.
  // Nothing for a format with a conversion that is the C library's: what is written then is to be
  // written over.
  std::optional<int32_t> write(const char* format) {
    while (*format != '\0' && !cut_ && !failed_) {
      format = putLiteral(format);
      if (*format == '\0') break;
      ++format;
      // The most frequent one, which need not be taken apart.
      if (*format == 's') {
        ++format;
        putBareText(va_arg(arguments_, const char*));
        continue;
      }
      Conversion conversion;
      if (!take_conversion(&format, &conversion)) return std::nullopt;
      convert(conversion);
    }
    dst_[used_] = 0;
    if (failed_) return -1;
    return static_cast<int32_t>(cut_ ? room_ + 1 : used_);
  }

 private:
  size_t left() const { return room_ - used_; }

  // Up to a conversion or the format's end.
  const char* putLiteral(const char* format) {
    char* at = dst_ + used_;
    const char* const end = dst_ + room_;
    while (*format != '\0' && *format != '%' && at != end) *at++ = *format++;
    used_ = static_cast<size_t>(at - dst_);
    if (at != end || *format == '\0' || *format == '%') return format;
    cut_ = true;
    return "";
  }

  void put(const char* text, size_t length) {
    const size_t taken = std::min(length, left());
    std::memcpy(dst_ + used_, text, taken);
    used_ += taken;
    cut_ = cut_ || taken < length;
  }

  void pad(size_t count) {
    const size_t taken = std::min(count, left());
    std::memset(dst_ + used_, ' ', taken);
    used_ += taken;
    cut_ = cut_ || taken < count;
  }

  void convert(Conversion conversion) {
    bool left_aligned = conversion.flags.find('-') != std::string_view::npos;
    if (conversion.width == kStar) {
      conversion.width = va_arg(arguments_, int);
      left_aligned = left_aligned || conversion.width < 0;
      // The least value has no counterpart; the C library may do with it what it likes.
      conversion.width =
          conversion.width < 0 ? -std::max(conversion.width, -INT32_MAX) : conversion.width;
    }
    if (conversion.precision == kStar) {
      conversion.precision = std::max(va_arg(arguments_, int), kNone);
    }
    switch (conversion.type) {
      case '%':
        return put("%", 1);
      case 's':
        return putText(conversion, left_aligned);
      case 'c':
        return putByLibrary(conversion, left_aligned, va_arg(arguments_, int));
      case 'p':
        return putByLibrary(conversion, left_aligned, va_arg(arguments_, void*));
      case 'd':
      case 'i':
        return putNumber<true>(conversion, left_aligned);
      case 'o':
      case 'u':
      case 'x':
      case 'X':
        return putNumber<false>(conversion, left_aligned);
      default:
        if (conversion.size == "L") {
          return putByLibrary(conversion, left_aligned, va_arg(arguments_, long double));
        }
        return putByLibrary(conversion, left_aligned, va_arg(arguments_, double));
    }
  }

  // Reads one byte more than fits.
  void putBareText(const char* text) {
    if (text == nullptr) {
      Conversion conversion;
      conversion.type = 's';
      return putByLibrary(conversion, false, text);
    }
    put(text, ov::text_length(reinterpret_cast<const uint8_t*>(text), left() + 1));
  }

  // Reads one byte more than fits, or the width.
  void putText(const Conversion& conversion, bool left_aligned) {
    const char* const text = va_arg(arguments_, const char*);
    if (text == nullptr) return putByLibrary(conversion, left_aligned, text);
    const auto width = static_cast<size_t>(std::max(conversion.width, 0));
    size_t most = left() + 1;
    // How many blanks stand in front depends on as much of the text as the width covers.
    if (!left_aligned) most = std::max(most, width);
    if (conversion.precision >= 0) most = std::min(most, static_cast<size_t>(conversion.precision));
    const size_t length = ov::text_length(reinterpret_cast<const uint8_t*>(text), most);
    const size_t blanks = width > length ? width - length : 0;
    if (!left_aligned) pad(blanks);
    put(text, length);
    if (left_aligned) pad(blanks);
  }

  template <bool is_signed>
  void putNumber(const Conversion& conversion, bool left_aligned) {
    const auto put = [&](auto sample) {
      using Number = decltype(sample);
      using Wanted = std::conditional_t<is_signed, Number, std::make_unsigned_t<Number>>;
      // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it does not see the copy in the start
      putValue(conversion, left_aligned, static_cast<Wanted>(va_arg(arguments_, Number)));
    };
    if (conversion.size == "l") return put(long{});
    if (conversion.size == "ll") return put(static_cast<long long>(0));
    if (conversion.size == "j") return put(intmax_t{});
    if (conversion.size == "z" || conversion.size == "t") return put(ptrdiff_t{});
    // Shorter ones come as an int.
    return put(int{});
  }

  template <typename Number>
  void putValue(const Conversion& conversion, bool left_aligned, Number value) {
    const bool decimal = conversion.type == 'd' || conversion.type == 'i' || conversion.type == 'u';
    const bool whole = conversion.size.empty() || conversion.size[0] != 'h';
    if (!decimal || !whole || !conversion.isBare()) {
      return putByLibrary(conversion, left_aligned, value);
    }
    char digits[24];
    const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    put(digits, static_cast<size_t>(end - digits));
  }

  // One conversion by the C library, with numbers for its stars.
  template <typename Value>
  void putByLibrary(const Conversion& conversion, bool left_aligned, Value value) {
    char format[kConversionRoom];
    char* at = format;
    *at++ = '%';
    if (left_aligned) *at++ = '-';
    for (const char flag : conversion.flags) {
      if (flag != '-') *at++ = flag;
    }
    char* const end = format + sizeof format;
    if (conversion.width >= 0) at = std::to_chars(at, end, conversion.width).ptr;
    if (conversion.precision >= 0) {
      *at++ = '.';
      at = std::to_chars(at, end, conversion.precision).ptr;
    }
    for (const char letter : conversion.size) *at++ = letter;
    *at++ = conversion.type;
    *at = 0;
    const int length = std::snprintf(dst_ + used_, left() + 1, format, value);
    failed_ = length < 0;
    if (failed_) return;
    cut_ = static_cast<size_t>(length) > left();
    used_ += std::min(static_cast<size_t>(length), left());
  }

  char* const dst_;
  const size_t room_;  // without the terminator
  size_t used_ = 0;
  bool cut_ = false;
  bool failed_ = false;
  va_list arguments_;
};

#pragma GCC diagnostic pop

// The length of the whole text or no less than `size`, or less than 0; what fits is in `dst`,
// terminated.
OV_PRINTF(3, 0)
int32_t format_bounded(char* dst, size_t size, const char* format, va_list arguments) {
  if (format == nullptr || (dst == nullptr && size > 0)) return -1;
  if (size > 0 && size <= INT32_MAX) {
    if (const auto length = BoundedText(dst, size, arguments).write(format)) return *length;
  }
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the callers have started the list
  const int length = std::vsnprintf(dst, size, format, arguments);
  if (length < 0 && size > 0) dst[size - 1] = 0;
  return length;
}

bool was_cut(int32_t length, size_t size) {
  return size > 0 && length >= 0 && static_cast<size_t>(length) >= size;
}

}  // namespace

int32_t ov_vsnprintf(char* dst, size_t size, const char* format, va_list arguments) {
  const int32_t length = format_bounded(dst, size, format, arguments);
  return was_cut(length, size) ? static_cast<int32_t>(size) : length;
}

int32_t ov_snprintf(char* dst, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t length = format_bounded(dst, size, format, arguments);
  va_end(arguments);
  if (!was_cut(length, size)) return length;
  OV_DEBUG("Call to snprintf() lead to a truncation");
  return static_cast<int32_t>(size - 1);
}
