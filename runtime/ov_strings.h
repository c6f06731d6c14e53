/* NUL-terminated UTF-8 text in buffers of the caller: copying, numbers, encodings, UTF-8 and
   UTF-16. Part of ov_runtime.h. All functions are reentrant on distinct buffers.

   A writer never overruns, always terminates, never leaves half of a UTF-8 sequence where the
   buffer's end cuts, and tells by its result that it cut: 0 whole, OV_EINVAL bad argument,
   OV_EBUFFER cut. Sizes are in bytes and count the terminator. `pos`, where a writer takes it, is
   the offset at which it starts and which it moves to the new end; null stands for 0. The copying
   writers and the decoders of base16 and base64 allow source and destination to overlap, each as
   its own comment says; all others do not. */
#pragma once

#include "runtime/ov_types.h"

OV_BEGIN_DECLS

/* With the first at 0 (it starts at 1) failed assertions are counted in the second: null arguments
   of ov_str_ndup and ov_str_tokenize, a null name for ov_process_getenv, a thread spawned without a
   function or joined without a record, and the calls on sockets that this platform cannot make.
   What such a call returns is the same either way. A program may write both at any time. */
OV_DATA int32_t g_ov_asserts_active;
OV_DATA int32_t g_ov_asserts_skipped;
/* Value of each hexadecimal digit of either case, 255 for all other bytes. */
OV_DATA const uint8_t _ov_str_base16_lookup[256];

/* Copies at most srcMax bytes of `src`, which need no terminator then; it may lie in `dst`. A cut
   by srcMax is where the caller wants it, so it may halve a sequence, and counts as whole. A `pos`
   at or behind the end of the buffer is a bad argument and clears the whole text, with a log line.
 */
ov_rc ov_str_nto(char* dst, const char* src, size_t srcMax, size_t dstSize, size_t* pos);
ov_rc ov_str_to(char* dst, const char* src, size_t dstSize, size_t* pos);
/* The same without the white space at both ends of `src`. */
ov_rc ov_trimmed_str_to(char* dst, const char* src, size_t dstSize, size_t* pos);
/* Copies from offset 0; a null `src` is an empty text. */
ov_rc ov_str_ncpy(char* dst, const char* src, size_t dstSize);
/* Appends behind the text in `dst`. */
ov_rc ov_str_ncat(char* dst, const char* src, size_t dstSize);
/* Formats into `dst`, in which no argument may lie. The system's code when the text cannot be
   formatted: then it ends at `pos`, which stays. */
ov_rc ov_str_printf_to(char* dst, size_t dstSize, size_t* pos, const char* format, ...)
    OV_PRINTF(4, 5);
ov_rc ov_str_vprintf_to(char* dst, size_t dstSize, size_t* pos, const char* format,
                        va_list arguments) OV_PRINTF(4, 0);

/* The growing forms: *buffer is null or from malloc, and the caller releases it with free. A
   capacity of 0 becomes 1024 and doubles until the text fits. OV_ENOMEM without memory: buffer and
   capacity stay. The source must not lie in the buffer, which may move. */
ov_rc ov_str_nto_resize(char** buffer, const char* src, size_t srcMax, size_t* capacity,
                        size_t* pos);
ov_rc ov_str_to_resize(char** buffer, const char* src, size_t* capacity, size_t* pos);
ov_rc ov_str_printf_to_resize(char** buffer, size_t* capacity, size_t* pos, const char* format, ...)
    OV_PRINTF(4, 5);
ov_rc ov_str_vprintf_to_resize(char** buffer, size_t* capacity, size_t* pos, const char* format,
                               va_list arguments) OV_PRINTF(4, 0);

/* Length, at most `max`; 0 for null. */
size_t ov_str_nlen(const char* text, size_t max);
/* A copy of at most `max` bytes, terminated, to be released with free; null for null or without
   memory. */
char* ov_str_ndup(const char* text, size_t max);
/* Number of leading bytes that are in `accept`, at most `max`; the first byte is tested even with
   `max` 0. */
