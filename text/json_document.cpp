#include "text/json_document.h"

#include <algorithm>
#include <cstring>

namespace Vantrel::Web {

namespace {

constexpr char kTooDeep[] = "parse error: the text is nested too deeply\n";
constexpr char kHoldsNul[] = "a key or a text holds a NUL";
constexpr std::string_view kNulEscape = "u0000";  // behind a backslash

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

// What a text shows before it is parsed.
struct Glance {
  int deepest = 0;        // how deep arrays and objects stand in each other
  bool holdsNul = false;  // some string has the escape of a NUL
};

// The byte behind the string that opens at `at`, or the end of the text.
const char* skipString(const char* at, Glance& glance) {
  for (++at; *at != '\0'; ++at) {
    if (*at == '"') return at + 1;
    if (*at != '\\' || at[1] == '\0') continue;
    ++at;
    if (std::strncmp(at, kNulEscape.data(), kNulEscape.size()) == 0) glance.holdsNul = true;
  }
  return at;
}

Glance glanceAt(const char* text) {
  Glance glance;
  int depth = 0;
  for (const char* at = text; *at != '\0';) {
    switch (*at) {
      case '"':
        at = skipString(at, glance);
        continue;
      case '/':
        at = skipComment(at);
        continue;
      case '[':
      case '{':
        glance.deepest = std::max(glance.deepest, ++depth);
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
  return glance;
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
  return parseText(text, Nul::kEndsText);
}

bool JsonDocument::parseForForwarding(const std::string& text) {
  return parseText(text, Nul::kRefused);
}

bool JsonDocument::parseText(const std::string& text, Nul nul) {
  clear();
  const Glance glance = glanceAt(text.c_str());
  if (glance.deepest > kMaxDepth) return fail(kTooDeep);
  const bool holdsNul = glance.holdsNul || text.find('\0') != std::string::npos;
  if (nul == Nul::kRefused && holdsNul) return fail(kHoldsNul);
  root_ = yajl_tree_parse(text.c_str(), errorBuffer_, sizeof errorBuffer_);
  return root_ != nullptr;
}

bool JsonDocument::fail(std::string_view reason) {
  errorBuffer_[reason.copy(errorBuffer_, sizeof errorBuffer_ - 1)] = '\0';
  return false;
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

const char* repeatedMember(yajl_val object, std::initializer_list<const char*> names) {
  if (!YAJL_IS_OBJECT(object)) return nullptr;
  for (const char* const name : names) {
    const char* const* const keys = object->u.object.keys;
    const auto isName = [name](const char* key) { return std::strcmp(key, name) == 0; };
    if (std::count_if(keys, keys + object->u.object.len, isName) > 1) return name;
  }
  return nullptr;
}

}  // namespace Vantrel::Web
