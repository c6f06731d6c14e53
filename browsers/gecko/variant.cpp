#include "browsers/gecko/variant.h"

#include <cmath>
#include <cstring>

#include "browsers/gecko/browser_functions.h"

namespace Vantrel::Web::Gecko {

namespace {

std::string_view countedView(const NPVariant& variant) {
  if (variant.type != NPVariantType_String) return {};
  const NPString& string = variant.value.stringValue;
  if (string.UTF8Characters == nullptr) return {};
  return {string.UTF8Characters, string.UTF8Length};
}

std::string_view textView(const NPVariant& variant) {
  const std::string_view counted = countedView(variant);
  return counted.substr(0, counted.find('\0'));
}

}  // namespace

bool matches(Argument wanted, const NPVariant& variant) {
  switch (wanted) {
    case Argument::kAnything:
      return true;
    case Argument::kText:
      return variant.type == NPVariantType_String;
    case Argument::kNonEmptyText:
      return variant.type == NPVariantType_String && variant.value.stringValue.UTF8Length != 0;
    case Argument::kBoolean:
      return isBooleanLike(variant);
    case Argument::kNumber:
      return variant.type == NPVariantType_Int32 || variant.type == NPVariantType_Double;
    case Argument::kObject:
      return variant.type == NPVariantType_Object;
  }
  return false;
}

bool isBooleanLike(const NPVariant& variant) {
  if (variant.type == NPVariantType_Bool) return true;
  const std::string_view text = textView(variant);
  return text == "true" || text == "false";
}

bool toBool(const NPVariant& variant) {
  if (variant.type == NPVariantType_Bool) return variant.value.boolValue;
  return textView(variant) == "true";
}

std::string textOf(const NPVariant& variant) {
  return std::string(textView(variant));
}

std::string countedTextOf(const NPVariant& variant) {
  return std::string(countedView(variant));
}

uint32_t low32Of(const NPVariant& number) {
  if (number.type == NPVariantType_Int32) return static_cast<uint32_t>(number.value.intValue);
  // Both limits are powers of two, so they are exact; the comparison is false for no-number.
  constexpr double kLimit = 9223372036854775808.0;
  const double value = number.value.doubleValue;
  if (!(value >= -kLimit && value < kLimit)) return 0;
  return static_cast<uint32_t>(static_cast<int64_t>(value));
}

void setVoid(NPVariant* result) {
  *result = {NPVariantType_Void, {}};
}

void setNull(NPVariant* result) {
  *result = {NPVariantType_Null, {}};
}

namespace {

void setCopy(std::string_view text, NPVariant* variant) {
  *variant = {NPVariantType_String, {}};
  variant->value.stringValue = {nullptr, 0};
  if (text.size() >= UINT32_MAX) return;  // the browser counts in 32 bits
  const auto length = static_cast<uint32_t>(text.size());
  char* const characters = static_cast<char*>(browserFuncs.memalloc(length + 1));
  if (characters == nullptr) return;
  std::memcpy(characters, text.data(), length);
  characters[length] = '\0';
  variant->value.stringValue = {characters, length};
}

}  // namespace

void stringToVariant(const char* text, NPVariant* variant) {
  if (text != nullptr) {
    setCopy(text, variant);
  } else {
    *variant = {NPVariantType_String, {}};
    variant->value.stringValue = {nullptr, 0};
  }
}

void stringToVariant(const std::string& text, NPVariant* variant) {
  setCopy(text, variant);
}

}  // namespace Vantrel::Web::Gecko