size_t ov_str_nspn(const char* text, size_t max, const char* accept);
/* Number of bytes `c`. */
size_t ov_str_cntchr(const char* text, int32_t c);
/* Replaces the byte `from` by `to`, in place. */
void ov_str_repchr(char* text, int32_t from, int32_t to);
/* 0 if `text` ends in `tail`, else (and for null) 1. */
int32_t ov_str_tail_cmp(const char* text, const char* tail);
/* 1 if `pattern` holds a "*" or "?" with no backslash before it. */
int32_t ov_str_wildcards_present(const char* pattern);
/* 0 on a match, else 1. "*" is any run of bytes, "?" any byte, a backslash takes the next byte as
   it is. "*" before other pattern bytes leaves at least one byte of text to them, so "a**" does not
   match "a". */
int32_t ov_str_wildcard_strcmp(const char* pattern, const char* text);

/* Splits a command line at blanks; a token may stand in double or single quotes. *argv has *argc
   tokens (null and 0 for none) and is released with ov_str_tokcleanup. OV_ETOKENIZER for a quote
   left open or 1000 tokens, OV_EINVAL for null arguments, OV_ENOMEM without memory; then nothing is
   to be released. */
ov_rc ov_str_tokenize(const char* text, char*** argv, int32_t* argc);
void ov_str_tokcleanup(char** argv);
/* Next token of `text` (null to go on from *context), cut out of it in place; null at the end. */
char* ov_str_tok(char* text, const char* delimiters, char** context);

/* Value of a decimal text, as far as it is one; beyond the range the nearest limit. */
int32_t ov_str_atoi(const char* text);
int64_t ov_str_atoll(const char* text);
double ov_str_atof(const char* text);
/* Decimal text ("%f" for ftoa), cut at `size`; return `buffer`. */
char* ov_str_itoa(int32_t value, char* buffer, size_t size);
char* ov_str_lltoa(int64_t value, char* buffer, size_t size);
char* ov_str_uitoa(uint32_t value, char* buffer, size_t size);
char* ov_str_ulltoa(uint64_t value, char* buffer, size_t size);
char* ov_str_ftoa(double value, char* buffer, size_t size);

/* Reads a number after white space and an optional "-": "0x" hexadecimal, "0" and a digit octal,
   "%" binary, else decimal. OV_EINVAL for none, OV_ERANGE out of range; *value is written on
   success only, *end always (null for "not wanted"): behind the number, or at the byte at fault. */
ov_rc ov_str_ahtoll_err(const char* text, int64_t* value, const char** end);
ov_rc ov_str_ahtoi_err(const char* text, int32_t* value, const char** end);
ov_rc ov_str_ahtou_err(const char* text, uint32_t* value, const char** end);
/* The value, 0 on failure. */
int64_t ov_str_ahtoll(const char* text);
int32_t ov_str_ahtoi(const char* text);
/* A 64-bit value in network byte order. */
uint64_t ov_htonll(uint64_t value);

/* Upper-case hexadecimal; needs 2 * len + 1 bytes, else OV_EBUFFER with nothing written. */
ov_rc ov_str_buf_to_base16(const void* src, size_t len, char* dst, size_t dstSize);
/* Decoders: `len` (size_t)-1 means up to the terminator. *outLen (null for "not wanted") is the
   number of bytes; base16 sets it before it looks at dstSize, the others on success. OV_EINVAL for
   an ill text, OV_EBUFFER for a buffer too small; what the buffer holds then means nothing. The
   base64 forms write a NUL behind the bytes if there is room; it is not counted. `dst` may be
   `src`, which the bytes then take the place of. */
ov_rc ov_str_base16_to_buf(const char* src, size_t len, void* dst, size_t dstSize, size_t* outLen);
/* Standard alphabet with padding and no line breaks; dstSize must exceed (len + 2) / 3 * 4. */
ov_rc ov_str_buf_to_base64(const void* src, size_t len, char* dst, size_t dstSize);
/* Skips blank, tab and line ends, refuses other characters; dstSize must exceed the count of
   characters / 4 * 3. */
