// A parsed JSON text, which JsonDocument owns and reads by paths of keys.
//
// Lives on the stack of one operation, on any one thread; never copied. All JSON that the plug-in
// reads passes through it, but for the bodies that a page wants forwarded (core/request_body.h). A
// path is an array of keys ended by a null pointer.
#pragma once

#include <yajl/yajl_tree.h>

#include <string>
#include <string_view>

namespace Vantrel::Web {

class JsonDocument {
 public:
  // Arrays and objects may stand this deep in each other: the parser frees a tree by recursion, so
  // a deeper text could run the thread out of stack.
  static constexpr int kMaxDepth = 1000;

  JsonDocument() = default;
  ~JsonDocument();
  JsonDocument(const JsonDocument&) = delete;
  JsonDocument& operator=(const JsonDocument&) = delete;

  // Parses the text up to its first NUL byte and drops what was parsed before. False leaves the
  // reason in errorText().
  bool parse(const std::string& text);

  // The parser's message for the last parse; several lines for most errors.
  std::string errorText() const { return errorBuffer_; }

  // The whole value, or null.
  yajl_val root() const { return root_; }

  // The value at the path below `base` (null: below the root), or null. The document keeps it.
  yajl_val get(const char* const* path, yajl_val base = nullptr) const;

  // Whether the value is the literal true.
  bool isTrue(const char* const* path, yajl_val base = nullptr) const;

  // The text of a string or the digits of a number as they stood; empty for anything else.
  std::string getString(const char* const* path, yajl_val base = nullptr) const;

  // Whether the top level has a member "error" of any type.
  bool hasError() const;

 private:
  void clear();

  yajl_val root_ = nullptr;
  char errorBuffer_[1024] = "";
};

// What getString gives for a value that was reached another way; empty for null. The document keeps
// the text.
std::string_view jsonText(yajl_val value);

}  // namespace Vantrel::Web
