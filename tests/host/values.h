// Values that pass between the page and the plug-in: Value is the host's own copy of a variant,
// Arguments lays values out as a browser's argument list.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "browsers/gecko/netscape_plugin_api.h"
#include "tests/host/guarded_bytes.h"

namespace Vantrel::Web::Host {

// A value in the host's own memory. For an object only the pointer is held, no reference.
struct Value {
  NPVariantType type = NPVariantType_Void;
  bool truth = false;
  int32_t integer = 0;
  double real = 0;
  std::string text;
  // Bytes that stand behind the text in its memory; they do not belong to it.
  std::string behind;
  // A text whose characters pointer is null.
  bool nullText = false;
  NPObject* object = nullptr;

  static Value undefined() { return {}; }
  static Value null();
  static Value boolean(bool value);
  static Value number(int32_t value);
  static Value number(double value);
  static Value string(std::string_view value);
  // Text of which only the first `length` bytes count.
  static Value stringInside(std::string_view memory, size_t length);
  static Value nullString();
  static Value of(NPObject* object);

  bool isText() const { return type == NPVariantType_String; }
  bool operator==(const Value& other) const;
};

std::ostream& operator<<(std::ostream& stream, const Value& value);

// What a variant holds, copied. Texts are read by their counted length only.
Value copyOf(const NPVariant& variant);

// An argument list in guarded memory: it ends where readable memory ends, and so does each text.
// The texts carry no closing NUL. Freed with this object, as a browser frees its own after a call.
class Arguments {
 public:
  explicit Arguments(const std::vector<Value>& values);

  const NPVariant* data() const;
  uint32_t count() const { return count_; }

 private:
  NPVariant make(const Value& value);

  std::vector<GuardedBytes> texts_;
  GuardedBytes list_;
  uint32_t count_;
};

}  // namespace Vantrel::Web::Host
