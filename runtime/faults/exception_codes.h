// The hardware exceptions that the platform publishes, with their names.
#pragma once

#include <cstdint>

namespace ov {

struct ExceptionCode {
  uint32_t code;
  const char* name;
};

inline constexpr ExceptionCode kExceptionCodes[] = {
    {0xc0000005, "ACCESS_VIOLATION"},
    {0xc000008c, "ARRAY_BOUNDS_EXCEEDED"},
    {0x80000003, "BREAKPOINT"},
    {0x80000002, "DATATYPE_MISALIGNMENT"},
    {0xc000008d, "FLT_DENORMAL_OPERAND"},
    {0xc000008e, "FLT_DIVIDE_BY_ZERO"},
    {0xc000008f, "FLT_INEXACT_RESULT"},
    {0xc0000090, "FLT_INVALID_OPERATION"},
    {0xc0000091, "FLT_OVERFLOW"},
    {0xc0000092, "FLT_STACK_CHECK"},
    {0xc0000093, "FLT_UNDERFLOW"},
    {0xc000001d, "ILLEGAL_INSTRUCTION"},
    {0xc0000006, "IN_PAGE_ERROR"},
    {0xc0000094, "INT_DIVIDE_BY_ZERO"},
    {0xc0000095, "INT_OVERFLOW"},
    {0xc0000026, "INVALID_DISPOSITION"},
    {0xc0000025, "NONCONTINUABLE_EXCEPTION"},
    {0xc0000096, "PRIV_INSTRUCTION"},
    {0x80000004, "SINGLE_STEP"},
    {0xc00000fd, "STACK_OVERFLOW"},
};

}  // namespace ov
