#include "tools/client/json_tree.h"

#include <array>

namespace Vantrel::StandIn {
namespace {

bool tooDeep(const std::string& text) {
  int depth = 0;
  bool quoted = false;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (quoted && c == '\\') {
      ++i;
    } else if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && (c == '[' || c == '{')) {
      if (++depth > kMostJsonDepth) return true;
    } else if (!quoted && (c == ']' || c == '}')) {
      --depth;
    }
  }
  return false;
}

yajl_val memberOf(yajl_val node, const std::string& name) {
  if (!YAJL_IS_OBJECT(node)) return nullptr;
  for (size_t i = 0; i < node->u.object.len; ++i)
    if (name == node->u.object.keys[i]) return node->u.object.values[i];
  return nullptr;
}

}  // namespace

JsonTree parseJson(const std::string& text, std::string& problem) {
  if (tooDeep(text)) {
    problem = "nested too deep";
    return nullptr;
  }
  // The parser would stop at a NUL byte and take what stands before it for the whole.
  if (text.find('\0') != std::string::npos) {
    problem = "NUL byte";
    return nullptr;
  }
  std::array<char, 1024> message{};
  JsonTree tree(yajl_tree_parse(text.c_str(), message.data(), message.size()));
  if (!tree) problem = message[0] != '\0' ? message.data() : "no value";
  return tree;
}

yajl_val jsonAt(yajl_val node, std::initializer_list<const char*> keys) {
  for (const char* key : keys) node = memberOf(node, key);
  return node;
}

std::string jsonTextAt(yajl_val node, std::initializer_list<const char*> keys) {
  yajl_val value = jsonAt(node, keys);
  if (YAJL_IS_STRING(value)) return YAJL_GET_STRING(value);
  if (YAJL_IS_NUMBER(value)) return YAJL_GET_NUMBER(value);
  return {};
}

std::vector<yajl_val> jsonArrayAt(yajl_val node, std::initializer_list<const char*> keys) {
  yajl_val value = jsonAt(node, keys);
  if (!YAJL_IS_ARRAY(value)) return {};
  return {value->u.array.values, value->u.array.values + value->u.array.len};
}

}  // namespace Vantrel::StandIn
