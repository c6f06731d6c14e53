// JSON read once more, without economy: a tree that keeps every member in its order and every text
// with its length, NULs and all. What the real reader and the check above it are compared with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Vantrel::Web::TestSupport {

struct SlowMember;

struct SlowJson {
  enum class Kind { kNull, kTrue, kFalse, kNumber, kString, kArray, kObject };

  Kind kind = Kind::kNull;
  std::string text;                 // of a string, or the digits of a number
  std::vector<SlowJson> items;      // of an array
  std::vector<SlowMember> members;  // of an object
};

struct SlowMember {
  std::string key;
  SlowJson value;
};

// What ends a comment to the end of the line: a line feed alone, as for the real reader, or
// whatever some reader takes for the end of a line.
enum class LineEnds { kLineFeed, kAny };

// Reads texts that are well formed, comments included; an ill-formed one gives nothing or anything.
// What stands behind the value is not looked at: the parser takes an unfinished string there.
class SlowJsonReader {
 public:
  explicit SlowJsonReader(std::string text, LineEnds ends = LineEnds::kLineFeed)
      : text_(std::move(text)), ends_(ends) {}

  std::optional<SlowJson> read() {
    SlowJson value;
    return readValue(value) ? std::optional(value) : std::nullopt;
  }

 private:
  bool startsWith(const std::string& wanted) const {
    return text_.compare(at_, wanted.size(), wanted) == 0;
  }
  bool take(const std::string& wanted) {
    if (!startsWith(wanted)) return false;
    at_ += wanted.size();
    return true;
  }
  void skipTo(const std::string& end) {
    const size_t found = text_.find(end, at_);
    at_ = found == std::string::npos ? text_.size() : found + end.size();
  }
  void skipLine() {
    static const std::string kEnds[] = {"\n", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};
    size_t start = text_.size();
    size_t behind = start;
    for (const std::string& end : kEnds) {
      if (const size_t found = text_.find(end, at_); found < start) {
        start = found;
        behind = found + end.size();
      }
      if (ends_ == LineEnds::kLineFeed) break;
    }
    at_ = behind;
  }
  void skipBlanks() {
    for (;;) {
      if (take("//")) {
        skipLine();
      } else if (take("/*")) {
        skipTo("*/");
      } else if (at_ < text_.size() &&
                 std::string(" \t\r\n\v\f").find(text_[at_]) != std::string::npos) {
        ++at_;
      } else {
        return;
      }
    }
  }

  bool readValue(SlowJson& value) {
    skipBlanks();
    if (take("null")) return true;
    if (take("true")) return setKind(value, SlowJson::Kind::kTrue);
    if (take("false")) return setKind(value, SlowJson::Kind::kFalse);
    if (startsWith("\"")) return setKind(value, SlowJson::Kind::kString) && readString(value.text);
    if (take("[")) return setKind(value, SlowJson::Kind::kArray) && readItems(value.items);
    if (take("{")) return setKind(value, SlowJson::Kind::kObject) && readMembers(value.members);
    return setKind(value, SlowJson::Kind::kNumber) && readNumber(value.text);
  }
  static bool setKind(SlowJson& value, SlowJson::Kind kind) {
    value.kind = kind;
    return true;
  }
  bool readNumber(std::string& digits) {
    const size_t end = std::min(text_.find_first_not_of("+-.0123456789eE", at_), text_.size());
    digits = text_.substr(at_, end - at_);
    at_ = end;
    return !digits.empty();
  }
  bool readItems(std::vector<SlowJson>& items) {
    skipBlanks();
    if (take("]")) return true;
    do {
      if (!readValue(items.emplace_back())) return false;
      skipBlanks();
    } while (take(","));
    return take("]");
  }
  bool readMembers(std::vector<SlowMember>& members) {
    skipBlanks();
    if (take("}")) return true;
    do {
      auto& [key, value] = members.emplace_back();
      skipBlanks();
      if (!startsWith("\"") || !readString(key)) return false;
      skipBlanks();
      if (!take(":") || !readValue(value)) return false;
      skipBlanks();
    } while (take(","));
    return take("}");
  }

  bool readString(std::string& result) {
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '"') return ++at_, true;
      if (text_[at_] != '\\') {
        result += text_[at_];
      } else if (!readEscape(result)) {
        return false;
      }
    }
    return false;
  }
  // At its backslash before, at its last byte afterwards.
  bool readEscape(std::string& result) {
    static const std::string kLetters = "bfnrt";
    static const std::string kBytes = "\b\f\n\r\t";
    if (++at_ >= text_.size()) return false;
    const size_t letter = kLetters.find(text_[at_]);
    if (text_[at_] != 'u') {
      result += letter == std::string::npos ? text_[at_] : kBytes[letter];
      return true;
    }
    uint32_t unit = 0;
    if (!readUnit(unit)) return false;
    uint32_t low = 0;
    if (unit >= 0xD800 && unit < 0xDC00 && text_.compare(at_ + 1, 2, "\\u") == 0) {
      at_ += 2;
      if (!readUnit(low)) return false;
      unit = 0x10000 + ((unit & 0x3FF) << 10) + (low & 0x3FF);
    }
    appendUtf8(result, unit);
    return true;
  }
  // The four hexadecimal digits behind the present byte.
  bool readUnit(uint32_t& unit) {
    if (text_.size() - at_ <= 4) return false;
    unit = static_cast<uint32_t>(std::strtoul(text_.substr(at_ + 1, 4).c_str(), nullptr, 16));
    at_ += 4;
    return true;
  }
  static void appendUtf8(std::string& result, uint32_t code) {
    const auto add = [&result](uint32_t byte) { result += static_cast<char>(byte); };
    if (code < 0x80) return add(code);
    if (code < 0x800) return add(0xC0 | code >> 6), add(0x80 | (code & 0x3F));
    if (code < 0x10000) {
      return add(0xE0 | code >> 12), add(0x80 | (code >> 6 & 0x3F)), add(0x80 | (code & 0x3F));
    }
    add(0xF0 | code >> 18), add(0x80 | (code >> 12 & 0x3F));
    add(0x80 | (code >> 6 & 0x3F)), add(0x80 | (code & 0x3F));
  }

  std::string text_;
  const LineEnds ends_;
  size_t at_ = 0;
};

}  // namespace Vantrel::Web::TestSupport
