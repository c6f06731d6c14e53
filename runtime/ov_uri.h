/* Syntax tests for URIs. Part of ov_runtime.h. Each answers 1 or 0. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* A letter, then letters, digits, "+", "." or "-", `length` bytes in all and at least one. */
int32_t ov_uri_valid_scheme(const char* text, size_t length);

/* The same for a terminated text. */
int32_t ov_uri_valid_scheme_term(const char* text);

/* A scheme of two letters or more, "://" with the first slash of the text, and something behind it.
   A drive path such as C://x is no URI. */
int32_t ov_uri_valid_uri(const char* text);

OV_END_DECLS
