#include "text/json_document.h"

#include <algorithm>
#include <cstring>

namespace Vantrel::Web {

namespace {

constexpr char kTooDeep[] = "parse error: the text is nested too deeply\n";

// Where a comment that begins at `at` ends, or `at` + 1 if none does. The parser accepts comments,
// so a quote inside one must not be taken for the start of a string.
const char* skipComment(const char* at) {
  if (at[1] == '/') {
    const char* const end = std::strchr(at, '\n');
    return end != nullptr ? end : at + std::strlen(at);
  }
  if (at[1] == '*') {
    const char* const end = std::strstr(at + 2, "*/");
    return end != nullptr ? end + 2 : at + std::strlen(at);
  }
  return at + 1;
}

// The byte behind the string that opens at `at`, or the end of the text.
const char* skipString(const char* at) {
  for (++at; *at != '\0'; ++at) {
    if (*at == '\\' && at[1] != '\0') {
      ++at;
    } else if (*at == '"') {
      return at + 1;
    }
  }
  return at;
}

// Whether arrays and objects stand deeper in each other than `limit`.
bool isDeeperThan(const char* text, int limit) {
  int depth = 0;
  for (const char* at = text; *at != '\0';) {
    switch (*at) {
      case '"':
        at = skipString(at);
        continue;
      case '/':
        at = skipComment(at);
        continue;
      case '[':
      case '{':
        if (++depth > limit) return true;
        break;
      case ']':
      case '}':
        --depth;
        break;
      default:
        break;
    }
    ++at;
  }
  return false;
}

}  // namespace

JsonDocument::~JsonDocument() {
  clear();
}

void JsonDocument::clear() {
  yajl_tree_free(root_);
  root_ = nullptr;
  errorBuffer_[0] = '\0';
}

bool JsonDocument::parse(const std::string& text) {
  clear();
  if (isDeeperThan(text.c_str(), kMaxDepth)) {
    std::copy_n(kTooDeep, sizeof kTooDeep, errorBuffer_);
    return false;
  }
  root_ = yajl_tree_parse(text.c_str(), errorBuffer_, sizeof errorBuffer_);
  return root_ != nullptr;
}

yajl_val JsonDocument::get(const char* const* path, yajl_val base) const {
  // The parser's interface lacks the const; it only reads the keys.
  return yajl_tree_get(base != nullptr ? base : root_, const_cast<const char**>(path), yajl_t_any);
}

bool JsonDocument::isTrue(const char* const* path, yajl_val base) const {
  const yajl_val value = get(path, base);
  return value != nullptr && value->type == yajl_t_true;
}

std::string JsonDocument::getString(const char* const* path, yajl_val base) const {
  return std::string(jsonText(get(path, base)));
}

bool JsonDocument::hasError() const {
  static constexpr const char* kErrorPath[] = {"error", nullptr};
  return get(kErrorPath) != nullptr;
}

std::string_view jsonText(yajl_val value) {
  if (value != nullptr && value->type == yajl_t_string) return value->u.string;
  if (value != nullptr && value->type == yajl_t_number) return value->u.number.r;
  return {};
}

}  // namespace Vantrel::Web
