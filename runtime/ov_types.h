/* Types that every family of the base runtime shares. Part of ov_runtime.h. */
#pragma once

/* Read by C too. NOLINTBEGIN(modernize-deprecated-headers) */
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
/* NOLINTEND(modernize-deprecated-headers) */

#ifdef __cplusplus
#define OV_BEGIN_DECLS extern "C" {
#define OV_END_DECLS }
#else
#define OV_BEGIN_DECLS
#define OV_END_DECLS
#endif

/* OV_DATA marks exported data: a program that links the DLL imports it, our own build does not. */
#if defined(_WIN32) && !defined(OV_STATIC)
#define OV_DATA extern __declspec(dllimport)
#else
#define OV_DATA extern
#endif

/* The compiler checks formats and arguments of the printf-like functions; they take the C99
   conversions on every compiler, never the Microsoft ones that MinGW assumes by default. */
#if defined(__MINGW32__) && !defined(__clang__)
#define OV_PRINTF(format_index, first_argument) \
  __attribute__((__format__(__gnu_printf__, format_index, first_argument)))
#elif defined(__GNUC__)
#define OV_PRINTF(format_index, first_argument) \
  __attribute__((__format__(__printf__, format_index, first_argument)))
#else
#define OV_PRINTF(format_index, first_argument)
#endif

/* Error code: 0 for success, the system's last error or else errno, private codes from 28672. */
typedef int32_t ov_rc;