ov_rc ov_str_base64_to_buf(const char* src, size_t len, void* dst, size_t dstSize, size_t* outLen);
/* Skips every character outside the alphabet. */
ov_rc ov_str_mime_base64_to_buf(const char* src, size_t len, void* dst, size_t dstSize,
                                size_t* outLen);
/* `lenient` 0: nothing is skipped, dstSize must exceed len / 4 * 3; else as the MIME form. */
ov_rc ov_str_base64_to_buf_impl(const char* src, size_t len, void* dst, size_t dstSize,
                                size_t* outLen, int32_t lenient);
/* Decodes one group and moves *cursor; a group that begins with "=" writes nothing. */
ov_rc ov_str_base64_chars_to_buf(const char four[4], uint8_t** cursor, uint8_t* end);
/* The next one or four characters of the alphabet, skipping all others; "=" at the end or at a NUL.
 */
char ov_str_base64_next_char(const char** src, const char* end);
void ov_str_base64_next_chars(const char** src, const char* end, char four[4]);
/* 1 if `c` is in the alphabet or is the terminator. */
int32_t ov_str_base64_valid_char(char c);
/* "-" and "_" for the last two symbols, no padding; dstSize as for base64. */
ov_rc ov_str_buf_to_base64url(const void* src, size_t len, char* dst, size_t dstSize);
/* Unpadded input only; dstSize must exceed (len + 2) / 4 * 3. */
ov_rc ov_str_base64url_to_buf(const char* src, size_t len, void* dst, size_t dstSize,
                              size_t* outLen);

/* Bytes or 16-bit units before the terminator; 0 for null. */
size_t ov_utf8_len(const char* text);
size_t ov_utf16_len(const uint16_t* text);
/* Convert with the terminator. *bytes is the size of `dst` in bytes, and on success the bytes used.
   OV_EINVAL for null or ill-formed text; OV_ERANGE when `dst` is too small, with *bytes the need:
   call with a null `dst` and *bytes 0 to learn it. After a failure `dst` is as it was. A non-zero
   `flags` lets lone surrogates through. */
ov_rc ov_utf8_to_utf16(const char* src, int32_t flags, uint16_t* dst, size_t* bytes);
ov_rc ov_utf16_to_utf8(const uint16_t* src, int32_t flags, char* dst, size_t* bytes);
ov_rc ov_utf8_to_wchar(const char* src, wchar_t* dst, size_t* bytes);
ov_rc ov_wchar_to_utf8(const wchar_t* src, char* dst, size_t* bytes);
/* 1 if the text, of at most `max` bytes, is well-formed; 0 for null. */
int32_t ov_utf8_is_valid(const char* text, size_t max);
/* Length of its well-formed start. */
size_t ov_utf8_well_formed_length(const char* text, size_t max);
/* Cuts an unfinished last sequence of the text of *length bytes (null: up to the terminator).
   OV_EINVAL for null, or when the text ends in continuation bytes that no first byte opens. */
ov_rc ov_utf8_trim_trailing_partial(char* text, size_t* length);
/* Null if the first sequence of the `len` bytes is well-formed, else its byte at fault; that is
   text + len when the bytes end inside the sequence. */
const char* ov_utf8c_find_invalid_byte(const char* text, size_t len);
/* Copies `src` with each ill-formed sequence, up to and with its byte at fault, replaced (null
   replacement: U+FFFD). *dstSize is the size and becomes the length. OV_EILLUTFSTR if anything
   was replaced, OV_EBUFFER if the text was cut, OV_EINVAL for null or size 0. */
ov_rc ov_utf8_replace_invalid_sequence(char* dst, const char* src, size_t* dstSize,
                                       const char* replacement, size_t replacementLen);

OV_END_DECLS
