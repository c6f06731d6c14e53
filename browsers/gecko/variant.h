// Between the browser's variants and our values. Browser's thread only. No function reads behind
// the counted length of a browser's text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "browsers/gecko/netscape_plugin_api.h"

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

}  // namespace Vantrel::Web::Gecko
