// Reading of JSON: an owned tree and the few questions that are asked of it.
#pragma once

#include <yajl/yajl_tree.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace Vantrel::StandIn {

// Deeper nesting is refused: the tree is freed by recursion, and the stack is small.
inline constexpr int kMostJsonDepth = 1000;

struct JsonTreeFree {
  void operator()(yajl_val tree) const { yajl_tree_free(tree); }
};
using JsonTree = std::unique_ptr<yajl_val_s, JsonTreeFree>;

// The tree of `text`, or null with the reason in `problem`.
JsonTree parseJson(const std::string& text, std::string& problem);

// The value below `node` at the end of the keys, or null.
yajl_val jsonAt(yajl_val node, std::initializer_list<const char*> keys);

// The text there; a number gives its own text, anything else the empty text.
std::string jsonTextAt(yajl_val node, std::initializer_list<const char*> keys);

// The elements of the array there; none when it is no array.
std::vector<yajl_val> jsonArrayAt(yajl_val node, std::initializer_list<const char*> keys);

}  // namespace Vantrel::StandIn
