#include "browsers/gecko/variant.h"

#include <cmath>
#include <cstring>
#include <new>

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

// Room for a terminated text of the browser's; null when there is none.
char* allocateText(size_t length) {
  if (length >= UINT32_MAX) return nullptr;  // the browser counts in 32 bits
  char* const text = static_cast<char*>(browserFuncs.memalloc(static_cast<uint32_t>(length + 1)));
  if (text != nullptr) text[length] = '\0';
  return text;
}

void setCopy(std::string_view text, NPVariant* variant) {
  *variant = {NPVariantType_String, {}};
  variant->value.stringValue = {nullptr, 0};
  char* const characters = allocateText(text.size());
  if (characters == nullptr) return;
  std::memcpy(characters, text.data(), text.size());
  variant->value.stringValue = {characters, static_cast<uint32_t>(text.size())};
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

char* VariantRoom::take(size_t length) {
  release();
  characters_ = allocateText(length);
  if (characters_ == nullptr) throw std::bad_alloc();
  length_ = static_cast<uint32_t>(length);
  return characters_;
}

void VariantRoom::handOver(NPVariant* variant) {
  *variant = {NPVariantType_String, {}};
  variant->value.stringValue = {characters_, length_};
  characters_ = nullptr;
}

void VariantRoom::release() {
  if (characters_ != nullptr) browserFuncs.memfree(characters_);
  characters_ = nullptr;
}

}  // namespace Vantrel::Web::Gecko
