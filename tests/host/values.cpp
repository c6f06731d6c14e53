#include "tests/host/values.h"

#include <cstring>
#include <ostream>

namespace Vantrel::Web::Host {

Value Value::null() {
  Value result;
  result.type = NPVariantType_Null;
  return result;
}

Value Value::boolean(bool value) {
  Value result;
  result.type = NPVariantType_Bool;
  result.truth = value;
  return result;
}

Value Value::number(int32_t value) {
  Value result;
  result.type = NPVariantType_Int32;
  result.integer = value;
  return result;
}

Value Value::number(double value) {
  Value result;
  result.type = NPVariantType_Double;
  result.real = value;
  return result;
}

Value Value::string(std::string_view value) {
  Value result;
  result.type = NPVariantType_String;
  result.text = value;
  return result;
}

Value Value::stringInside(std::string_view memory, size_t length) {
  Value result = string(memory.substr(0, length));
  result.behind = memory.substr(length);
  return result;
}

Value Value::nullString() {
  Value result = string("");
  result.nullText = true;
  return result;
}

Value Value::of(NPObject* object) {
  Value result;
  result.type = NPVariantType_Object;
  result.object = object;
  return result;
}

bool Value::operator==(const Value& other) const {
  if (type != other.type) return false;
  switch (type) {
    case NPVariantType_Bool:
      return truth == other.truth;
    case NPVariantType_Int32:
      return integer == other.integer;
    case NPVariantType_Double:
      // The very same number, -0 and NaN included. NOLINTNEXTLINE(cert-*,bugprone-*)
      return std::memcmp(&real, &other.real, sizeof real) == 0;
    case NPVariantType_String:
      return text == other.text && nullText == other.nullText;
    case NPVariantType_Object:
      return object == other.object;
    default:
      return true;
  }
}

std::ostream& operator<<(std::ostream& stream, const Value& value) {
  switch (value.type) {
    case NPVariantType_Void:
      return stream << "undefined";
    case NPVariantType_Null:
      return stream << "null";
    case NPVariantType_Bool:
      return stream << (value.truth ? "true" : "false");
    case NPVariantType_Int32:
      return stream << value.integer;
    case NPVariantType_Double:
      return stream << "double " << value.real;
    case NPVariantType_String:
      return value.nullText ? stream << "null text" : stream << '"' << value.text << '"';
    case NPVariantType_Object:
      return stream << "object " << static_cast<const void*>(value.object);
  }
  return stream << "variant of type " << static_cast<int32_t>(value.type);
}

Value copyOf(const NPVariant& variant) {
  Value result;
  result.type = variant.type;
  switch (variant.type) {
    case NPVariantType_Bool:
      result.truth = variant.value.boolValue;
      break;
    case NPVariantType_Int32:
      result.integer = variant.value.intValue;
      break;
    case NPVariantType_Double:
      result.real = variant.value.doubleValue;
      break;
    case NPVariantType_String:
      result.nullText = variant.value.stringValue.UTF8Characters == nullptr;
      if (!result.nullText) {
        result.text.assign(variant.value.stringValue.UTF8Characters,
                           variant.value.stringValue.UTF8Length);
      }
      break;
    case NPVariantType_Object:
      result.object = variant.value.objectValue;
      break;
    default:
      break;
  }
  return result;
}

Arguments::Arguments(const std::vector<Value>& values)
    : list_(values.size() * sizeof(NPVariant)), count_(static_cast<uint32_t>(values.size())) {
  char* place = list_.data();
  for (const Value& value : values) {
    const NPVariant variant = make(value);
    std::memcpy(place, &variant, sizeof variant);
    place += sizeof variant;
  }
}

const NPVariant* Arguments::data() const {
  return static_cast<const NPVariant*>(static_cast<const void*>(list_.data()));
}

NPVariant Arguments::make(const Value& value) {
  NPVariant variant{};
  variant.type = value.type;
  switch (value.type) {
    case NPVariantType_Bool:
      variant.value.boolValue = value.truth;
      break;
    case NPVariantType_Int32:
      variant.value.intValue = value.integer;
      break;
    case NPVariantType_Double:
      variant.value.doubleValue = value.real;
      break;
    case NPVariantType_String:
      if (!value.nullText) {
        texts_.emplace_back(value.text + value.behind);
        variant.value.stringValue = {texts_.back().data(),
                                     static_cast<uint32_t>(value.text.size())};
      }
      break;
    case NPVariantType_Object:
      variant.value.objectValue = value.object;
      break;
    default:
      break;
  }
  return variant;
}

}  // namespace Vantrel::Web::Host
