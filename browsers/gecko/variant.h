// Between the browser's variants and our values. Browser's thread only. No function reads behind
// the counted length of a browser's text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "browsers/gecko/netscape_plugin_api.h"
#include "core/file_reading.h"

namespace Vantrel::Web::Gecko {

// What a script method wants an argument to be.
enum class Argument { kAnything, kText, kNonEmptyText, kBoolean, kNumber, kObject };

bool matches(Argument wanted, const NPVariant& variant);

// A bool, or the text "true" or "false".
bool isBooleanLike(const NPVariant& variant);
bool toBool(const NPVariant& variant);

// The text of a string variant up to its first NUL byte, or all of its counted bytes. Empty for
// any other variant.
std::string textOf(const NPVariant& variant);
std::string countedTextOf(const NPVariant& variant);

// The low 32 bits of the number, truncated toward zero to 64 bits; 0 for what does not fit there.
uint32_t low32Of(const NPVariant& number);

void setVoid(NPVariant* result);
void setNull(NPVariant* result);
// A string variant with a copy of the text, which the browser owns afterwards. A text that is null,
// or that the browser has no memory for, becomes null characters of length 0.
void stringToVariant(const char* text, NPVariant* variant);
void stringToVariant(const std::string& text, NPVariant* variant);

// A text that is built in the browser's memory. On the stack of one call; what was not handed over
// is given back.
class VariantRoom final : public TextRoom {
 public:
  VariantRoom() = default;
  ~VariantRoom() { release(); }
  VariantRoom(const VariantRoom&) = delete;
  VariantRoom& operator=(const VariantRoom&) = delete;

  char* take(size_t length) override;
  // The text as a string variant, which the browser owns from now on.
  void handOver(NPVariant* variant);

 private:
  void release();

  char* characters_ = nullptr;
  uint32_t length_ = 0;
};

}  // namespace Vantrel::Web::Gecko
